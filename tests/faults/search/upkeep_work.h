// SPDX-License-Identifier: GPL-3.0-or-later
// Everything that makes a new index of another one, done on small indexes.
#ifndef KESTAN_TESTS_FAULTS_SEARCH_UPKEEP_WORK_H_
#define KESTAN_TESTS_FAULTS_SEARCH_UPKEEP_WORK_H_

#include <kestan/search.h>

#include <functional>
#include <string>
#include <vector>

#include "tests/search/index/read_index.h"

namespace kestan_faults {

// What one of the functions has to make.
struct UpkeepTask {
  std::string name;
  std::function<kestan::search::Status()> run;  // makes the index at UpkeepWork::target()
  bool is_folder = true;                        // what it makes
  bool may_lose = false;  // what it cannot read is a loss, and then `run` returns an error
};

// An index folder, a damaged one and an index file in a folder, and the tasks on them.
class UpkeepWork {
 public:
  // Makes the indexes below `folder`.
  explicit UpkeepWork(const std::string& folder);

  const std::vector<UpkeepTask>& tasks() const { return tasks_; }

  // Removes what an earlier task has made, but not what it has left.
  void RemoveTarget() const;

  // Checks that the sources are as they were, and that there is no target or a whole one; after an
  // error, of a task that may lose something, one without faults.
  //   Returns  whether there is one.
  bool Check(const UpkeepTask& task, bool is_after_error = false) const;

  // Checks that nothing is left but the sources and the target.
  void CheckNothingIsLeft() const;

  const std::string& folder() const { return folder_; }

 private:
  std::string Path(const std::string& name) const { return folder_ + "/" + name; }
  void MakeDamaged() const;
  std::vector<std::string> Sources() const;

  const std::string folder_;
  const std::string index_ = folder_ + "/index";
  const std::string damaged_ = folder_ + "/damaged";
  const std::string file_ = folder_ + "/file";
  const std::string target_ = folder_ + "/target";
  std::vector<UpkeepTask> tasks_;
  std::vector<std::string> folder_dump_;
  std::vector<std::string> file_dump_;
  std::vector<std::string> sources_;  // their bytes
  kestan_tests::ReadDocuments documents_;
  std::vector<std::string> file_answers_;
};

}  // namespace kestan_faults

#endif  // KESTAN_TESTS_FAULTS_SEARCH_UPKEEP_WORK_H_
