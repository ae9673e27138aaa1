#include "cli/index/document_records.h"

#include <kestan/results.h>

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "cli/console/message.h"
#include "cli/index/side_record.h"

namespace kestan_cli {
namespace {

void MoveSideRecord(OpenedIndex& index, const SideRecord& record, const std::string& from,
                    const std::string& to) {
  Kestan& engine = index.engine();
  const char* const text = (engine.*record.get)(from.c_str());
  if (text == nullptr) {
    (engine.*record.remove)(to.c_str());  // an earlier document of that name left it
    return;
  }
  index.CheckWritten((engine.*record.put)(to.c_str(), std::string(text).c_str()));
  (engine.*record.remove)(from.c_str());
}

}  // namespace

std::vector<std::string> DocumentNames(Kestan& engine) {
  std::vector<std::string> names;
  kestan::ReaderOf(engine).ForEachDocument([&](std::string_view name) {
    names.emplace_back(name);
    return true;
  });
  std::sort(names.begin(), names.end());
  return names;
}

std::vector<IndexedDocument> IndexedDocuments(Kestan& engine) {
  std::vector<IndexedDocument> documents;
  for (std::string& name : DocumentNames(engine)) {
    if (name.empty()) continue;
    const auto fingerprint = FingerprintIn(UserRecord(engine, name));
    documents.push_back({std::move(name), fingerprint});
  }
  return documents;
}

void CheckIndexed(const OpenedIndex& index, const std::string& name) {
  if (index.engine().DocumentTimestamp(name.c_str()) != 0) return;
  index.CheckRead();
  throw CommandError("no document " + Quoted(name) + " in index " + Quoted(index.path()) +
                     "; see kestan list");
}

std::string UserRecord(Kestan& engine, const std::string& name) {
  const char* const text = engine.DBGetUser(name.c_str());
  return text != nullptr ? text : "";
}

void RemoveDocument(const OpenedIndex& index, const std::string& name) {
  if (index.engine().RemoveDocumentWords(name.c_str()) < 0) {
    throw CommandError("index " + Quoted(index.path()) + " did not remove " + Quoted(name) +
                       ": a record that it needs for that cannot be read");
  }
  for (const SideRecord& record : kSideRecords) (index.engine().*record.remove)(name.c_str());
}

void MoveDocument(OpenedIndex& index, const std::string& from, const std::string& to) {
  if (index.engine().MoveDocumentWords(from.c_str(), to.c_str()) != 0) {
    throw CommandError("index " + Quoted(index.path()) + " did not rename " + Quoted(from));
  }
  for (const SideRecord& record : kSideRecords) MoveSideRecord(index, record, from, to);
}

}  // namespace kestan_cli
