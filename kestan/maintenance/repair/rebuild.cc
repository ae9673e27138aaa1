// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/maintenance/repair/rebuild.h>

#include <kestan/format/document_record.h>
#include <kestan/format/id_list.h>
#include <kestan/format/keys.h>
#include <kestan/format/option_flags.h>
#include <kestan/maintenance/salvage/word_list_salvage.h>
#include <kestan/storage/database.h>

#include <string_view>

namespace kestan {
namespace {

String Encoded(const Vector<Code>& codes) {
  String bytes;
  for (const Code code : codes) {
    const auto unit = EncodeCode(code);
    bytes.append(unit.data(), unit.size());
  }
  return bytes;
}

class RebuildRun {
 public:
  RebuildRun(const RebuildPlan& plan, KeptPostings* kept, Findings* findings)
      : plan_(plan), kept_(*kept), findings_(*findings) {}

  RebuildResult Run(const char* path) {
    result_.error = store_.Open(path, 1);
    if (result_.error != 0) return result_;
    for (std::size_t i = 0; i < plan_.actions.size(); ++i) WriteRecord(i);
    WriteDocuments();
    WriteSystemRecords();
    store_.Close();
    result_.error = store_.FileError();
    return result_;
  }

 private:
  // Keeps the store's cache small. After a write has failed there is no use in going on.
  void Put(std::string_view key, std::string_view value) {
    constexpr std::size_t kFlushedRecords = 10000;
    constexpr std::size_t kFlushedBytes = 1 << 22;
    if (store_.FileError() != 0) return;
    store_.Put(AsDatum(key), AsDatum(value));
    ++result_.records;
    waiting_bytes_ += key.size() + value.size();
    if (++waiting_records_ < kFlushedRecords && waiting_bytes_ < kFlushedBytes) return;
    store_.Flush();
    waiting_records_ = 0;
    waiting_bytes_ = 0;
  }

  void WriteRecord(std::size_t index) {
    const SalvagedRecord& record = plan_.salvage.records()[index];
    const std::string_view key = plan_.salvage.KeyOf(record);
    const std::string_view value = plan_.salvage.ValueOf(record);
    const RepairAction action = plan_.actions[index];
    if (record.is_cut && (action == RepairAction::kCopy || action == RepairAction::kWordList)) {
      findings_.Report(FindingKind::kRepairNote, key,
                       "cut where the next record begins or the file ends");
    }
    switch (action) {
      case RepairAction::kCopy:
        return Put(key, value);
      case RepairAction::kPostings:
        return WritePostings(index, key, value);
      case RepairAction::kWordList:
        return WriteWordList(key, value);
      case RepairAction::kRewrite:
        return;
      case RepairAction::kDrop:
        ++result_.dropped;
        findings_.Report(FindingKind::kDropped, key);
        return;
    }
  }

  void WritePostings(std::size_t index, std::string_view key, std::string_view value) {
    const KeptRecord kept = kept_.Read(AsDatum(key), AsDatum(value));
    std::uint64_t count = 0;
    String bytes;
    bool is_all = kept.is_all;
    if (is_all && !plan_.overlaps.is_any) return Put(key, value);
    bytes.reserve(value.size());
    for (const WholePosting& posting : kept.postings) {
      if (plan_.overlaps.Has(index, posting.first_unit)) {
        is_all = false;
        continue;
      }
      ++count;
      bytes +=
          value.substr(std::size_t{posting.first_unit} * kUnitBytes, posting.units() * kUnitBytes);
    }
    if (is_all) return Put(key, value);
    findings_.Report(FindingKind::kRepairNote, key, "damaged, entries kept: ", count);
    if (count != 0) return Put(key, bytes);
    ++result_.dropped;
  }

  void WriteWordList(std::string_view key, std::string_view value) {
    if (!ReadWordList(value, nullptr).IsAny()) return Put(key, value);
    String repaired;
    ReadWordList(value, &repaired);
    findings_.Report(FindingKind::kRepairNote, key, "damaged, words may be wrong");
    Put(key, repaired);
  }

  void WriteDocuments() {
    for (const RepairedDocument& document : plan_.documents.documents) {
      const auto name_key = NameKey(document.code);
      const auto record = EncodeDocument(document.timestamp, document.code);
      Put({name_key.data(), name_key.size()}, document.name);
      Put(ItemKey(kDocumentFamily, document.name), {record.data(), record.size()});
    }
  }

  void WriteSystemRecords() {
    const auto options = EncodeOptions(plan_.flags);
    Put(kOptionsKey, {options.data(), options.size()});
    if (plan_.codes.counter) {
      const auto counter = EncodeCode(*plan_.codes.counter);
      Put(kCounterKey, {counter.data(), counter.size()});
    }
    if (plan_.codes.reusable) Put(kAvailableKey, Encoded(*plan_.codes.reusable));
    if (plan_.codes.removed) Put(kDeletedKey, Encoded(*plan_.codes.removed));
  }

  const RebuildPlan& plan_;
  KeptPostings& kept_;
  Findings& findings_;
  RebuildResult result_;
  Database store_;
  std::size_t waiting_records_ = 0;
  std::size_t waiting_bytes_ = 0;
};

}  // namespace

RebuildResult Rebuild(const char* path, const RebuildPlan& plan, KeptPostings* kept,
                      Findings* findings) {
  return RebuildRun(plan, kept, findings).Run(path);
}

}  // namespace kestan
