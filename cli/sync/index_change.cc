// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/sync/index_change.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <exception>
#include <filesystem>
#include <system_error>
#include <utility>

#include "cli/files/descriptor.h"
#include "cli/index/index_errors.h"
#include "cli/index/index_kind.h"

namespace kestan_cli {
namespace {

namespace fs = std::filesystem;

using kestan::search::DocumentField;
using kestan::search::DocumentInfo;
using kestan::search::IndexReader;
using kestan::search::StatusCode;

// What an index remembers is believed only where others cannot write, whatever the umask says.
constexpr mode_t kFolderMode = 0755;

bool IsEmpty(const std::string& folder) {
  std::error_code error;
  return fs::is_empty(folder, error) && !error;
}

bool MayWrite(const std::string& folder) {
  return faccessat(AT_FDCWD, folder.c_str(), W_OK | X_OK, AT_EACCESS) == 0;
}

// Returns the folder that the one at `path`, which has just been made, lies in.
std::string ParentOf(std::string path) {
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  const fs::path parent = fs::path(path).parent_path();
  return parent.empty() ? "." : parent.string();
}

// Waits until the names in `folder` are on the disk, as far as the system can tell.
void SyncFolder(const std::string& folder) {
  const Descriptor opened(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (opened.is_open()) fsync(opened.number());
}

}  // namespace

// A run that changes nothing needs no permission to.
IndexChange::IndexChange(std::string path, ProgressStyle style, std::string language)
    : path_(std::move(path)), style_(style), language_(std::move(language)) {
  if (KindOfIndex(path_) == IndexKind::kNone) return;
  CheckIsFolder(path_);
  if (IsEmpty(path_)) return;
  if (MayWrite(path_)) Writer();
  before_.emplace(ValueOf(IndexReader::Open(path_), path_));
  has_changes_ = !language_.empty();
}

IndexChange::~IndexChange() {
  if (is_made_) RemoveWhatWasMade();
}

std::vector<KnownDocument> IndexChange::Documents() const {
  std::vector<KnownDocument> documents;
  if (!before_.has_value()) return documents;
  documents.reserve(static_cast<std::size_t>(before_->Statistics().documents));
  CheckStatus(before_->ForEachDocument([&](const DocumentInfo& info) {
    documents.push_back({info.name, FingerprintIn(info.host_data)});
    return true;
  }),
              path_);
  std::sort(
      documents.begin(), documents.end(),
      [](const KnownDocument& left, const KnownDocument& right) { return left.name < right.name; });
  return documents;
}

void IndexChange::Add(const std::string& name, Document document, const Fingerprint& fingerprint,
                      const std::string& earlier) {
  std::string record = WithFingerprint(earlier.empty() ? "" : UserRecordOf(earlier), fingerprint);
  OpenedWriter& opened = Writer();
  if (!earlier.empty() && earlier != name && !is_emptied_) {
    opened.Check(opened.writer().Remove(earlier));
  }
  AddWithRecord(name, std::move(document), std::move(record));
}

void IndexChange::AddPart(const std::string& name, Document document,
                          const Fingerprint& fingerprint, const std::string& noted) {
  AddWithRecord(name, std::move(document),
                WithFingerprint(noted.empty() ? "" : UserRecordOf(noted), fingerprint));
}

void IndexChange::AddWithRecord(const std::string& name, Document document, std::string record) {
  CheckWordsAreOfThisVersion();
  kestan::search::Document added;
  added.name = name;
  added.text = std::move(document.text);
  added.words = std::move(document.words);
  added.title = std::move(document.title);
  added.summary = std::move(document.summary);
  added.host_data = std::move(record);
  OpenedWriter& opened = Writer();
  opened.Check(opened.writer().Add(std::move(added)));
  has_changes_ = true;
}

void IndexChange::Move(const std::string& from, const std::string& to,
                       const Fingerprint& fingerprint) {
  const std::string record = WithFingerprint(UserRecordOf(from), fingerprint);
  renamed_[to] = from;
  if (is_emptied_) return;
  OpenedWriter& opened = Writer();
  opened.Check(opened.writer().Rename(from, to));
  opened.Check(opened.writer().SetField(to, DocumentField::kHostData, record));
  has_changes_ = true;
}

void IndexChange::UpdateFingerprint(const std::string& name, const Fingerprint& fingerprint,
                                    const std::string& noted) {
  const std::string record = WithFingerprint(noted.empty() ? "" : UserRecordOf(noted), fingerprint);
  OpenedWriter& opened = Writer();
  opened.Check(opened.writer().SetField(name, DocumentField::kHostData, record));
  has_changes_ = true;
}

void IndexChange::Remove(const std::string& name) {
  if (is_emptied_) return;
  OpenedWriter& opened = Writer();
  opened.Check(opened.writer().Remove(name));
  has_changes_ = true;
}

void IndexChange::RemoveAll() {
  for (const KnownDocument& document : Documents()) Remove(document.name);
  is_emptied_ = true;
}

void IndexChange::SetProperty(const std::string& key, const std::string& value) {
  Writer().writer().SetProperty(key, value);
  has_changes_ = true;
}

void IndexChange::Commit() {
  if (!has_changes_) return;
  Writer().Commit();
  is_made_ = false;
  has_changes_ = false;
}

OpenedWriter& IndexChange::Writer() {
  if (writer_.has_value()) return *writer_;
  if (KindOfIndex(path_) == IndexKind::kNone) {
    is_made_ = mkdir(path_.c_str(), kFolderMode) == 0;
    if (!is_made_ && errno != EEXIST) {
      throw CommandError("cannot make index " + Quoted(path_) + ": " + ReasonOf(errno));
    }
    if (is_made_) SyncFolder(ParentOf(path_));
  }
  return writer_.emplace(path_, OpenedWriter::IfMissing::kCreate, style_, language_);
}

// Words of two versions in one index would not find each other.
void IndexChange::CheckWordsAreOfThisVersion() const {
  if (is_emptied_ || !before_.has_value() || before_->Statistics().documents == 0) return;
  if (!ValueOf(before_->Property("analyzer"), path_).empty()) return;
  throw CannotChange(path_, "its words were made by an older version; kestan index " +
                                Quoted(path_) + " --again makes them again");
}

std::string IndexChange::UserRecordOf(const std::string& name) const {
  if (!before_.has_value()) return "";
  const auto renamed = renamed_.find(name);
  const auto found = before_->FindDocument(renamed != renamed_.end() ? renamed->second : name);
  if (found.status().code() == StatusCode::kNotFound) return "";
  CheckStatus(found.status(), path_);
  return found->host_data;
}

// While the lock is held, so that no other writer finds half of it. Where the commit stands and
// only what came after it failed, the index stays.
void IndexChange::RemoveWhatWasMade() noexcept {
  try {
    if (writer_.has_value()) static_cast<void>(writer_->writer().Rollback());
    const auto reader = IndexReader::Open(path_);
    if (reader.ok() && reader->Statistics().documents > 0) return;
    std::error_code ignored;
    fs::remove_all(path_, ignored);
  } catch (const std::exception&) {
    return;  // what stays is an index without documents
  }
}

}  // namespace kestan_cli
