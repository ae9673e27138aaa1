// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/search/check.h>

#include <kestan/index_file.h>
#include <kestan/maintenance.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string_view>
#include <system_error>
#include <utility>

#include "search/files/file_bytes.h"
#include "search/files/folder_names.h"
#include "search/files/output_file.h"
#include "search/index/caught.h"
#include "search/index/manifest/manifest.h"
#include "search/segment/derived_files.h"
#include "search/segment/plain_index.h"
#include "search/segment/segment.h"
#include "search/upkeep/staging_folder.h"

namespace kestan::search {
namespace {

class Checker {
 public:
  Checker(std::string path, CheckOptions options)
      : folder_(std::move(path)), options_(std::move(options)) {}

  Result<CheckReport> CheckFolder() {
    Result<Manifest> manifest = ReadManifest(folder_);
    const bool is_missing = manifest.status().code() == StatusCode::kNotFound;
    if (is_missing) manifest = StatusOfMissingManifest(folder_);
    if (!manifest.ok() && manifest.status().code() != StatusCode::kDamaged) {
      return manifest.status();
    }
    if (manifest.ok()) {
      report_.segments = manifest->segments.size();
      for (const SegmentInfo& info : manifest->segments) {
        CheckSegment(info, manifest->with_positions);
      }
      CheckOtherFiles(*manifest);
    } else {
      Take(is_missing ? Kind::kMissingFile : Kind::kManifest, manifest.status());
    }
    return Finished();
  }

  Result<CheckReport> CheckFile() {
    report_.segments = 1;
    CheckRecords(folder_, false);
    const auto segment = Segment::OpenIndexFile(folder_);
    if (segment.ok()) report_.documents = (*segment)->living_documents();
    if (!segment.ok() && report_.faults == 0) Take(KindOf(segment.status()), segment.status());
    return Finished();
  }

 private:
  Result<CheckReport> Finished() {
    if (!out_of_memory_.ok()) return out_of_memory_;
    return std::move(report_);
  }

  using Kind = IndexFindingKind;

  void Take(Kind kind, const std::string& file, std::string_view key, std::string_view text) {
    Take({kind, true, file, std::string(key), std::string(text)});
  }

  void TakeNote(Kind kind, const std::string& file, std::string_view key, std::string_view text) {
    Take({kind, false, file, std::string(key), std::string(text)});
  }

  // A lack of memory is no finding: it ends the check.
  void Take(Kind kind, const Status& status) {
    if (status.code() == StatusCode::kOutOfMemory) out_of_memory_ = status;
    Take(kind, status.file(), "", status.message());
  }

  void Take(IndexFinding finding) {
    ++(finding.is_fault ? report_.faults : report_.notes);
    if (options_.take) options_.take(finding);
    if (++findings_of_[finding.file] > options_.most_findings) return;
    report_.findings.push_back(std::move(finding));
  }

  std::string Path(const std::string& name) const { return folder_ + "/" + name; }

  void CheckSegment(const SegmentInfo& info, bool with_positions) {
    const bool segment_is_sound = CheckBytes(SegmentFile(info), info.segment);
    const bool terms_are_sound = CheckBytes(TermsFile(info), info.terms);
    const bool table_is_sound = CheckBytes(TableFile(info), info.table);
    bool edits_are_sound = true;
    if (info.edit_number != 0) edits_are_sound = CheckBytes(EditsFile(info), info.edits);
    CheckRecords(Path(SegmentFile(info)), segment_is_sound);
    if (segment_is_sound && terms_are_sound && table_is_sound) CheckDerived(info, with_positions);
    if (terms_are_sound && table_is_sound && edits_are_sound) CheckDocuments(info, with_positions);
  }

  bool CheckBytes(const std::string& name, const FileSummary& expected) {
    const Result<FileSummary> found = SummaryOf(Path(name));
    if (!found.ok()) {
      Take(Kind::kMissingFile, found.status());
    } else if (found->bytes != expected.bytes) {
      Take(Kind::kChangedFile, Path(name), "",
           "it has " + std::to_string(found->bytes) + " bytes instead of " +
               std::to_string(expected.bytes));
    } else if (found->checksum != expected.checksum) {
      Take(Kind::kChangedFile, Path(name), "", "its bytes have changed since it was written");
    } else {
      return true;
    }
    return false;
  }

  void CheckRecords(const std::string& path, bool is_as_written) {
    IndexFile file;
    errno = 0;
    const StoreError error = file.Open(path.c_str());
    if (error == StoreError::kFileOpen && errno == ENOENT) return;  // which was found before
    if (error != StoreError::kNone) {
      const Status status = StatusOfIndexFile(error, errno, path);
      return Take(KindOf(status), status);
    }
    const CheckResult result = kestan::CheckIndexWithFindings(
        file.store(),
        [&](const Finding& finding) {
          is_as_written ? TakeOfWritten(path, finding) : TakeOf(path, finding);
        },
        is_as_written ? CodeReuse::kNever : CodeReuse::kPossible);
    if (result.file_error == StoreError::kOutOfMemory) {
      out_of_memory_ = StatusOfIndexFile(result.file_error, ENOMEM, path);
    }
  }

  // What is no index file says so itself; another program may just have it.
  static Kind KindOf(const Status& status) {
    const bool is_damaged =
        status.code() == StatusCode::kDamaged || status.code() == StatusCode::kVersion;
    return is_damaged ? Kind::kNoIndexFile : Kind::kMissingFile;
  }

  // Of a file that is as it was written, notes say nothing: words such as "t-shirt" are meant. A
  // writer never leaves words out, but it refuses those whose keys belong to other records.
  void TakeOfWritten(const std::string& path, const Finding& finding) {
    if (finding.kind == FindingKind::kCheckWordsMissing) {
      TakeNote(Kind::kWordsMissing, path, finding.key,
               "words of it have the keys of other records");
    } else if (finding.severity == Severity::kFault) {
      TakeOf(path, finding);
    }
  }

  void TakeOf(const std::string& path, const Finding& finding) {
    const bool is_of_words = finding.kind == FindingKind::kCheckWordsMissing;
    Take({is_of_words ? Kind::kWordsMissing : Kind::kRecord, finding.severity == Severity::kFault,
          path, finding.key == kWholeFile ? "" : std::string(finding.key),
          std::string(finding.text)});
  }

  void CheckDerived(const SegmentInfo& info, bool with_positions) {
    Result<DerivedFiles> derived = DeriveFiles(Path(SegmentFile(info)));
    if (!derived.ok()) return Take(Kind::kRecord, derived.status());
    if (derived->with_positions != with_positions) {
      Take(Kind::kManifest, Path(SegmentFile(info)), "",
           "MANIFEST contradicts it: are there positions");
    }
    CompareTerms(info, std::move(derived->terms));
    CompareTables(info, std::move(derived->table));
  }

  void CompareTerms(const SegmentInfo& info, std::string bytes) {
    const std::string path = Path(TermsFile(info));
    auto file = FileBytes::Open(path, info.terms.bytes);
    if (!file.ok()) return Take(Kind::kDerivedFile, file.status());
    const auto found = TermDictionary::Open(std::move(*file));
    if (!found.ok()) return Take(Kind::kDerivedFile, found.status());
    const auto expected = TermDictionary::Open(FileBytes::InMemory(std::move(bytes), path));
    if (!expected.ok()) return Take(Kind::kDerivedFile, expected.status());
    if (found->size() != expected->size()) {
      Take(Kind::kDerivedFile, path, "", "it has other terms than its segment");
    }
    FindFirstRecord(*expected);
    TermDictionary::Cursor left(*found);
    TermDictionary::Cursor right(*expected);
    for (;;) {
      const Result<bool> has_left = left.Next();
      if (!has_left.ok()) return Take(Kind::kDerivedFile, has_left.status());
      const Result<bool> has_right = right.Next();
      if (!has_right.ok() || !*has_left || !*has_right) return;
      if (left.entry().term != right.entry().term) {
        return Take(Kind::kDerivedFile, path, left.entry().term,
                    "its segment has another term here");
      }
      CompareEntries(path, left.entry(), right.entry());
    }
  }

  void CompareEntries(const std::string& path, const TermEntry& found, const TermEntry& expected) {
    if (found.documents != expected.documents) {
      Take(Kind::kDerivedFile, path, found.term, "its segment has another number of documents");
    }
    if (!IsSamePlace(found.place, expected.place) && !HasMoved(found.place)) {
      Take(Kind::kDerivedFile, path, found.term, "its record lies elsewhere");
    }
  }

  // Finds where the first posting record of a segment lies.
  void FindFirstRecord(const TermDictionary& terms) {
    first_record_ = UINT64_MAX;
    static_cast<void>(terms.ForEach("", [this](const TermEntry& entry) {
      first_record_ = std::min(first_record_, entry.place.offset);
      return true;
    }));
  }

  // Where many words have one hash, records are moved out of the start of the index file after
  // their places were written down. No record lies there then, and readers ask gdbm.
  bool HasMoved(const RecordPlace& found) const {
    return found.offset != 0 && found.offset < first_record_;
  }

  static bool IsSamePlace(const RecordPlace& left, const RecordPlace& right) {
    return left.offset == right.offset && left.value_bytes == right.value_bytes;
  }

  void CompareTables(const SegmentInfo& info, std::string bytes) {
    const std::string path = Path(TableFile(info));
    auto file = FileBytes::Open(path, info.table.bytes);
    if (!file.ok()) return Take(Kind::kDerivedFile, file.status());
    const auto found = DocumentTable::Open(std::move(*file));
    if (!found.ok()) return Take(Kind::kDerivedFile, found.status());
    const auto expected = DocumentTable::Open(FileBytes::InMemory(std::move(bytes), path));
    if (!expected.ok()) return Take(Kind::kDerivedFile, expected.status());
    if (found->size() != expected->size() || found->size() != info.documents) {
      return Take(Kind::kDerivedFile, path, "",
                  "it has another number of documents than its segment");
    }
    for (std::size_t i = 1; i <= found->size(); ++i) {
      const auto code = static_cast<Code>(i);
      const DocumentEntry entry = expected->EntryOf(code);
      CompareDocuments(path, found->EntryOf(code), entry);
      if (found->WordsOf(code) < expected->WordsOf(code)) {
        Take(Kind::kDerivedFile, path, entry.name, "its segment has more words of the document");
      }
      if (found->Find(entry.name) != code) {
        Take(Kind::kDerivedFile, path, entry.name, "the document is not found by its name");
      }
    }
    if (!found->status().ok()) Take(Kind::kDerivedFile, found->status());
  }

  void CompareDocuments(const std::string& path, const DocumentEntry& found,
                        const DocumentEntry& expected) {
    if (found.name != expected.name || found.added != expected.added) {
      Take(Kind::kDerivedFile, path, expected.name, "its segment has another document here");
    }
    for (std::size_t i = 0; i < kDocumentFields; ++i) {
      if (IsSamePlace(found.fields[i], expected.fields[i])) continue;
      if (HasMoved(found.fields[i])) continue;
      Take(Kind::kDerivedFile, path, expected.name, "a text of the document lies elsewhere");
    }
  }

  void CheckDocuments(const SegmentInfo& info, bool with_positions) {
    const auto segment = Segment::Open(folder_, info, with_positions);
    if (!segment.ok()) {
      // The index file may be shorter, which was found before.
      if (segment.status().file() != Path(SegmentFile(info)))
        Take(Kind::kDerivedFile, segment.status());
      return;
    }
    report_.documents += (*segment)->living_documents();
    for (std::size_t i = 1; i <= (*segment)->size(); ++i) {
      const auto code = static_cast<Code>(i);
      if ((*segment)->IsRemoved(code)) continue;
      const std::string_view name = (*segment)->NameOf(code);
      if (names_.emplace(name).second) continue;
      Take(Kind::kNameTwice, Path(TableFile(info)), name, "two documents have this name");
    }
  }

  void CheckOtherFiles(const Manifest& manifest) {
    std::set<std::string> named;
    for (const SegmentInfo& info : manifest.segments) {
      named.insert({SegmentFile(info), TermsFile(info), TableFile(info)});
      if (info.edit_number != 0) named.insert(EditsFile(info));
    }
    const Result<std::vector<std::string>> names = NamesIn(folder_);
    if (!names.ok()) return Take(Kind::kMissingFile, folder_, "", names.status().message());
    for (const std::string& name : *names) {
      if (!IsSegmentFileName(name) || named.count(name) != 0) continue;
      TakeNote(Kind::kUnnamedFile, Path(name), "",
               "MANIFEST does not name it; the next writer removes it");
    }
  }

  const std::string folder_;
  const CheckOptions options_;
  CheckReport report_;
  Status out_of_memory_;
  std::uint64_t first_record_ = 0;                  // of the segment that is being compared
  std::map<std::string, std::size_t> findings_of_;  // of each file
  std::set<std::string, std::less<>> names_;        // of all living documents
};

}  // namespace

Result<CheckReport> CheckIndex(const std::string& path, const CheckOptions& options) {
  return Caught(path, [&] {
    std::error_code error;
    const bool is_file = std::filesystem::is_regular_file(path, error);
    Checker checker(WithoutSlashes(path), options);
    return is_file ? checker.CheckFile() : checker.CheckFolder();
  });
}

}  // namespace kestan::search
