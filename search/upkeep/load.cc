// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/search/dump.h>

#include "search/index/caught.h"
#include "search/upkeep/dump_text.h"
#include "search/upkeep/folder_loader.h"
#include "search/upkeep/loose_segment.h"
#include "search/upkeep/staging_folder.h"

namespace kestan::search {
namespace {

Status Load(const GiveDumpLine& give, const std::string& new_path) {
  StagingFolder staging;
  Status status = staging.Create(new_path);
  if (!status.ok()) return status;
  DumpLines lines(give);
  bool is_waiting = lines.Next();  // the first line
  const bool is_folder =
      is_waiting && lines.line().substr(0, kFolderDumpName.size()) == kFolderDumpName;
  if (is_folder) {
    status = FolderLoader(&lines, staging.path()).Load();
    return status.ok() ? staging.PublishFolder() : status;
  }
  const auto give_all = [&](std::string_view* line) {
    if (!is_waiting) return give(line);
    is_waiting = false;
    *line = lines.line();
    return true;
  };
  const std::string file = LooseFile(staging.path());
  status = LoadFile(give_all, file, 1);
  return status.ok() ? staging.PublishFile(file) : status;
}

}  // namespace

Status LoadIndex(const GiveDumpLine& give, const std::string& new_path) {
  return Caught(new_path, [&] { return Load(give, WithoutSlashes(new_path)); });
}

}  // namespace kestan::search
