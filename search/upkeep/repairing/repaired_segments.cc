#include "search/upkeep/repairing/repaired_segments.h"

#include <kestan/index_file.h>

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

#include "search/files/descriptor.h"
#include "search/files/numbers.h"
#include "search/index/manifest/manifest.h"
#include "search/index/merging/merger.h"
#include "search/segment/plain_index.h"
#include "search/upkeep/file_copy.h"
#include "search/upkeep/loose_segment.h"
#include "search/upkeep/repairing/repaired_file.h"

namespace kestan::search {
namespace {

constexpr std::array<const char*, kDocumentFields> kFieldNames = {"title", "summary", "host data"};

bool IsAsExpected(const std::string& path, const FileSummary& expected) {
  const Result<FileSummary> found = SummaryOf(path);
  return found.ok() && *found == expected;
}

// Returns whether the records of the index file at `path` agree with each other.
bool HasSoundRecords(const std::string& path) {
  IndexFile file;
  if (file.Open(path.c_str()) != StoreError::kNone) return false;
  bool is_sound = true;
  kestan::CheckIndexWithFindings(file.store(), [&is_sound](const Finding& finding) {
    const bool is_of_words = finding.kind == FindingKind::kCheckWordsMissing;
    is_sound = is_sound && (is_of_words || finding.severity != Severity::kFault);
  });
  return is_sound;
}

// What cannot be read is lost; what cannot be written, or for lack of memory, ends the repair.
bool IsOfReading(const Status& status, const std::string& target) {
  const bool is_of_target = status.file().compare(0, target.size(), target) == 0;
  return status.code() == StatusCode::kDamaged ||
         (!is_of_target &&
          (status.code() == StatusCode::kNotFound || status.code() == StatusCode::kSystem));
}

// Applies the edits of a segment to those of one that was made of it, in which documents have the
// codes `new_codes`.
void ApplyEdits(const Edits& old_edits, const std::map<Code, Code>& new_codes, Edits* edits) {
  for (const auto& [code, now] : new_codes) {
    if (edits->IsRemoved(now)) continue;
    if (old_edits.IsRemoved(code)) {
      edits->Remove(now);
      continue;
    }
    const DocumentEdit* const edit = old_edits.EditOf(code);
    if (edit == nullptr) continue;
    if (edit->name) edits->Rename(now, *edit->name, edit->renamed);
    for (std::size_t field = 0; field < kDocumentFields; ++field) {
      if (!edit->fields[field]) continue;
      edits->SetField(now, static_cast<DocumentField>(field), *edit->fields[field]);
    }
  }
}

}  // namespace

// ---- One segment ----

Result<std::optional<SegmentInfo>> RepairedSegments::Take(const DamagedSegment& damaged,
                                                          std::optional<bool>* with_positions) {
  const bool is_sound = damaged.is_in_manifest
                            ? IsAsExpected(Path(SegmentFile(damaged.info)), damaged.info.segment)
                            : HasSoundRecords(Path(SegmentFile(damaged.info)));
  if (is_sound) {
    Taken taken = TakeSound(damaged, with_positions);
    if (taken.ok() || !IsOfReading(taken.status(), target_)) return taken;
    RemoveSegmentFiles(target_, damaged.info);
  }
  items_.SetDamaged();
  return Salvage(damaged, with_positions);
}

Status RepairedSegments::Lose(const DamagedSegment& damaged, const std::string& why) {
  const std::string file = Path(SegmentFile(damaged.info));
  items_.Add(RepairKind::kSegmentLost, file, "", why);
  const std::optional<FoundTable> table = FindTable(damaged);
  if (!table) return {};
  const FoundEdits found = FindEdits(damaged, table->names.size() - 1);
  for (std::size_t i = 1; i < table->names.size(); ++i) {
    const auto code = static_cast<Code>(i);
    if (found.edits && found.edits->IsRemoved(code)) continue;
    const DocumentEdit* const edit = found.edits ? found.edits->EditOf(code) : nullptr;
    const bool is_renamed = edit != nullptr && edit->name;
    items_.Add(RepairKind::kLost, file, is_renamed ? *edit->name : table->names[i],
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
  if (IsTableOf(table_path, damaged.info.table, damaged.is_in_manifest, derived)) {
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

// Returns whether the document table at `path` is whole and has the documents of `derived`.
bool RepairedSegments::IsTableOf(const std::string& path, const FileSummary& expected,
                                 bool has_summary, const DerivedFiles& derived) const {
  const Result<FileSummary> summary = SummaryOf(path);
  if (!summary.ok() || (has_summary && !(*summary == expected))) return false;
  auto file = FileBytes::Open(path, summary->bytes);
  if (!file.ok()) return false;
  const auto found = DocumentTable::Open(std::move(*file));
  const auto made = DocumentTable::Open(FileBytes::InMemory(derived.table, path));
  if (!found.ok() || !found->Verify().ok() || !made.ok()) return false;
  if (found->segment_checksum() != made->segment_checksum()) return false;
  if (found->size() != made->size()) return false;
  for (std::size_t i = 1; i <= found->size(); ++i) {
    const auto code = static_cast<Code>(i);
    if (found->NameOf(code) != made->NameOf(code)) return false;
    if (found->WordsOf(code) < made->WordsOf(code)) return false;
  }
  return true;
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

std::optional<RepairedSegments::FoundTable> RepairedSegments::FindTable(
    const DamagedSegment& damaged) const {
  const std::string path = Path(TableFile(damaged.info));
  const Result<FileSummary> summary = SummaryOf(path);
  if (!summary.ok()) return std::nullopt;
  if (damaged.is_in_manifest && !(*summary == damaged.info.table)) return std::nullopt;
  auto file = FileBytes::Open(path, summary->bytes);
  if (!file.ok()) return std::nullopt;
  const auto table = DocumentTable::Open(std::move(*file));
  if (!table.ok() || !table->Verify().ok()) return std::nullopt;
  FoundTable found;
  found.names.resize(table->size() + 1);
  found.known.resize(table->size() + 1);
  for (std::size_t i = 1; i <= table->size(); ++i) {
    const DocumentEntry entry = table->EntryOf(static_cast<Code>(i));
    found.names[i] = entry.name;
    KnownDocument& known = found.known[i];
    known.is_known = true;
    known.words = table->WordsOf(static_cast<Code>(i));
    for (std::size_t field = 0; field < kDocumentFields; ++field) {
      known.fields[field] = entry.fields[field].offset != 0;
    }
  }
  return found;
}

Result<std::optional<SegmentInfo>> RepairedSegments::Salvage(const DamagedSegment& damaged,
                                                             std::optional<bool>* with_positions) {
  const std::string path = Path(SegmentFile(damaged.info));
  std::vector<RepairItem> findings;
  const TakeRepairItem keep = [&findings](const RepairItem& item) {
    findings.push_back(item);
    return true;
  };
  RepairItems found(keep);
  RepairResult result;
  Status repaired = RepairIndexFile(
      path, LooseFile(target_), [&](const Finding& finding) { found.Add(path, finding); }, &result);
  if (repaired.code() == StatusCode::kSystem) return repaired;
  if (!repaired.ok()) {
    Status status = Lose(damaged, repaired.message());
    if (!status.ok()) return status;
    return std::optional<SegmentInfo>();
  }
  items_.AddResult(result);
  const std::optional<FoundTable> table = FindTable(damaged);
  const Result<SegmentPointer> opened = OpenSalvaged(damaged, table);
  const bool fits =
      opened.ok() && (!*with_positions || **with_positions == (*opened)->with_positions());
  if (!fits) {
    RemoveLooseSegment(target_);
    if (!opened.ok() && !IsOfReading(opened.status(), folder_)) return opened.status();
    Status status = Lose(damaged, opened.ok() ? "other segments differ from it in having positions"
                                              : opened.status().message());
    if (!status.ok()) return status;
    return std::optional<SegmentInfo>();
  }
  *with_positions = (*opened)->with_positions();
  items_.Add(RepairKind::kSegmentSalvaged, path, "", "its index file is damaged");
  ReportDocuments(path, findings, table, **opened);
  const auto merged = MergeSegments({*opened}, target_, damaged.info.number, nullptr);
  if (!merged.ok()) return merged.status();
  RemoveLooseSegment(target_);
  salvaged_.insert(damaged.info.number);
  if (merged->documents == 0) return std::optional<SegmentInfo>();
  return std::optional<SegmentInfo>(*merged);
}

// Opens what the engine has salvaged, with the edits that the segment had. They are known by codes
// of the segment as it was, so that names lead from these to the documents that are left.
Result<RepairedSegments::SegmentPointer> RepairedSegments::OpenSalvaged(
    const DamagedSegment& damaged, const std::optional<FoundTable>& table) {
  renamed_.clear();
  removed_.clear();
  IndexFile file;
  errno = 0;
  const StoreError error = file.Open(LooseFile(target_).c_str());
  if (error != StoreError::kNone) return SystemError(errno, LooseFile(target_));
  const std::size_t highest = file.CountDocuments().highest_code;
  const std::size_t documents = damaged.is_in_manifest ? damaged.info.documents
                                : table                ? table->names.size() - 1
                                                       : highest;
  const FoundEdits found = FindEdits(damaged, documents);
  std::vector<KnownDocument> known(highest + 1);
  std::map<Code, Code> new_codes;  // of the segment as it was
  for (std::size_t i = 1; i <= documents; ++i) {
    const auto code = static_cast<Code>(i);
    const std::string name = table ? table->names[i] : std::string(file.NameOf(code));
    if (i % 1000 == 0) file.store().Flush();
    if (name.empty()) continue;
    if (found.edits && found.edits->IsRemoved(code)) removed_.insert(name);
    const DocumentEdit* const edit = found.edits ? found.edits->EditOf(code) : nullptr;
    if (edit != nullptr && edit->name) renamed_[name] = *edit->name;
    const Code now = file.CodeOf(name);
    if (now == 0) continue;
    new_codes[code] = now;
    if (table && now < known.size()) known[now] = table->known[i];
  }
  if (file.FileError() != StoreError::kNone) {
    return StatusOfIndexFile(file.FileError(), errno, LooseFile(target_));
  }
  file.Close();
  return OpenLooseSegment(target_, known, [&](Edits* edits) {
    if (found.edits) ApplyEdits(*found.edits, new_codes, edits);
  });
}

// Hands out what the engine has found: documents by the names that they have now, and none that
// were removed. What the table knows and the index file has lost comes last.
void RepairedSegments::ReportDocuments(const std::string& file,
                                       const std::vector<RepairItem>& findings,
                                       const std::optional<FoundTable>& table,
                                       const Segment& segment) {
  std::set<std::string> reported;
  const auto living_name = [this](const std::string& name) {
    const auto renamed = renamed_.find(name);
    return renamed != renamed_.end() ? renamed->second : name;
  };
  for (const RepairItem& item : findings) {
    const bool is_document = item.kind <= RepairKind::kLost;
    if (is_document && !reported.insert(item.name).second) continue;
    if (is_document && removed_.count(item.name) != 0) continue;
    items_.Add(item.kind, item.file, is_document ? living_name(item.name) : item.name, item.text);
  }
  if (!table) return;
  for (std::size_t i = 1; i < table->names.size(); ++i) {
    const std::string& name = table->names[i];
    if (removed_.count(name) != 0) continue;
    const std::optional<Code> code = segment.FindDocument(living_name(name));
    if (!code) {
      if (reported.count(name) == 0) {
        items_.Add(RepairKind::kLost, file, living_name(name), "nothing of it was found");
      }
      continue;
    }
    const DocumentEdit* const edit = segment.edits().EditOf(*code);
    for (std::size_t field = 0; field < kDocumentFields; ++field) {
      const bool is_set_later = edit != nullptr && edit->fields[field];
      const bool has_it = segment.table().EntryOf(*code).fields[field].offset != 0;
      if (!table->known[i].fields[field] || has_it || is_set_later) continue;
      items_.Add(RepairKind::kTextLost, file, living_name(name), kFieldNames[field]);
    }
  }
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
