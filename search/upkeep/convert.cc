// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/search/convert.h>

#include <kestan/index_file.h>

#include <cerrno>
#include <string_view>

#include "search/index/caught.h"
#include "search/index/manifest/manifest.h"
#include "search/index/merging/merger.h"
#include "search/segment/plain_index.h"
#include "search/segment/segment.h"
#include "search/upkeep/merge_progress.h"
#include "search/upkeep/staging_folder.h"

namespace kestan::search {
namespace {

constexpr std::size_t kRecordsBetweenFlushes = 1000;
constexpr std::size_t kFamilyBytes = 2;  // what keys have before a name

// Reads what an index file has beside documents and words.
class RestReader {
 public:
  RestReader(const Segment& segment, Manifest* manifest, ConversionReport* report)
      : segment_(segment), manifest_(manifest), report_(report) {}

  Status Read() {
    const std::string& path = segment_.path();
    const StoreError error = file_.Open(path.c_str());
    if (error != StoreError::kNone) return StatusOfIndexFile(error, errno, path);
    const std::uint32_t flags = file_.OptionFlags().value_or(0) & ~kFlagNoPositions;
    if (flags != 0) manifest_->properties["option-flags"] = std::to_string(flags);
    std::size_t records = 0;
    DBDatumPtr key;
    for (int ended = file_.store().First(&key); key.ptr != nullptr && ended != -1;
         ended = file_.store().Next(&key)) {
      Take({key.ptr->data, key.ptr->size});
      if (++records % kRecordsBetweenFlushes == 0) file_.store().Flush();
    }
    key.Free();
    const StoreError read_error = file_.FileError();
    if (read_error != StoreError::kNone) return StatusOfIndexFile(read_error, errno, path);
    if (file_.store().WalkError() == 0) return {};
    return StatusOfIndexFile(StoreError{file_.store().WalkError()}, errno, path);
  }

 private:
  void Take(std::string_view key) {
    if (key.size() <= kFamilyBytes || key[1] != '-') return;
    const std::string_view name = key.substr(kFamilyBytes);
    switch (key[0]) {
      case 't':
      case 's':
      case 'u':
        if (!segment_.FindDocument(name)) ++report_->texts_left_out;
        break;
      case 'w':
        TakeWordList(name);
        break;
      case 'd':
        if (!segment_.FindDocument(name)) ++report_->words_left_out;
        break;
      case 'g':
      case 'c':
        break;
      default:
        ++report_->words_left_out;
    }
  }

  // The posting record of a word such as "w-boson" is no text.
  void TakeWordList(std::string_view name) {
    std::string words;
    bool is_text = true;
    file_.ForEachListedWord(name, [&](std::string_view word) {
      is_text = is_text && !word.empty();
      words.append(word) += '\n';
    });
    if (is_text) manifest_->properties["wordlist:" + std::string(name)] = words;
    if (!is_text) ++report_->words_left_out;
  }

  const Segment& segment_;
  Manifest* const manifest_;
  ConversionReport* const report_;
  IndexFile file_;
};

Status Convert(const std::string& file, const std::string& folder, ConversionReport* report,
               const UpkeepProgress& progress) {
  const auto opened = Segment::OpenIndexFile(file);
  if (!opened.ok()) return opened.status();
  StagingFolder staging;
  Status status = staging.Create(folder, file);
  if (!status.ok()) return status;
  Manifest manifest;
  manifest.generation = 1;
  manifest.with_positions = (*opened)->with_positions();
  status = RestReader(**opened, &manifest, report).Read();
  if (!status.ok()) return status;
  MergeProgress merging(progress, (*opened)->info().segment.bytes);
  const Result<SegmentInfo> info =
      MergeSegments({*opened}, staging.path(), manifest.next_segment, merging.Advance());
  if (!info.ok()) return info.status();
  report->words_left_out += info->words_left_out;
  if (info->documents > 0) {
    manifest.segments.push_back(*info);
    ++manifest.next_segment;
  }
  status = WriteManifest(staging.path(), manifest, {}, Syncing::kLater);
  return status.ok() ? staging.PublishFolder() : status;
}

}  // namespace

Status ConvertIndexFile(const std::string& file, const std::string& folder,
                        ConversionReport* report, const UpkeepProgress& progress) {
  return Caught(file, [&] {
    ConversionReport ignored;
    ConversionReport* const wanted = report != nullptr ? report : &ignored;
    *wanted = {};
    return Convert(file, WithoutSlashes(folder), wanted, progress);
  });
}

}  // namespace kestan::search
