// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/checksum.h>
#include <kestan/index_file.h>
#include <kestan/maintenance.h>
#include <kestan/search/dump.h>

#include <algorithm>
#include <cerrno>
#include <exception>
#include <memory>
#include <utility>
#include <vector>

#include "search/index/caught.h"
#include "search/index/manifest/manifest_text.h"
#include "search/index/merging/merge_policy.h"
#include "search/index/merging/merger.h"
#include "search/index/opened_index.h"
#include "search/segment/plain_index.h"
#include "search/upkeep/dump_text.h"
#include "search/upkeep/staging_folder.h"

namespace kestan::search {
namespace {

using SegmentPointer = std::shared_ptr<const Segment>;
using SegmentPointers = std::vector<SegmentPointer>;

// Ends the dump of an index file within the engine, which goes on for as long as there is one.
class Stopped : public std::exception {};

Status DumpFile(const std::string& path, const TakeLine& take) {
  IndexFile file;
  errno = 0;
  StoreError error = file.Open(path.c_str());
  if (error != StoreError::kNone) return StatusOfIndexFile(error, errno, path);
  if (!file.OptionFlags()) return {StatusCode::kDamaged, "it is no index file", path};
  error = kestan::DumpIndex(file.store(), take);
  return error == StoreError::kNone ? Status() : StatusOfIndexFile(error, errno, path);
}

class FolderDumper {
 public:
  explicit FolderDumper(const TakeLine& take) : take_(take) {}

  Status Dump(const OpenedIndex& index) {
    AddLine(std::string(kFolderDumpName).append(kFolderDumpVersion));
    AddLine(std::string(kPositionsLine) + (index.manifest.with_positions ? "yes" : "no"));
    for (const auto& [key, value] : index.manifest.properties) AddProperty(key, value);
    std::uint64_t parts = 0;
    for (const SegmentPointers& group : GroupsOf(index)) {
      Status status = AddPart(group);
      if (!status.ok()) return status;
      ++parts;
    }
    std::string last = std::string(kLastLine) + std::to_string(parts) + " ";
    AppendHex(checksum_.Value(), &last);
    take_(last);
    return {};
  }

 private:
  // Returns neighbours that together are within the limits of a segment.
  static std::vector<SegmentPointers> GroupsOf(const OpenedIndex& index) {
    std::vector<SegmentPointers> groups;
    std::uint64_t documents = 0;
    std::uint64_t bytes = 0;
    for (const SegmentPointer& segment : index.segments) {
      if (segment->living_documents() == 0) continue;
      documents += segment->living_documents();
      bytes += LivingBytes(segment->info());
      const bool fits =
          !groups.empty() && documents <= kMaxMergedDocuments && bytes <= kMaxMergedBytes;
      if (!fits) {
        groups.emplace_back();
        documents = segment->living_documents();
        bytes = LivingBytes(segment->info());
      }
      groups.back().push_back(segment);
    }
    return groups;
  }

  Status AddPart(const SegmentPointers& group) {
    const SegmentInfo& first = group.front()->info();
    if (group.size() == 1 && first.edit_number == 0) {
      Status status = group.front()->Verify();
      return status.ok() ? AddSegment(*group.front()) : status;
    }
    StagingFolder temporary;
    Status status = temporary.CreateTemporary();
    if (!status.ok()) return status;
    const auto info = MergeSegments(group, temporary.path(), 1, nullptr);
    if (!info.ok()) return info.status();
    const auto merged = Segment::Open(temporary.path(), *info, group.front()->with_positions());
    return merged.ok() ? AddSegment(**merged) : merged.status();
  }

  // Adds a segment in which all documents live.
  Status AddSegment(const Segment& segment) {
    AddLine(std::string(kPartLine) + std::to_string(segment.size()));
    for (std::size_t i = 1; i <= segment.size(); ++i) {
      const DocumentEntry entry = segment.table().EntryOf(static_cast<Code>(i));
      unsigned fields = 0;
      for (std::size_t field = 0; field < kDocumentFields; ++field) {
        if (entry.fields[field].offset != 0) fields |= 1U << field;
      }
      const std::uint32_t words = segment.table().WordsOf(static_cast<Code>(i));
      AddLine(std::string(kDocumentLine) + std::to_string(words) + " " + std::to_string(fields));
    }
    if (!segment.status().ok()) return segment.status();
    return DumpFile(segment.path(), [this](std::string_view line) { AddLine(line); });
  }

  // A property may be longer than a line.
  void AddProperty(const std::string& key, const std::string& value) {
    std::string text(kPropertyLine);
    AppendEscaped(key, &text);
    text += ' ';
    AppendEscaped(value, &text);
    std::string_view rest = text;
    while (rest.size() > kMaxDumpLineBytes) {
      const std::size_t cut = CutOf(rest.substr(0, kMaxDumpLineBytes - 1));
      AddLine(std::string(rest.substr(0, cut)) + kGoesOn);
      rest.remove_prefix(cut);
    }
    AddLine(rest);
  }

  // Returns where the start of a line ends that breaks no escape.
  static std::size_t CutOf(std::string_view text) {
    constexpr std::size_t kEscapeBytes = 4;
    const std::size_t escape = text.rfind(kGoesOn);
    const bool is_broken = escape != std::string_view::npos && escape + kEscapeBytes > text.size();
    return is_broken ? escape : text.size();
  }

  void AddLine(std::string_view line) {
    checksum_.Add(line);
    checksum_.Add("\n");
    take_(line);
  }

  const TakeLine& take_;
  Crc64 checksum_;
};

Status DumpFolder(const OpenedIndex& index, const TakeLine& take) {
  Status status = FolderDumper(take).Dump(index);
  const bool may_be_merged = status.code() == StatusCode::kNotFound ||
                             (status.code() == StatusCode::kSystem && !status.file().empty());
  if (!may_be_merged) return status;
  const auto now = ReadManifest(index.folder);
  if (!now.ok() || now->generation == index.manifest.generation) return status;
  return {StatusCode::kBusy, "it has changed while it was dumped; a copy of it can be dumped",
          index.folder};
}

Status Dump(const std::string& path, const TakeDumpLine& take) {
  const TakeLine take_or_stop = [&take](std::string_view line) {
    if (!take(line)) throw Stopped();
  };
  try {
    const Result<OpenedIndex> index = OpenIndex(path);
    if (!index.ok()) return index.status();
    if (index->identity.empty()) return DumpFolder(*index, take_or_stop);
    return DumpFile(path, take_or_stop);
  } catch (const Stopped&) {
    return {StatusCode::kInterrupted, "the dump was interrupted", path};
  }
}

}  // namespace

Status DumpIndex(const std::string& path, const TakeDumpLine& take) {
  return Caught(path, [&] { return Dump(WithoutSlashes(path), take); });
}

}  // namespace kestan::search
