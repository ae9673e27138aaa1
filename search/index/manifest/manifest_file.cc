// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/index/manifest/manifest.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <set>
#include <system_error>
#include <utility>
#include <vector>

#include "search/files/descriptor.h"
#include "search/files/folder_names.h"
#include "search/files/output_file.h"

namespace kestan::search {
namespace {

bool IsNumber(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

std::string PathIn(const std::string& folder, const std::string& file) {
  return folder + "/" + file;
}

std::vector<std::string> FilesOf(const SegmentInfo& info) {
  std::vector<std::string> files = {SegmentFile(info), TermsFile(info), TableFile(info)};
  if (info.edit_number != 0) files.push_back(EditsFile(info));
  return files;
}

std::set<std::string> NamedFiles(const Manifest& manifest) {
  std::set<std::string> named;
  for (const SegmentInfo& info : manifest.segments) {
    for (std::string& file : FilesOf(info)) named.insert(std::move(file));
  }
  return named;
}

// Returns the names of the files in `folder` that are named like those of segments.
Result<std::vector<std::string>> SegmentFilesIn(const std::string& folder) {
  Result<std::vector<std::string>> names = NamesIn(folder);
  if (!names.ok()) return names.status();
  names->erase(std::remove_if(names->begin(), names->end(),
                              [](const std::string& name) { return !IsSegmentFileName(name); }),
               names->end());
  return names;
}

}  // namespace

std::string ManifestPath(const std::string& folder) { return folder + "/MANIFEST"; }

bool IsIndexFolder(const std::string& folder) {
  return access(ManifestPath(folder).c_str(), F_OK) == 0;
}

Result<Manifest> ReadManifest(const std::string& folder) {
  const std::string path = ManifestPath(folder);
  const Result<std::string> bytes = ReadWholeFile(path, kMaxManifestBytes);
  if (!bytes.ok()) return bytes.status();
  Result<Manifest> manifest = Manifest::Decode(*bytes);
  if (manifest.ok()) return manifest;
  return Status(manifest.status().code(), manifest.status().message(), path);
}

Status StatusOfMissingManifest(const std::string& folder) {
  const auto files = SegmentFilesIn(folder);
  if (!files.ok() || files->empty()) return NoIndexAt(folder);
  return {StatusCode::kDamaged, "it is missing, but there are segments of an index",
          ManifestPath(folder)};
}

std::vector<std::string> NewFiles(const std::string& folder, const Manifest& committed,
                                  const Manifest& next) {
  const std::set<std::string> known = NamedFiles(committed);
  std::vector<std::string> files;
  for (const std::string& file : NamedFiles(next)) {
    if (known.count(file) == 0) files.push_back(PathIn(folder, file));
  }
  return files;
}

Status WriteManifest(const std::string& folder, const Manifest& manifest,
                     const std::vector<std::string>& needed, Syncing syncing) {
  const std::string path = ManifestPath(folder);
  const std::string bytes = manifest.Encode();
  if (bytes.size() > kMaxManifestBytes || manifest.segments.size() > kMaxSegments) {
    return {StatusCode::kInvalidArgument, "the properties of the index are too large", path};
  }
  return ReplaceFile(path, bytes, needed, syncing);
}

bool IsSegmentFileName(std::string_view name) {
  const std::size_t dot = name.find('.');
  if (dot == std::string_view::npos) return false;
  const std::string_view numbers = name.substr(0, dot);
  const std::string_view kind = name.substr(dot);
  if (kind != ".edits") {
    return IsNumber(numbers) && (kind == ".segment" || kind == ".terms" || kind == ".documents");
  }
  const std::size_t dash = numbers.find('-');
  return dash != std::string_view::npos && IsNumber(numbers.substr(0, dash)) &&
         IsNumber(numbers.substr(dash + 1));
}

Status RemoveUnnamedFiles(const std::string& folder, const Manifest& manifest) {
  const Result<std::vector<std::string>> found = SegmentFilesIn(folder);
  if (!found.ok()) return found.status();
  const std::set<std::string> named = NamedFiles(manifest);
  unlink((ManifestPath(folder) + ".new").c_str());
  Status status;
  for (const std::string& name : *found) {
    if (named.count(name) != 0) continue;
    const std::string path = PathIn(folder, name);
    if (unlink(path.c_str()) != 0 && errno != ENOENT && status.ok()) {
      status = Status::OfSystem(StatusCode::kSystem, errno, std::generic_category().message(errno),
                                path);
    }
  }
  return status;
}

void RemoveSegmentFiles(const std::string& folder, const SegmentInfo& info) {
  for (const std::string& file : FilesOf(info)) unlink(PathIn(folder, file).c_str());
}

}  // namespace kestan::search
