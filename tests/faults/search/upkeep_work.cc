// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/faults/search/upkeep_work.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <set>
#include <stdexcept>
#include <string_view>

#include "tests/faults/search/asked_index.h"
#include "tests/support/files.h"

namespace kestan_faults {
namespace {

namespace fs = std::filesystem;

using kestan::search::Status;

void Require(const Status& status) {
  if (!status.ok()) throw std::runtime_error(status.ToString());
}

std::vector<std::string> DumpOf(const std::string& path) {
  std::vector<std::string> lines;
  Require(kestan::search::DumpIndex(path, [&](std::string_view line) {
    lines.emplace_back(line);
    return true;
  }));
  return lines;
}

// Gives the lines of a dump. Takes no memory.
class Giver {
 public:
  explicit Giver(const std::vector<std::string>& lines) : lines_(&lines) {}

  bool operator()(std::string_view* line) {
    if (next_ == lines_->size()) return false;
    *line = (*lines_)[next_++];
    return true;
  }

 private:
  const std::vector<std::string>* lines_;
  std::size_t next_ = 0;
};

Status Load(const std::vector<std::string>& lines, const std::string& path) {
  Giver giver(lines);
  return kestan::search::LoadIndex(std::ref(giver), path);
}

Status Repair(const std::string& path, const std::string& target) {
  const auto report = kestan::search::RepairIndex(path, target);
  if (!report.ok()) return report.status();
  if (report->losses == 0) return {};
  return {kestan::search::StatusCode::kDamaged, "losses"};
}

}  // namespace

UpkeepWork::UpkeepWork(const std::string& folder) : folder_(folder) {
  using namespace kestan::search;
  MakeIndex(Path("index"));
  MakeDamaged();
  Require(WriteIndexFile(Path("index"), Path("file")));
  folder_dump_ = DumpOf(Path("index"));
  file_dump_ = DumpOf(Path("file"));
  documents_ = kestan_tests::ReadIndex(Path("index"));
  file_answers_ = Ask(Path("file"));
  sources_ = Sources();
  tasks_ = {
      {"copy folder", [this] { return CopyIndex(index_, target_); }},
      {"copy file", [this] { return CopyIndex(file_, target_); }, false},
      {"convert", [this] { return ConvertIndexFile(file_, target_); }},
      {"one file", [this] { return WriteIndexFile(index_, target_); }, false},
      {"load folder", [this] { return Load(folder_dump_, target_); }},
      {"load file", [this] { return Load(file_dump_, target_); }, false},
      {"repair folder", [this] { return Repair(damaged_, target_); }, true, true},
      {"repair file", [this] { return Repair(file_, target_); }, false, true},
  };
}

// A copy of the index that a repair brings back to what it was.
void UpkeepWork::MakeDamaged() const {
  fs::copy(Path("index"), Path("damaged"));
  fs::remove(Path("damaged/2.terms"));
  std::string bytes = kestan_tests::ReadFile(Path("damaged/1.segment"));
  bytes.replace(0, 40, 40, '\xff');
  kestan_tests::WriteFile(Path("damaged/1.segment"), bytes);
}

std::vector<std::string> UpkeepWork::Sources() const {
  std::vector<std::string> sources = {kestan_tests::ReadFile(Path("file"))};
  for (const char* const folder : {"index", "damaged"}) {
    for (const std::string& name : kestan_tests::FilesIn(Path(folder))) {
      if (name == "writer.lock") continue;
      sources.push_back(name + kestan_tests::ReadFile(Path(folder) + "/" + name));
    }
  }
  return sources;
}

void UpkeepWork::RemoveTarget() const { fs::remove_all(Path("target")); }

bool UpkeepWork::Check(const UpkeepTask& task, bool is_after_error) const {
  EXPECT_TRUE(Sources() == sources_);
  if (!fs::exists(Path("target"))) return false;
  EXPECT_EQ(fs::is_directory(Path("target")), task.is_folder);
  const auto report = kestan::search::CheckIndex(Path("target"));
  EXPECT_TRUE(report.ok() && report->faults == 0) << report.status().ToString();
  if (is_after_error && task.may_lose) return true;
  if (!task.is_folder) {
    EXPECT_EQ(Ask(Path("target")), file_answers_);
    return true;
  }
  try {
    EXPECT_TRUE(kestan_tests::ReadIndex(Path("target")) == documents_);
  } catch (const std::exception& error) {
    ADD_FAILURE() << error.what();
  }
  return true;
}

void UpkeepWork::CheckNothingIsLeft() const {
  EXPECT_EQ(kestan_tests::FilesIn(folder_),
            (std::set<std::string>{"index", "damaged", "file", "target"}));
}

}  // namespace kestan_faults
