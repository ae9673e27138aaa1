// SPDX-License-Identifier: GPL-3.0-or-later
// A repair, from the bytes of a damaged file to a new index:
//
// (1) Salvage: find every record that the bytes of the file still hold (salvage/).
// (2) Infer the options: whether positions are kept decides how posting records are read.
// (3) Classify the records: which are copied, read posting by posting, or written again.
// (4) Resolve the documents: document and name records are restored from each other.
// (5) Count the postings of each document, of which damaged records keep the whole ones.
// (6) Resolve overlaps: two words at one position of a document contradict each other.
// (7) Assign the codes: each is in use, removed or reusable.
// (8) Rebuild: write the new index.
// (9) Report how complete each document is.
//
// Each step takes what it needs and returns what it has found. None writes to the damaged file, and
// only the eighth writes at all.
#include <fcntl.h>
#include <kestan/format/id_list.h>
#include <kestan/maintenance/repair.h>
#include <kestan/maintenance/repair/classify_records.h>
#include <kestan/maintenance/repair/codes.h>
#include <kestan/maintenance/repair/count_postings.h>
#include <kestan/maintenance/repair/documents.h>
#include <kestan/maintenance/repair/kept_postings.h>
#include <kestan/maintenance/repair/rebuild.h>
#include <kestan/maintenance/repair/repair_report.h>
#include <kestan/maintenance/repair/resolve_overlaps.h>
#include <kestan/maintenance/repair/system_records.h>
#include <kestan/maintenance/report/findings.h>
#include <kestan/maintenance/salvage/salvage.h>
#include <kestan/storage/database.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace kestan {
namespace {

class Repairer {
 public:
  Repairer(const char* damaged_path, const char* new_path, Findings* findings, RepairResult* result)
      : damaged_path_(damaged_path), new_path_(new_path), findings_(*findings), result_(*result) {}

  // Returns 0 or -1, as RepairIndex() does.
  int Run() {
    // 1. Salvage.
    if (!ReadDamagedFile() || !MakeNewFile()) return -1;

    // 2. Infer the options.
    const SystemRecords system = FindSystemRecords(salvage_);
    const InferredOptions options = InferOptions(salvage_, system);
    const bool with_positions = options.with_positions();

    // 3. Classify the records.
    RepairActions actions = ClassifyRecords(salvage_, {with_positions, CounterOf(system)});
    const CodeSet long_documents = FindLongDocuments(salvage_, actions, with_positions);

    // 4. Resolve the documents.
    const auto& [rules, retired, documents] =
        Resolve(system, actions, with_positions, long_documents);
    DropWordsInTheWay(salvage_, documents, &actions);

    // 5. Count the postings.
    KeptPostings kept(rules, long_documents, documents.codes | retired);
    PostingCounts counts = CountKeptPostings(salvage_, actions, rules, &kept);

    // 6. Resolve overlaps.
    const Overlaps overlaps = ResolveOverlaps(salvage_, actions, long_documents, counts, &kept);
    Subtract(overlaps, &counts);

    // 7. Assign the codes.
    const AssignedCodes codes = AssignCodes(documents.codes, counts.posted, retired, system);
    FindDamagedWords(salvage_, {with_positions, codes.counter.value_or(0)}, &actions);

    // 8. Rebuild.
    ReportNotes(system, options, codes);
    const RebuildPlan plan{salvage_, actions, documents, codes, overlaps, options.flags};
    if (!WriteNewFile(plan, &kept)) return -1;

    // 9. Report.
    const bool is_damaged = result_.was_damaged || counts.is_any_left_out || overlaps.is_any;
    ReportDocuments({documents, counts, system, retired, codes.orphans, is_damaged}, &findings_,
                    &result_);
    return 0;
  }

 private:
  // Returns the highest code that the counter allows.
  static Code CounterOf(const SystemRecords& system) {
    return system.counter ? DecodeCounter(*system.counter) : kMaxCode;
  }

  // What the records of documents say together.
  struct Resolution {
    PostingRules rules;  // with the highest code that any record gives
    CodeSet retired;     // codes listed as reusable or removed
    RepairedDocuments documents;
  };

  Resolution Resolve(const SystemRecords& system, const RepairActions& actions, bool with_positions,
                     const CodeSet& long_documents) const {
    const DocumentCandidates candidates = CollectCandidates(salvage_, actions);
    const Code posted = system.counter
                            ? Code{0}
                            : HighestCodePosted(salvage_, actions, with_positions, long_documents);
    const PostingRules rules{with_positions, HighestCode(system, candidates, posted)};
    const CodeSet retired = RetiredCodes(system, rules.highest);
    return {rules, retired, ResolveDocuments(candidates, retired)};
  }

  bool ReadDamagedFile() {
    const int error = salvage_.Read(damaged_path_);
    if (error != 0) return Fail(FindingKind::kCannotRead, damaged_path_, std::strerror(error));
    if (salvage_.records().empty()) {
      return Fail(FindingKind::kCannotRead, damaged_path_, "no record was found");
    }
    result_.was_damaged = salvage_.damage().IsAny();
    return true;
  }

  // Makes an empty file where there is nothing yet.
  bool MakeNewFile() {
    constexpr int kFileMode = 0644;
    const int descriptor = open(new_path_, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kFileMode);
    if (descriptor < 0) return Fail(FindingKind::kCannotWrite, new_path_, std::strerror(errno));
    close(descriptor);
    return true;
  }

  bool WriteNewFile(const RebuildPlan& plan, KeptPostings* kept) {
    const RebuildResult rebuilt = Rebuild(new_path_, plan, kept, &findings_);
    if (rebuilt.error != 0) {
      unlink(new_path_);
      return Fail(FindingKind::kCannotWrite, new_path_, Database::ErrorString(rebuilt.error));
    }
    result_.records = rebuilt.records;
    result_.dropped = rebuilt.dropped;
    return true;
  }

  void ReportNotes(const SystemRecords& system, const InferredOptions& options,
                   const AssignedCodes& codes) {
    ReportDamage(salvage_.damage(), &findings_);
    ReportSystemRecords(system, &findings_);
    ReportOptions(options, &findings_);
    ReportCounter(system, codes, &findings_);
  }

  // Returns false, so that callers can return it.
  bool Fail(FindingKind kind, const char* path, const char* reason) {
    result_ = RepairResult();
    findings_.Report(kind, path, reason);
    return false;
  }

  const char* const damaged_path_;
  const char* const new_path_;
  Findings& findings_;
  RepairResult& result_;
  Salvage salvage_;
};

}  // namespace

int RepairIndexWithFindings(const char* damaged_path, const char* new_path,
                            const TakeFinding& report, RepairResult* result) {
  *result = RepairResult();
  Findings findings(report);
  return Repairer(damaged_path, new_path, &findings, result).Run();
}

int RepairIndex(const char* damaged_path, const char* new_path, const TakeLine& report,
                RepairResult* result) {
  return RepairIndexWithFindings(damaged_path, new_path, AsLines(report), result);
}

}  // namespace kestan
