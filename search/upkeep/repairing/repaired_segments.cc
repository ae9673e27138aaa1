// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/upkeep/repairing/repaired_segments.h"

#include <kestan/index_file.h>

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "search/files/descriptor.h"
#include "search/files/numbers.h"
#include "search/index/manifest/manifest.h"
#include "search/upkeep/file_copy.h"
#include "search/upkeep/loose_segment.h"
#include "search/upkeep/repairing/repaired_file.h"
#include "search/upkeep/repairing/segment_salvage.h"

namespace kestan::search {
namespace {

bool IsAsExpected(const std::string& path, const FileSummary& expected) {
  const Result<FileSummary> found = SummaryOf(path);
  return found.ok() && *found == expected;
}

// Returns whether the records of the index file at `path` agree with each other, as far as a check
// can say: where documents lack words, it does not see whether others share a position.
bool HasSoundRecords(const std::string& path, bool* lack_words) {
  IndexFile file;
  if (file.Open(path.c_str()) != StoreError::kNone) return false;
  bool is_sound = true;
  const auto take = [&](const Finding& finding) {
    const bool is_of_words = finding.kind == FindingKind::kCheckWordsMissing;
    *lack_words = *lack_words || is_of_words;
    is_sound = is_sound && (is_of_words || finding.severity != Severity::kFault);
  };
  kestan::CheckIndexWithFindings(file.store(), take, CodeReuse::kNever);
  return is_sound;
}

// Whether two files say the same of the same index file, or the same of half of what the second one
// has: then the index file has changed since the first one was written.
enum class Likeness { kSame, kAlike, kOther };

template <typename File>
Likeness LikenessOf(std::size_t same, const File& found, const File& made) {
  const bool is_of_same_file = found.segment_checksum() == made.segment_checksum();
  const auto first = static_cast<std::size_t>(found.size());
  const auto second = static_cast<std::size_t>(made.size());
  if (same == first && same == second && is_of_same_file) return Likeness::kSame;
  return same >= second - same ? Likeness::kAlike : Likeness::kOther;
}

bool IsSamePlace(const RecordPlace& left, const RecordPlace& right) {
  return left.offset == right.offset && left.value_bytes == right.value_bytes;
}

// Words may have been refused, so that a table counts more than there are.
bool IsSameDocument(const DocumentTable& found, const DocumentTable& made, Code code) {
  const DocumentEntry left = found.EntryOf(code);
  const DocumentEntry right = made.EntryOf(code);
  return left.name == right.name && left.added == right.added &&
         found.WordsOf(code) >= made.WordsOf(code) &&
         std::equal(left.fields.begin(), left.fields.end(), right.fields.begin(), IsSamePlace);
}

Likeness CompareTables(const DocumentTable& found, const DocumentTable& made) {
  std::size_t same = 0;
  for (std::size_t i = 1; i <= std::min(found.size(), made.size()); ++i) {
    if (IsSameDocument(found, made, static_cast<Code>(i))) ++same;
  }
  return LikenessOf(same, found, made);
}

Likeness CompareTerms(const TermDictionary& found, const TermDictionary& made) {
  std::size_t same = 0;
  const Status status = made.ForEach("", [&](const TermEntry& entry) {
    const auto other = found.Find(entry.term);
    const bool is_same = other.ok() && *other && (*other)->documents == entry.documents &&
                         (*other)->place.value_bytes == entry.place.value_bytes;
    same += is_same ? 1 : 0;
    return true;
  });
  if (!status.ok()) return Likeness::kOther;
  return LikenessOf(same, found, made);
}

// What cannot be read is lost; what cannot be written, or for lack of memory, ends the repair.
bool IsOfReading(const Status& status, const std::string& target) {
  const bool is_of_target = status.file().compare(0, target.size(), target) == 0;
  return status.code() == StatusCode::kDamaged ||
         (!is_of_target &&
          (status.code() == StatusCode::kNotFound || status.code() == StatusCode::kSystem));
}

}  // namespace

// ---- One segment ----

Result<std::optional<SegmentInfo>> RepairedSegments::Take(const DamagedSegment& damaged,
                                                          std::optional<bool>* with_positions) {
  const bool is_sound = damaged.is_in_manifest
                            ? IsAsExpected(Path(SegmentFile(damaged.info)), damaged.info.segment)
                            : IsSound(damaged);
  if (is_sound) {
    Taken taken = TakeSound(damaged, with_positions);
    if (taken.ok() || !IsOfReading(taken.status(), target_)) return taken;
    RemoveSegmentFiles(target_, damaged.info);
  }
  items_.SetDamaged();
  return Salvage(damaged, with_positions);
}

bool RepairedSegments::IsSound(const DamagedSegment& damaged) {
  const std::string path = Path(SegmentFile(damaged.info));
  bool lack_words = false;
  if (!HasSoundRecords(path, &lack_words)) return false;
  if (!lack_words) return true;
  SegmentSalvage words({path, path, FindTable(damaged), FindTerms(damaged), false, {}}, &items_);
  if (!words.Open().ok()) return false;
  const Result<bool> agree = words.WordsAgree();
  return agree.ok() && *agree;
}

Status RepairedSegments::Lose(const DamagedSegment& damaged, const std::string& why) {
  const std::string file = Path(SegmentFile(damaged.info));
  items_.Add(RepairKind::kSegmentLost, file, "", why);
  const std::optional<DocumentTable> table = FindTable(damaged);
  if (!table) return {};
  const FoundEdits found = FindEdits(damaged, table->size());
  for (std::size_t i = 1; i <= table->size(); ++i) {
    const auto code = static_cast<Code>(i);
    if (found.edits && found.edits->IsRemoved(code)) continue;
    const DocumentEdit* const edit = found.edits ? found.edits->EditOf(code) : nullptr;
    const bool is_renamed = edit != nullptr && edit->name;
    items_.Add(RepairKind::kLost, file, is_renamed ? *edit->name : std::string(table->NameOf(code)),
               "its segment is lost");
  }
  return {};
}

// ---- A segment whose index file is sound ----

Result<std::optional<SegmentInfo>> RepairedSegments::TakeSound(
    const DamagedSegment& damaged, std::optional<bool>* with_positions) {
  const std::string path = Path(SegmentFile(damaged.info));
  Result<DerivedFiles> derived = DeriveFiles(path);
  if (!derived.ok()) return derived.status();
  if (derived->documents == 0) return std::optional<SegmentInfo>();
  if (*with_positions && **with_positions != derived->with_positions) {
    Status status = Lose(damaged, "other segments differ from it in having positions");
    if (!status.ok()) return status;
    return std::optional<SegmentInfo>();
  }
  if (!damaged.is_in_manifest && IsContradicted(damaged, *derived)) {
    return Status(StatusCode::kDamaged, "what stands beside it contradicts it", path);
  }
  *with_positions = derived->with_positions;
  SegmentInfo info;
  info.number = damaged.info.number;
  info.documents = derived->documents;
  const auto copy = CopyFile(path, TargetPath(SegmentFile(info)), nullptr);
  if (!copy.ok()) return copy.status();
  info.segment = *copy;
  Status status = WriteDerived(damaged, *derived, &info);
  if (!status.ok()) return status;
  FoundEdits found = FindEdits(damaged, info.documents);
  if (found.edits) {
    info.edit_number = found.number;
    info.removed = static_cast<std::uint32_t>(found.edits->removed_count());
    const auto edits = WriteNewFile(TargetPath(EditsFile(info)), found.edits->Encode());
    if (!edits.ok()) return edits.status();
    info.edits = *edits;
  }
  return std::optional<SegmentInfo>(info);
}

// Returns whether the document table or the term dictionary is that of the segment, and says
// something else than its index file. They have checksums; without MANIFEST, the latter has none.
bool RepairedSegments::IsContradicted(const DamagedSegment& damaged,
                                      const DerivedFiles& derived) const {
  const std::optional<DocumentTable> table = FindTable(damaged);
  const auto made_table = DocumentTable::Open(FileBytes::InMemory(derived.table, ""));
  if (table && made_table.ok() && CompareTables(*table, *made_table) == Likeness::kAlike) {
    return true;
  }
  const std::optional<TermDictionary> terms = FindTerms(damaged);
  const auto made_terms = TermDictionary::Open(FileBytes::InMemory(derived.terms, ""));
  return terms && made_terms.ok() && CompareTerms(*terms, *made_terms) == Likeness::kAlike;
}

// A table that is whole knows more than its index file: how many words documents have.
Status RepairedSegments::WriteDerived(const DamagedSegment& damaged, const DerivedFiles& derived,
                                      SegmentInfo* info) {
  const FileSummary made{derived.terms.size(), ChecksumOf(derived.terms)};
  const std::string terms_path = Path(TermsFile(*info));
  if (!IsAsExpected(terms_path, damaged.is_in_manifest ? damaged.info.terms : made)) {
    items_.Add(RepairKind::kDerivedFile, terms_path, "", "made again");
    items_.SetDamaged();
  }
  const auto terms = WriteNewFile(TargetPath(TermsFile(*info)), derived.terms);
  if (!terms.ok()) return terms.status();
  info->terms = *terms;
  const std::string table_path = Path(TableFile(*info));
  const std::optional<DocumentTable> found = FindTable(damaged);
  const auto derived_table = DocumentTable::Open(FileBytes::InMemory(derived.table, table_path));
  if (!derived_table.ok()) return derived_table.status();
  const bool is_its_own =
      found && (damaged.is_in_manifest || CompareTables(*found, *derived_table) == Likeness::kSame);
  if (is_its_own) {
    const auto table = CopyFile(table_path, TargetPath(TableFile(*info)), nullptr);
    if (!table.ok()) return table.status();
    info->table = *table;
    return {};
  }
  items_.SetDamaged();
  items_.Add(RepairKind::kDerivedFile, table_path, "", "made again");
  const auto table = WriteNewFile(TargetPath(TableFile(*info)), derived.table);
  if (!table.ok()) return table.status();
  info->table = *table;
  const bool is_same =
      damaged.is_in_manifest ? *table == damaged.info.table : derived.with_positions;
  if (!is_same) {
    items_.Add(RepairKind::kWordCounts, table_path, "",
               "documents may count fewer words than they have");
  }
  return {};
}

RepairedSegments::FoundEdits RepairedSegments::FindEdits(const DamagedSegment& damaged,
                                                         std::size_t documents) {
  std::vector<std::uint64_t> numbers = damaged.edit_numbers;
  if (damaged.is_in_manifest && damaged.info.edit_number != 0) {
    numbers = {damaged.info.edit_number};
  }
  for (const std::uint64_t number : numbers) {
    SegmentInfo info = damaged.info;
    info.edit_number = number;
    const std::string path = Path(EditsFile(info));
    const Result<std::string> bytes = ReadWholeFile(path, kMaxManifestBytes);
    Result<Edits> edits = bytes.ok() ? Edits::Decode(*bytes, documents) : bytes.status();
    const bool is_expected =
        !damaged.is_in_manifest ||
        (bytes.ok() && FileSummary{bytes->size(), ChecksumOf(*bytes)} == damaged.info.edits);
    if (!edits.ok() || !is_expected) {
      items_.SetDamaged();
      items_.Add(RepairKind::kEditsLost, path, "",
                 "removed documents may be back, and new names and texts are lost");
      continue;
    }
    if (!damaged.is_in_manifest) {
      items_.Add(RepairKind::kEditsChosen, path, "", "these edits are taken for the last ones");
    }
    return {std::move(*edits), number};
  }
  return {};
}

// ---- A segment that is salvaged ----

// Opens a file that stands beside the index file of a segment. Nothing if it is not as it was.
std::shared_ptr<const FileBytes> RepairedSegments::OpenDerived(const DamagedSegment& damaged,
                                                               const std::string& name,
                                                               const FileSummary& expected) const {
  const Result<FileSummary> summary = SummaryOf(Path(name));
  if (!summary.ok() || (damaged.is_in_manifest && !(*summary == expected))) return nullptr;
  auto file = FileBytes::Open(Path(name), summary->bytes);
  return file.ok() ? std::move(*file) : nullptr;
}

std::optional<DocumentTable> RepairedSegments::FindTable(const DamagedSegment& damaged) const {
  auto file = OpenDerived(damaged, TableFile(damaged.info), damaged.info.table);
  if (file == nullptr) return std::nullopt;
  Result<DocumentTable> table = DocumentTable::Open(std::move(file));
  if (!table.ok() || !table->Verify().ok()) return std::nullopt;
  return std::move(*table);
}

std::optional<TermDictionary> RepairedSegments::FindTerms(const DamagedSegment& damaged) const {
  auto file = OpenDerived(damaged, TermsFile(damaged.info), damaged.info.terms);
  if (file == nullptr) return std::nullopt;
  Result<TermDictionary> terms = TermDictionary::Open(std::move(file));
  const auto pass = [](const TermEntry&) { return true; };
  if (!terms.ok() || !terms->ForEach("", pass).ok()) return std::nullopt;
  return std::move(*terms);
}

// Returns nothing, with the segment reported, where nothing of it is left.
Result<std::optional<SegmentInfo>> RepairedSegments::LoseSalvaged(const DamagedSegment& damaged,
                                                                  const std::string& why) {
  RemoveLooseSegment(target_);
  Status status = Lose(damaged, why);
  if (!status.ok()) return status;
  return std::optional<SegmentInfo>();
}

Result<std::optional<SegmentInfo>> RepairedSegments::Salvage(const DamagedSegment& damaged,
                                                             std::optional<bool>* with_positions) {
  const std::string path = Path(SegmentFile(damaged.info));
  SegmentSalvage::Sources sources = {
      path, LooseFile(target_), FindTable(damaged), FindTerms(damaged), damaged.is_in_manifest, {}};
  const TakeRepairItem keep = [&sources](const RepairItem& item) {
    sources.findings.push_back(item);
    return true;
  };
  RepairItems found(keep);
  RepairResult result;
  Status status = RepairIndexFile(
      path, LooseFile(target_), [&](const Finding& finding) { found.Add(path, finding); }, &result);
  if (status.code() == StatusCode::kSystem) return status;
  if (!status.ok()) return LoseSalvaged(damaged, status.message());
  items_.AddResult(result);
  SegmentSalvage salvage(std::move(sources), &items_);
  status = salvage.Open();
  if (!status.ok()) return status;
  const bool is_known = damaged.is_in_manifest && *with_positions;
  const bool has_positions = is_known ? **with_positions : salvage.with_positions();
  if (*with_positions && **with_positions != has_positions) {
    return LoseSalvaged(damaged, "other segments differ from it in having positions");
  }
  *with_positions = has_positions;
  items_.Add(RepairKind::kSegmentSalvaged, path, "", "its index file is damaged");
  const std::size_t documents =
      damaged.is_in_manifest ? damaged.info.documents : salvage.documents();
  const FoundEdits edits = FindEdits(damaged, documents);
  Taken taken = salvage.Write(target_, damaged.info.number, has_positions,
                              edits.edits ? &*edits.edits : nullptr);
  RemoveLooseSegment(target_);
  salvaged_.insert(damaged.info.number);
  return taken;
}

// ---- All segments ----

Result<bool> RepairedSegments::LeaveOutTwins(SegmentInfo* info, bool with_positions) {
  const auto segment = Segment::Open(target_, *info, with_positions);
  if (!segment.ok()) return segment.status();
  const std::string file = Path(SegmentFile(*info));
  const bool is_reported = salvaged_.count(info->number) != 0;
  Edits edits = (*segment)->edits();
  for (std::size_t i = 1; i <= (*segment)->size(); ++i) {
    const auto code = static_cast<Code>(i);
    if (edits.IsRemoved(code)) continue;
    const std::string name((*segment)->NameOf(code));
    const bool is_new = names_.insert(name).second;
    if (!is_new) {
      edits.Remove(code);
      items_.Add(RepairKind::kNameTwice, file, name, "the one in a newer segment stays");
    } else if (!is_reported) {
      items_.Add(RepairKind::kSaved, file, name);
    }
  }
  if (!(*segment)->status().ok()) return (*segment)->status();
  if (edits.removed_count() == info->removed) return info->removed < info->documents;
  if (info->edit_number != 0) unlink(TargetPath(EditsFile(*info)).c_str());
  ++info->edit_number;
  info->removed = static_cast<std::uint32_t>(edits.removed_count());
  const auto written = WriteNewFile(TargetPath(EditsFile(*info)), edits.Encode());
  if (!written.ok()) return written.status();
  info->edits = *written;
  return info->removed < info->documents;
}

}  // namespace kestan::search
