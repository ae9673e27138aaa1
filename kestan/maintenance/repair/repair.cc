#include <fcntl.h>
#include <kestan/format/document_record.h>
#include <kestan/format/keys.h>
#include <kestan/format/option_flags.h>
#include <kestan/maintenance/repair.h>
#include <kestan/maintenance/repair/repair_plan.h>
#include <kestan/maintenance/repair/word_list_repair.h>
#include <kestan/maintenance/report/repair_report.h>
#include <kestan/maintenance/salvage/salvage.h>
#include <kestan/storage/database.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace kestan {
namespace {

// Writes the new index.
class RepairWriter {
 public:
  RepairWriter(const Salvage& salvage, RepairPlan* plan, RepairReport* report, RepairResult* result)
      : salvage_(salvage), plan_(*plan), report_(*report), result_(*result) {}

  // Returns 0, or gdbm's number of the first error.
  int Write(const char* path) {
    if (const int error = store_.Open(path, 1); error != 0) return error;
    for (const SalvagedRecord& record : salvage_.records()) WriteRecord(record);
    WriteDocuments();
    WriteCodes();
    store_.Close();
    return store_.FileError();
  }

 private:
  // Keeps the store's cache small. Once a write has failed there is no use in going on.
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

  void WriteRecord(const SalvagedRecord& record) {
    const std::string_view key = salvage_.KeyOf(record);
    const RepairStep step = plan_.StepOf(record);
    if (record.is_cut && (step == RepairStep::kCopy || step == RepairStep::kWordList)) {
      report_.Say({"note: ", Escaped(key), ": cut where the next record begins or the file ends"});
    }
    switch (step) {
      case RepairStep::kCopy:
        return Put(key, salvage_.ValueOf(record));
      case RepairStep::kPostings:
        return WritePostings(record);
      case RepairStep::kWordList:
        return WriteWordList(record);
      case RepairStep::kRewrite:
        return;
      case RepairStep::kDrop:
        ++result_.dropped;
        report_.Say({"note: dropped: ", Escaped(key)});
        return;
    }
  }

  void WritePostings(const SalvagedRecord& record) {
    const std::string_view key = salvage_.KeyOf(record);
    const std::string_view value = salvage_.ValueOf(record);
    bool all = false;
    const auto& entries = plan_.KeptPostings(record, &all);
    if (all) return Put(key, value);
    report_.Say({"note: ", Escaped(key), ": damaged, entries kept: ", entries.size()});
    if (entries.empty()) {
      ++result_.dropped;
      return;
    }
    String kept;
    kept.reserve(value.size());
    for (const WholePosting& entry : entries) {
      kept += value.substr(std::size_t{entry.first_unit} * kUnitBytes, entry.units() * kUnitBytes);
    }
    Put(key, kept);
  }

  void WriteWordList(const SalvagedRecord& record) {
    const std::string_view key = salvage_.KeyOf(record);
    const std::string_view value = salvage_.ValueOf(record);
    if (!ReadWordList(value, nullptr).IsAny()) return Put(key, value);
    String mended;
    ReadWordList(value, &mended);
    report_.Say({"note: ", Escaped(key), ": damaged, words may be wrong"});
    Put(key, mended);
  }

  void WriteDocuments() {
    for (const RepairedDocument& document : plan_.documents().documents) {
      const auto name_key = NameKey(document.code);
      const auto record = EncodeDocument(document.timestamp, document.code);
      Put({name_key.data(), name_key.size()}, document.name);
      Put(ItemKey(kDocumentFamily, document.name), {record.data(), record.size()});
    }
  }

  void WriteCodes() {
    const auto options = EncodeOptions(plan_.options());
    const auto counter = EncodeCode(plan_.counter());
    Put(kOptionsKey, {options.data(), options.size()});
    if (plan_.has_counter()) Put(kCounterKey, {counter.data(), counter.size()});
    if (plan_.has_reusable()) Put(kAvailableKey, Spelled(plan_.reusable()));
    if (plan_.has_removed()) Put(kDeletedKey, Spelled(plan_.removed()));
  }

  static String Spelled(const Vector<Code>& codes) {
    String bytes;
    for (const Code code : codes) {
      const auto unit = EncodeCode(code);
      bytes.append(unit.data(), unit.size());
    }
    return bytes;
  }

  const Salvage& salvage_;
  RepairPlan& plan_;
  RepairReport& report_;
  RepairResult& result_;
  Database store_;
  std::size_t waiting_records_ = 0;
  std::size_t waiting_bytes_ = 0;
};

void ReportDamage(const Salvage::Damage& damage, RepairReport* report) {
  if (damage.header) report->Say({"note: the header is damaged"});
  if (damage.directory) report->Say({"note: the directory or what it leads to is damaged"});
  if (damage.unreadable_bytes != 0) {
    report->Say({"note: bytes that cannot be read: ", damage.unreadable_bytes});
  }
  if (damage.stray_buckets != 0) {
    report->Say({"note: buckets found beside the directory: ", damage.stray_buckets});
  }
  if (damage.old_records != 0) {
    report->Say(
        {"note: records that may be old, for newer ones are damaged: ", damage.old_records});
  }
}

// Makes an empty file where there is nothing yet.
//   Returns  0 or the system's error number.
int MakeNewFile(const char* path) {
  constexpr int kFileMode = 0644;
  const int descriptor = open(path, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kFileMode);
  if (descriptor < 0) return errno;
  close(descriptor);
  return 0;
}

int Fail(const char* path, const char* reason, RepairReport* report) {
  report->Say({Escaped(path), ": ", reason});
  return -1;
}

}  // namespace

int RepairIndex(const char* damaged_path, const char* new_path, const TakeLine& take,
                RepairResult* result) {
  *result = RepairResult();
  RepairReport report(take);
  Salvage salvage;
  if (const int error = salvage.Read(damaged_path); error != 0) {
    return Fail(damaged_path, std::strerror(error), &report);
  }
  if (salvage.records().empty()) return Fail(damaged_path, "no record was found", &report);
  if (const int error = MakeNewFile(new_path); error != 0) {
    return Fail(new_path, std::strerror(error), &report);
  }
  ReportDamage(salvage.damage(), &report);
  RepairPlan plan(salvage, &report);
  const int error = RepairWriter(salvage, &plan, &report, result).Write(new_path);
  if (error != 0) {
    unlink(new_path);
    *result = RepairResult();
    return Fail(new_path, Database::ErrorString(error), &report);
  }
  plan.ReportDocuments(result);
  result->was_damaged = salvage.damage().IsAny();
  return 0;
}

}  // namespace kestan
