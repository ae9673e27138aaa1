// SPDX-License-Identifier: GPL-3.0-or-later
// Hands out what a repair finds, and counts it.
#ifndef KESTAN_SEARCH_UPKEEP_REPAIRING_REPAIR_ITEMS_H_
#define KESTAN_SEARCH_UPKEEP_REPAIRING_REPAIR_ITEMS_H_

#include <kestan/maintenance.h>
#include <kestan/search/repair.h>

#include <exception>
#include <string>
#include <utility>

namespace kestan::search {

// Ends a repair within the engine, which goes on for as long as there is something to find.
class RepairStopped : public std::exception {};

class RepairItems {
 public:
  // Borrows `take`, which may be null.
  explicit RepairItems(const TakeRepairItem& take) : take_(take) {}

  // Throws RepairStopped where the host does not go on.
  void Add(RepairKind kind, const std::string& file, std::string name = "", std::string text = "") {
    RepairItem item{kind, IsLoss(kind), file, std::move(name), std::move(text)};
    Count(kind);
    if (item.is_loss) ++report_.losses;
    if (take_ && !take_(item)) throw RepairStopped();
  }

  // Adds what the engine has found in an index file.
  void Add(const std::string& file, const Finding& finding) {
    const bool has_name = finding.kind != FindingKind::kFileNote;
    Add(KindOf(finding.kind), file, has_name ? std::string(finding.key) : "",
        std::string(finding.text));
  }

  // Counts the records of an index file that was rewritten.
  void AddResult(const RepairResult& result) {
    report_.records += result.records;
    report_.dropped += result.dropped;
    report_.was_damaged = report_.was_damaged || result.was_damaged;
  }

  void SetDamaged() { report_.was_damaged = true; }

  const RepairReport& report() const { return report_; }

 private:
  static bool IsLoss(RepairKind kind) {
    switch (kind) {
      case RepairKind::kWordsMissing:
      case RepairKind::kHalfWritten:
      case RepairKind::kLost:
      case RepairKind::kLostCode:
      case RepairKind::kTextLost:
      case RepairKind::kSegmentLost:
      case RepairKind::kWordsLost:
      case RepairKind::kEditsLost:
      case RepairKind::kPropertiesLost:
        return true;
      default:
        return false;
    }
  }

  static RepairKind KindOf(FindingKind kind) {
    switch (kind) {
      case FindingKind::kSaved:
        return RepairKind::kSaved;
      case FindingKind::kWordsMissing:
        return RepairKind::kWordsMissing;
      case FindingKind::kHalfWritten:
        return RepairKind::kHalfWritten;
      case FindingKind::kLost:
        return RepairKind::kLost;
      case FindingKind::kLostCode:
        return RepairKind::kLostCode;
      case FindingKind::kDropped:
        return RepairKind::kDropped;
      case FindingKind::kFileNote:
        return RepairKind::kFileNote;
      default:
        return RepairKind::kRestored;
    }
  }

  void Count(RepairKind kind) {
    if (kind == RepairKind::kSaved) ++report_.saved;
    if (kind == RepairKind::kWordsMissing) ++report_.words_missing;
    if (kind == RepairKind::kHalfWritten) ++report_.half_written;
    if (kind == RepairKind::kLost || kind == RepairKind::kLostCode) ++report_.lost;
  }

  const TakeRepairItem& take_;
  RepairReport report_;
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_UPKEEP_REPAIRING_REPAIR_ITEMS_H_
