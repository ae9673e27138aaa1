// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/index_file.h>
#include <kestan/maintenance.h>
#include <kestan/search/copy.h>

#include <cerrno>
#include <filesystem>
#include <set>
#include <system_error>
#include <vector>

#include "search/files/descriptor.h"
#include "search/files/output_file.h"
#include "search/index/caught.h"
#include "search/index/manifest/manifest.h"
#include "search/segment/plain_index.h"
#include "search/upkeep/file_copy.h"
#include "search/upkeep/merge_progress.h"
#include "search/upkeep/staging_folder.h"

namespace kestan::search {
namespace {

constexpr std::size_t kRecordsBetweenFlushes = 1000;

// A writer may replace the manifest and remove files meanwhile, so often at most.
constexpr int kMostAttempts = 100;

Status Interrupted(const std::string& path) {
  return {StatusCode::kInterrupted, "copying was interrupted", path};
}

// ---- Folders ----

// A file of an index, with what the manifest says of it.
struct NamedFile {
  std::string name;
  FileSummary summary;
};

std::vector<NamedFile> FilesOf(const Manifest& manifest) {
  std::vector<NamedFile> files;
  for (const SegmentInfo& info : manifest.segments) {
    files.push_back({SegmentFile(info), info.segment});
    files.push_back({TermsFile(info), info.terms});
    files.push_back({TableFile(info), info.table});
    if (info.edit_number != 0) files.push_back({EditsFile(info), info.edits});
  }
  return files;
}

std::uint64_t BytesOf(const std::vector<NamedFile>& files) {
  std::uint64_t bytes = 0;
  for (const NamedFile& file : files) bytes += file.summary.bytes;
  return bytes;
}

class FolderCopier {
 public:
  FolderCopier(std::string folder, std::string target, const UpkeepProgress& progress)
      : folder_(std::move(folder)), target_(std::move(target)), progress_(progress) {}

  // Files never change under their names, so what was copied before a commit is right after it.
  Status Copy() {
    Result<Manifest> manifest = ReadManifest(folder_);
    for (int attempt = 1; manifest.ok(); ++attempt) {
      const std::uint64_t generation = manifest->generation;
      Status status = CopyFiles(*manifest);
      if (status.ok()) return WriteManifest(target_, *manifest, {}, Syncing::kLater);
      if (status.code() != StatusCode::kNotFound) return status;
      manifest = ReadManifest(folder_);
      if (!manifest.ok()) break;
      if (manifest->generation == generation || attempt == kMostAttempts) {
        return {StatusCode::kDamaged, "a file of the index is missing", status.file()};
      }
    }
    return manifest.status();
  }

 private:
  Status CopyFiles(const Manifest& manifest) {
    Status status = RemoveUnnamedFiles(target_, manifest);
    const std::vector<NamedFile> files = FilesOf(manifest);
    MergeProgress progress(progress_, BytesOf(files));
    for (const NamedFile& file : files) {
      if (!status.ok()) return status;
      if (copied_.count(file.name) != 0) {
        if (!progress.Add(file.summary.bytes)) status = Interrupted(folder_);
        continue;
      }
      status = CopyNamed(file, &progress);
      if (status.ok()) copied_.insert(file.name);
    }
    return status;
  }

  Status CopyNamed(const NamedFile& file, MergeProgress* progress) const {
    const std::string path = folder_ + "/" + file.name;
    const auto copy = CopyFile(path, target_ + "/" + file.name, progress->Advance());
    if (!copy.ok()) return copy.status();
    if (*copy == file.summary) return {};
    return {StatusCode::kDamaged, "its bytes have changed since it was written", path};
  }

  const std::string folder_;
  const std::string target_;
  const UpkeepProgress& progress_;
  std::set<std::string> copied_;
};

// ---- Files ----

class RecordCopier {
 public:
  RecordCopier(std::string path, std::string target)
      : path_(std::move(path)), target_path_(std::move(target)) {}

  Status Copy(const UpkeepProgress& progress) {
    errno = 0;
    const StoreError opened = source_.Open(path_.c_str());
    if (opened != StoreError::kNone) return StatusOfIndexFile(opened, errno, path_);
    if (!source_.OptionFlags()) return {StatusCode::kDamaged, "it is no index file", path_};
    errno = 0;
    const int error = target_.Open(target_path_.c_str(), 1);
    if (error != 0) return StatusOfWrite(error);
    const auto bytes = static_cast<std::uint64_t>(source_.store().FileBytes());
    Status status = CopyRecords(MergeProgress(progress, bytes));
    if (!status.ok()) return status;
    target_.Close();
    return target_.FileError() == 0 ? Verify() : StatusOfWrite(target_.FileError());
  }

 private:
  // Not every error of gdbm's last writes comes out of it.
  Status Verify() {
    Database copy;
    const bool is_whole =
        copy.Open(target_path_.c_str(), 0) == 0 && kestan::HaveSameRecords(source_.store(), copy);
    if (is_whole) return {};
    if (source_.FileError() != StoreError::kNone) {
      return StatusOfRead(static_cast<int>(source_.FileError()));
    }
    return {StatusCode::kSystem, "not all was written", target_path_};
  }

  Status StatusOfWrite(int error) const {
    const std::string reason = ErrorString(StoreError{error});
    if (errno != 0) return SystemError(errno, target_path_);
    return {StatusCode::kSystem, reason, target_path_};
  }

  Status StatusOfRead(int error) const {
    return StatusOfIndexFile(StoreError{error}, errno, path_);
  }

  Status CopyRecords(MergeProgress progress) {
    DBDatumPtr key;
    DBDatumPtr value;
    Database& store = source_.store();
    std::size_t records = 0;
    std::uint64_t bytes = 0;
    for (int error = store.First(&key, &value); key.ptr != nullptr;
         error = store.Next(&key, &value)) {
      if (error != 0) return StatusOfRead(error);
      errno = 0;
      const int put = target_.Put(DBDatum(key.ptr->data, key.ptr->size),
                                  DBDatum(value.ptr->data, value.ptr->size));
      if (put != 0) return StatusOfWrite(put);
      bytes += std::uint64_t{key.ptr->size} + value.ptr->size;
      if (++records % kRecordsBetweenFlushes != 0) continue;
      value.Free();
      store.Flush();
      target_.Flush();
      if (!progress.Add(bytes)) return Interrupted(path_);
      bytes = 0;
    }
    value.Free();
    key.Free();
    if (store.WalkError() != 0) return StatusOfRead(store.WalkError());
    return store.FileError() == 0 ? Status() : StatusOfRead(store.FileError());
  }

  const std::string path_;
  const std::string target_path_;
  IndexFile source_;
  Database target_;
};

Status Copy(const std::string& path, const std::string& new_path, const UpkeepProgress& progress) {
  std::error_code error;
  const bool is_file = std::filesystem::is_regular_file(path, error);
  StagingFolder staging;
  Status status = is_file ? Status() : ReadManifest(path).status();
  if (status.ok()) status = staging.Create(new_path, path);
  if (!status.ok()) return status;
  if (!is_file) {
    status = FolderCopier(path, staging.path(), progress).Copy();
    return status.ok() ? staging.PublishFolder() : status;
  }
  SegmentInfo info;
  const std::string made = staging.path() + "/" + SegmentFile(info);
  status = RecordCopier(path, made).Copy(progress);
  return status.ok() ? staging.PublishFile(made) : status;
}

}  // namespace

Status CopyIndex(const std::string& path, const std::string& new_path,
                 const UpkeepProgress& progress) {
  return Caught(path,
                [&] { return Copy(WithoutSlashes(path), WithoutSlashes(new_path), progress); });
}

}  // namespace kestan::search
