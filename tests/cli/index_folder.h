// SPDX-License-Identifier: GPL-3.0-or-later
// Looking into index folders through the library, whatever the command makes of them.
#ifndef KESTAN_TESTS_CLI_INDEX_FOLDER_H_
#define KESTAN_TESTS_CLI_INDEX_FOLDER_H_

#include <gtest/gtest.h>
#include <kestan/search.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <string>

namespace kestan_tests {

// Returns what tells the contents of the index at `folder` from any other: of each file but the
// lock, its name, its size and a hash of its bytes.
inline std::string FilesOfIndex(const std::string& folder) {
  std::map<std::string, std::string> files;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    const std::string name = entry.path().filename();
    if (name == "writer.lock") continue;
    std::ifstream file(entry.path(), std::ios::binary);
    const std::string bytes(std::istreambuf_iterator<char>(file), {});
    files[name] =
        std::to_string(bytes.size()) + " " + std::to_string(std::hash<std::string>()(bytes));
  }
  std::string lines;
  for (const auto& [name, contents] : files) lines += name + " " + contents + "\n";
  return lines;
}

// Returns the documents of the index at `folder`, by their names.
inline std::map<std::string, kestan::search::DocumentInfo> DocumentsOfIndex(
    const std::string& folder) {
  std::map<std::string, kestan::search::DocumentInfo> documents;
  const auto reader = kestan::search::IndexReader::Open(folder);
  EXPECT_TRUE(reader.ok()) << reader.status().ToString();
  if (!reader.ok()) return documents;
  const auto status = reader->ForEachDocument([&](const kestan::search::DocumentInfo& info) {
    documents[info.name] = info;
    return true;
  });
  EXPECT_TRUE(status.ok()) << status.ToString();
  return documents;
}

// Returns the name at the end of `name` that follows `start`; the whole name if it does not begin
// so.
inline std::string NameBelow(const std::string& start, const std::string& name) {
  return name.compare(0, start.size(), start) == 0 ? name.substr(start.size()) : name;
}

// Returns the names of the documents of the index at `folder`, one a line, in order, without
// `start`.
inline std::string ListOfIndex(const std::string& folder, const std::string& start) {
  std::string list;
  for (const auto& [name, info] : DocumentsOfIndex(folder)) list += NameBelow(start, name) + "\n";
  return list;
}

// Returns what `query` finds in the index at `folder`, as "PERCENT NAME" lines, the names without
// `start`.
inline std::string AnswersOfIndex(const std::string& folder, const std::string& query,
                                  const std::string& start,
                                  const kestan::search::SearchOptions& options = {0}) {
  const auto reader = kestan::search::IndexReader::Open(folder);
  EXPECT_TRUE(reader.ok()) << reader.status().ToString();
  if (!reader.ok()) return "";
  const auto results = reader->Search(query, options);
  EXPECT_TRUE(results.ok()) << results.status().ToString();
  if (!results.ok()) return "";
  std::string answers;
  for (const auto& hit : results->hits) {
    answers += std::to_string(hit.percent) + " " + NameBelow(start, hit.name) + "\n";
  }
  return answers;
}

// Changes the index at `folder` as another program would, and commits.
template <typename Change>
void ChangeIndex(const std::string& folder, Change change) {
  auto writer = kestan::search::IndexWriter::Open(folder);
  ASSERT_TRUE(writer.ok()) << writer.status().ToString();
  change(*writer);
  const auto status = writer->Commit();
  ASSERT_TRUE(status.ok()) << status.ToString();
}

// Returns whether CheckIndex() finds nothing wrong with the index at `folder`.
inline bool IsWhole(const std::string& folder) {
  const auto check = kestan::search::CheckIndex(folder);
  EXPECT_TRUE(check.ok()) << check.status().ToString();
  return check.ok() && check->faults == 0;
}

}  // namespace kestan_tests

#endif  // KESTAN_TESTS_CLI_INDEX_FOLDER_H_
