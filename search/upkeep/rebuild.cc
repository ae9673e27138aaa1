// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/search/analyzer.h>
#include <kestan/search/check.h>

#include <algorithm>
#include <ctime>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

#include "search/files/descriptor.h"
#include "search/files/file_bytes.h"
#include "search/files/folder_names.h"
#include "search/files/numbers.h"
#include "search/files/output_file.h"
#include "search/files/writer_lock.h"
#include "search/index/caught.h"
#include "search/index/manifest/analyzer_version.h"
#include "search/index/manifest/manifest.h"
#include "search/index/manifest/manifest_text.h"
#include "search/segment/derived_files.h"
#include "search/segment/segment.h"

namespace kestan::search {
namespace {

FileSummary SummaryOfBytes(const std::string& bytes) { return {bytes.size(), ChecksumOf(bytes)}; }

bool IsAtRest(const std::string& path, const FileSummary& expected) {
  const Result<FileSummary> found = SummaryOf(path);
  return found.ok() && *found == expected;
}

class Rebuilder {
 public:
  Rebuilder(std::string folder, RebuildReport* report)
      : folder_(std::move(folder)), report_(report) {}

  Status Rebuild() {
    const Result<WriterLock> lock = WriterLock::Take(Path("writer.lock"));
    if (!lock.ok()) return lock.status();
    Result<Manifest> manifest = ReadManifest(folder_);
    if (manifest.ok()) {
      manifest_ = std::move(*manifest);
      return RebuildNamed();
    }
    const StatusCode code = manifest.status().code();
    if (code != StatusCode::kNotFound && code != StatusCode::kDamaged) return manifest.status();
    return RebuildAll();
  }

 private:
  using EditNumbers = std::set<std::uint64_t, std::greater<>>;

  std::string Path(const std::string& name) const { return folder_ + "/" + name; }

  // ---- With a manifest ----

  Status RebuildNamed() {
    bool is_changed = false;
    for (SegmentInfo& info : manifest_.segments) {
      const SegmentInfo before = info;
      Status status = RebuildSegment(&info);
      if (!status.ok()) return status;
      is_changed = is_changed || !(before.terms == info.terms) || !(before.table == info.table);
    }
    if (!is_changed) return {};
    ++manifest_.generation;
    return WriteManifest(folder_, manifest_);
  }

  Status RebuildSegment(SegmentInfo* info) {
    const bool has_terms = IsAtRest(Path(TermsFile(*info)), info->terms);
    const bool has_table = IsAtRest(Path(TableFile(*info)), info->table);
    if (has_terms && has_table) return {};
    const std::string path = Path(SegmentFile(*info));
    if (!IsAtRest(path, info->segment)) {
      return {StatusCode::kDamaged, "its bytes have changed, so nothing is made from it", path};
    }
    const Result<DerivedFiles> derived = DeriveFiles(path);
    if (!derived.ok()) return derived.status();
    if (derived->documents != info->documents) {
      return {StatusCode::kDamaged, "it has other documents than MANIFEST says", path};
    }
    Status status;
    if (!has_terms) status = Replace(TermsFile(*info), derived->terms, &info->terms);
    if (status.ok() && !has_table) status = ReplaceTable(*derived, info);
    return status;
  }

  Status ReplaceTable(const DerivedFiles& derived, SegmentInfo* info) {
    if (!derived.with_positions) {
      Note(TableFile(*info), "without positions, it counts each word of a document once");
    }
    return Replace(TableFile(*info), derived.table, &info->table);
  }

  Status Replace(const std::string& name, const std::string& bytes, FileSummary* summary) {
    const FileSummary made = SummaryOfBytes(bytes);
    Status status = ReplaceFile(Path(name), bytes);
    if (!status.ok()) return status;
    report_->rebuilt.push_back(Path(name));
    if (summary->bytes != 0 && !(made == *summary)) {
      Note(name, "it is not what it was: documents may count fewer words");
    }
    *summary = made;
    return {};
  }

  void Note(const std::string& name, const std::string& text) {
    report_->notes.push_back(Path(name) + ": " + text);
  }

  // ---- Without one ----

  Status RebuildAll() {
    Status status = FindFiles();
    if (!status.ok()) return status;
    if (segments_.empty()) return NoIndexAt(folder_);
    bool is_first = true;
    // The newest first: of a name that lives twice, its document stays.
    for (auto segment = segments_.rbegin(); segment != segments_.rend(); ++segment) {
      status = TakeSegment(segment->first, segment->second, is_first);
      if (!status.ok()) return status;
      is_first = false;
    }
    std::reverse(manifest_.segments.begin(), manifest_.segments.end());
    manifest_.next_segment = segments_.rbegin()->first + 1;
    manifest_.properties.emplace(kAnalyzerProperty, Analyzer::kVersion);  // as far as is known
    // No index had so many commits, so readers see that it is another state.
    manifest_.generation = static_cast<std::uint64_t>(std::time(nullptr));
    status = WriteManifest(folder_, manifest_);
    if (!status.ok()) return status;
    report_->rebuilt.push_back(ManifestPath(folder_));
    Note("MANIFEST", "properties are lost");
    if (segments_.size() > 1) Note("MANIFEST", "documents are in order of their segments' numbers");
    return {};
  }

  // Finds index files by their numbers, with the numbers of their edits.
  Status FindFiles() {
    const Result<std::vector<std::string>> names = NamesIn(folder_);
    if (!names.ok()) return names.status();
    std::map<std::uint64_t, EditNumbers> edits;
    for (const std::string& name : *names) {
      LineReader reader(name);
      std::uint64_t number = 0;
      std::uint64_t edit_number = 0;
      if (!reader.ReadNumber(&number) || number == 0) continue;
      if (reader.Skip(".segment") && reader.empty()) segments_[number];
      const bool is_edits =
          reader.Skip("-") && reader.ReadNumber(&edit_number) && reader.Skip(".edits");
      if (is_edits && reader.empty() && edit_number != 0) edits[number].insert(edit_number);
    }
    for (auto& [number, numbers] : segments_) numbers = edits[number];
    return {};
  }

  Status TakeSegment(std::uint64_t number, const EditNumbers& edit_numbers, bool is_first) {
    SegmentInfo info;
    info.number = number;
    const std::string path = Path(SegmentFile(info));
    Result<DerivedFiles> derived = DeriveFiles(path);
    if (!derived.ok()) return derived.status();
    if (derived->documents == 0) return {};
    if (!is_first && derived->with_positions != manifest_.with_positions) {
      return {StatusCode::kDamaged, "other segments differ from it in having positions", path};
    }
    manifest_.with_positions = derived->with_positions;
    info.documents = derived->documents;
    const Result<FileSummary> summary = SummaryOf(path);
    if (!summary.ok()) return summary.status();
    info.segment = *summary;
    Status status = KeepOrReplace(*derived, &info);
    if (!status.ok()) return status;
    status = TakeEdits(edit_numbers, &info);
    if (!status.ok()) return status;
    status = LeaveOutTwins(edit_numbers, &info);
    if (!status.ok()) return status;
    if (info.removed < info.documents) manifest_.segments.push_back(info);
    return {};
  }

  // A table that is whole knows more than its index file: how many words documents have.
  Status KeepOrReplace(const DerivedFiles& derived, SegmentInfo* info) {
    const std::string terms = Path(TermsFile(*info));
    const std::string table = Path(TableFile(*info));
    info->terms = SummaryOfBytes(derived.terms);
    Status status;
    if (!IsAtRest(terms, info->terms))
      status = Replace(TermsFile(*info), derived.terms, &info->terms);
    if (!status.ok()) return status;
    if (!IsTableOf(table, derived)) return ReplaceTable(derived, info);
    const Result<FileSummary> summary = SummaryOf(table);
    if (!summary.ok()) return summary.status();
    info->table = *summary;
    return {};
  }

  // Returns whether the document table at `path` is whole and has the documents of `derived`.
  static bool IsTableOf(const std::string& path, const DerivedFiles& derived) {
    const Result<FileSummary> summary = SummaryOf(path);
    if (!summary.ok()) return false;
    auto file = FileBytes::Open(path, summary->bytes);
    if (!file.ok()) return false;
    const auto found = DocumentTable::Open(std::move(*file));
    const auto expected = DocumentTable::Open(FileBytes::InMemory(derived.table, path));
    if (!found.ok() || !found->Verify().ok() || !expected.ok()) return false;
    if (found->segment_checksum() != expected->segment_checksum()) return false;
    if (found->size() != expected->size()) return false;
    for (std::size_t i = 1; i <= found->size(); ++i) {
      const auto code = static_cast<Code>(i);
      if (found->NameOf(code) != expected->NameOf(code)) return false;
      if (found->WordsOf(code) < expected->WordsOf(code)) return false;
    }
    return true;
  }

  // Damaged edits are left out. Those that the system does not read now may be sound: without them,
  // removed documents would live again.
  Status TakeEdits(const EditNumbers& numbers, SegmentInfo* info) {
    for (const std::uint64_t number : numbers) {
      SegmentInfo edited = *info;
      edited.edit_number = number;
      const Result<std::string> bytes = ReadWholeFile(Path(EditsFile(edited)), kMaxManifestBytes);
      if (bytes.status().code() == StatusCode::kSystem) return bytes.status();
      if (!bytes.ok()) continue;
      const Result<Edits> edits = Edits::Decode(*bytes, info->documents);
      if (!edits.ok()) {
        Note(EditsFile(edited), "it is damaged, and left out");
        continue;
      }
      edited.edits = SummaryOfBytes(*bytes);
      edited.removed = static_cast<std::uint32_t>(edits->removed_count());
      *info = edited;
      Note(EditsFile(edited), "these edits are taken for the last ones");
      return {};
    }
    return {};
  }

  // Removes documents whose names live in a newer segment.
  Status LeaveOutTwins(const EditNumbers& numbers, SegmentInfo* info) {
    const auto segment = Segment::Open(folder_, *info, manifest_.with_positions);
    if (!segment.ok()) return segment.status();
    Edits edits = (*segment)->edits();
    for (std::size_t i = 1; i <= (*segment)->size(); ++i) {
      const auto code = static_cast<Code>(i);
      if (edits.IsRemoved(code)) continue;
      if (!names_.emplace((*segment)->NameOf(code)).second) edits.Remove(code);
    }
    if (!(*segment)->status().ok()) return (*segment)->status();
    if (edits.removed_count() == info->removed) return {};
    Note(SegmentFile(*info), std::to_string(edits.removed_count() - info->removed) +
                                 " documents live in newer segments, and are left out here");
    info->edit_number = numbers.empty() ? 1 : *numbers.begin() + 1;
    info->removed = static_cast<std::uint32_t>(edits.removed_count());
    const std::string bytes = edits.Encode();
    info->edits = SummaryOfBytes(bytes);
    return ReplaceFile(Path(EditsFile(*info)), bytes);
  }

  const std::string folder_;
  RebuildReport* const report_;
  Manifest manifest_;
  std::map<std::uint64_t, EditNumbers> segments_;  // without a manifest
  std::set<std::string, std::less<>> names_;       // that live in the segments taken so far
};

}  // namespace

Status RebuildDerivedFiles(const std::string& folder, RebuildReport* report) {
  RebuildReport ignored;
  RebuildReport* const wanted = report != nullptr ? report : &ignored;
  *wanted = {};
  return Caught(folder, [&] { return Rebuilder(folder, wanted).Rebuild(); });
}

}  // namespace kestan::search
