#include <kestan/search/convert.h>

#include <kestan/index_builder.h>
#include <kestan/index_file.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <exception>
#include <optional>
#include <string_view>
#include <utility>

#include "search/files/descriptor.h"
#include "search/files/output_file.h"
#include "search/index/caught.h"
#include "search/index/manifest/manifest.h"
#include "search/index/merging/merger.h"
#include "search/index/opened_index.h"
#include "search/segment/plain_index.h"

namespace kestan::search {
namespace {

constexpr unsigned kFolderMode = 0777;
constexpr std::size_t kRecordsBetweenFlushes = 1000;
constexpr std::size_t kFamilyBytes = 2;  // what keys have before a name

std::string WithoutSlashes(std::string path) {
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  return path;
}

std::string DirectoryOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return path.substr(0, slash == 0 ? 1 : slash);
}

Status CheckIsFree(const std::string& path) {
  struct stat status = {};
  if (lstat(path.c_str(), &status) != 0)
    return errno == ENOENT ? Status() : SystemError(errno, path);
  return {StatusCode::kAlreadyExists, "it exists already", path};
}

// A folder in which an index comes to be. Removed at the end with what it holds, unless it was
// published.
class StagingFolder {
 public:
  StagingFolder() = default;
  StagingFolder(const StagingFolder&) = delete;
  StagingFolder& operator=(const StagingFolder&) = delete;
  ~StagingFolder() {
    if (path_.empty()) return;
    try {
      Remove();
    } catch (const std::exception&) {
      return;  // without memory; the next conversion removes it
    }
  }

  // Makes the folder for what is to be at `target`.
  Status Create(const std::string& target) {
    Status status = CheckIsFree(target);
    if (!status.ok()) return status;
    target_ = target;
    path_ = target + ".new";
    Remove();
    if (mkdir(path_.c_str(), kFolderMode) == 0) return {};
    status = SystemError(errno, path_);
    path_.clear();
    return status;
  }

  const std::string& path() const { return path_; }

  // Gives `name`, a file in the folder or the folder itself, the name of the target.
  Status Publish(const std::string& name) {
    Status status = CheckIsFree(target_);
    if (!status.ok()) return status;
    if (std::rename(name.c_str(), target_.c_str()) != 0) return SystemError(errno, target_);
    if (name == path_) path_.clear();
    return SyncDirectory(DirectoryOf(target_));
  }

 private:
  // Removes nothing but what a conversion makes.
  void Remove() const {
    static_cast<void>(RemoveUnnamedFiles(path_, Manifest()));
    unlink(ManifestPath(path_).c_str());
    rmdir(path_.c_str());
  }

  std::string target_;
  std::string path_;
};

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

Status Convert(const std::string& file, const std::string& folder, ConversionReport* report) {
  StagingFolder staging;
  Status status = staging.Create(folder);
  if (!status.ok()) return status;
  const auto opened = Segment::OpenIndexFile(file);
  if (!opened.ok()) return opened.status();
  Manifest manifest;
  manifest.generation = 1;
  manifest.with_positions = (*opened)->with_positions();
  status = RestReader(**opened, &manifest, report).Read();
  if (!status.ok()) return status;
  const Result<SegmentInfo> info =
      MergeSegments({*opened}, staging.path(), manifest.next_segment, nullptr);
  if (!info.ok()) return info.status();
  if (info->documents > 0) {
    manifest.segments.push_back(*info);
    ++manifest.next_segment;
  }
  status = WriteManifest(staging.path(), manifest);
  return status.ok() ? staging.Publish(staging.path()) : status;
}

// Writes the index file of an index without documents.
Status WriteEmpty(const std::string& path, bool with_positions) {
  IndexBuilder builder;
  IndexBuilder::Options options;
  options.option_flags = with_positions ? 0 : kFlagNoPositions;
  StoreError error = builder.Open(path.c_str(), options);
  if (error == StoreError::kNone) error = builder.Finish();
  if (error != StoreError::kNone) return StatusOfIndexFile(error, errno, path);
  return SyncFile(path);
}

Status WriteOneFile(const std::string& folder, const std::string& file) {
  const Result<OpenedIndex> index = OpenIndex(folder);
  if (!index.ok()) return index.status();
  std::uint64_t documents = 0;
  for (const auto& segment : index->segments) documents += segment->living_documents();
  if (documents > kMaxCode) {
    return {StatusCode::kInvalidArgument,
            "it has " + std::to_string(documents) + " documents; one index file holds 65535",
            folder};
  }
  StagingFolder staging;
  Status status = staging.Create(file);
  if (!status.ok()) return status;
  SegmentInfo info;
  info.number = 1;
  const std::string made = staging.path() + "/" + SegmentFile(info);
  if (documents == 0) {
    status = WriteEmpty(made, index->manifest.with_positions);
    return status.ok() ? staging.Publish(made) : status;
  }
  const Result<SegmentInfo> merged =
      MergeSegments(index->segments, staging.path(), info.number, nullptr);
  return merged.ok() ? staging.Publish(made) : merged.status();
}

}  // namespace

Status ConvertIndexFile(const std::string& file, const std::string& folder,
                        ConversionReport* report) {
  ConversionReport ignored;
  ConversionReport* const wanted = report != nullptr ? report : &ignored;
  *wanted = {};
  return Caught(file, [&] { return Convert(file, WithoutSlashes(folder), wanted); });
}

Status WriteIndexFile(const std::string& folder, const std::string& file) {
  return Caught(folder, [&] { return WriteOneFile(WithoutSlashes(folder), file); });
}

}  // namespace kestan::search
