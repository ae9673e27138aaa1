// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/maintenance/repair/repair_report.h>

#include <kestan/format/keys.h>

namespace kestan {
namespace {

// Positions count up to 65535; a document that reaches it may have any number of words.
std::uint64_t CountMissing(const DocumentStatistics& document) {
  const std::uint64_t recorded = std::uint64_t{document.positions} + document.doubtful_positions;
  return document.highest == kMaxCode || recorded >= document.highest ? 0
                                                                      : document.highest - recorded;
}

void ReportFirstBytes(std::string_view key, const std::optional<DBDatum>& record,
                      std::uint32_t bytes_found, Findings* findings) {
  if (!record || record->size == bytes_found) return;
  findings->Report(FindingKind::kRepairNote, key, std::uint64_t{bytes_found},
                   " bytes, of which the first ", std::uint64_t{record->size}, " are kept");
}

class DocumentReport {
 public:
  DocumentReport(const DocumentEvidence& evidence, Findings* findings, RepairResult* result)
      : evidence_(evidence), findings_(*findings), result_(*result) {}

  void Run() {
    for (const RepairedDocument& document : evidence_.documents.documents) Report(document);
    for (const LostDocument& lost : evidence_.documents.lost) {
      ++result_.lost;
      findings_.Report(FindingKind::kLost, lost.name, lost.reason);
    }
    for (std::size_t code = 1; code < evidence_.orphans.size(); ++code) {
      if (!evidence_.orphans[code]) continue;
      ++result_.lost;
      findings_.Report(FindingKind::kLostCode, TextPart(std::uint64_t{code}).Text(),
                       "only words of the document are left");
    }
  }

 private:
  void Report(const RepairedDocument& document) {
    const DocumentStatistics& statistics = evidence_.counts.documents[document.code];
    const std::uint64_t highest = statistics.highest;
    const std::uint64_t missing = CountMissing(statistics);
    const bool is_young = evidence_.IsYoungerThanFlush(document.code);
    if (!statistics.has_words || (is_young && !statistics.has_own_words)) {
      ++result_.half_written;
      findings_.Report(FindingKind::kHalfWritten, document.name, "no words");
    } else if (missing == 0) {
      ++result_.saved;
      findings_.Report(FindingKind::kSaved, document.name);
    } else if (is_young || !evidence_.is_damaged) {
      ++result_.half_written;
      findings_.Report(FindingKind::kHalfWritten, document.name, "at least ", missing, " of ",
                       highest, " words missing");
    } else {
      ++result_.words_missing;
      findings_.Report(FindingKind::kWordsMissing, document.name, "at least ", missing, " of ",
                       highest);
    }
  }

  const DocumentEvidence& evidence_;
  Findings& findings_;
  RepairResult& result_;
};

}  // namespace

void ReportDamage(const Salvage::Damage& damage, Findings* findings) {
  const auto note = [&](const auto&... text) {
    findings->Report(FindingKind::kFileNote, kWholeFile, text...);
  };
  if (damage.header) note("the header is damaged");
  if (damage.directory) note("the directory or what it leads to is damaged");
  if (damage.unreadable_bytes != 0) note("bytes that cannot be read: ", damage.unreadable_bytes);
  if (damage.orphan_buckets != 0) {
    note("buckets found beside the directory: ", std::uint64_t{damage.orphan_buckets});
  }
  if (damage.old_records != 0) {
    note("records that may be old, for newer ones are damaged: ",
         std::uint64_t{damage.old_records});
  }
}

void ReportSystemRecords(const SystemRecords& system, Findings* findings) {
  ReportFirstBytes(kCounterKey, system.counter, system.counter_bytes_found, findings);
  ReportFirstBytes(kOptionsKey, system.options, system.options_bytes_found, findings);
}

void ReportOptions(const InferredOptions& options, Findings* findings) {
  const auto note = [&](const auto&... text) {
    findings->Report(FindingKind::kRepairNote, kOptionsKey, text...);
  };
  if (options.basis == InferredOptions::Basis::kNoRecord) {
    note("lost, and flags of the host with it; going by the posting records, ",
         options.with_positions() ? "positions are kept" : "no positions are kept");
  } else if (options.basis == InferredOptions::Basis::kPostings) {
    note("flag 1 was wrong, going by the posting records");
  }
}

void ReportCounter(const SystemRecords& system, const AssignedCodes& codes, Findings* findings) {
  const std::uint64_t counter = codes.counter.value_or(0);
  const std::uint64_t found = system.counter ? DecodeCounter(*system.counter) : Code{0};
  if (found == counter) return;
  if (system.counter) {
    findings->Report(FindingKind::kRepairNote, kCounterKey, counter, " instead of ", found);
  } else {
    findings->Report(FindingKind::kRepairNote, kCounterKey, counter, ", lost");
  }
}

bool DocumentEvidence::IsYoungerThanFlush(Code code) const {
  return retired[code] || (system.counter && code > DecodeCounter(*system.counter));
}

void ReportDocuments(const DocumentEvidence& evidence, Findings* findings, RepairResult* result) {
  DocumentReport(evidence, findings, result).Run();
}

}  // namespace kestan
