// What a repair says of each document.
#include <kestan/maintenance/repair/repair_plan.h>

namespace kestan {
namespace {

std::uint64_t MissingPositions(std::uint64_t highest, std::uint64_t recorded) {
  return highest == kMaxCode || recorded >= highest ? 0 : highest - recorded;
}

}  // namespace

// Flushes write the counter and the list of reusable codes.
bool RepairPlan::IsYoungerThanFlush(Code code) const {
  return retired_[code] || (found_counter_ && code > DecodeCounter(*found_counter_));
}

bool RepairPlan::IsUnfinished(const RepairedDocument& document) const {
  return !is_damaged_ || IsYoungerThanFlush(document.code);
}

void RepairPlan::ReportDocuments(RepairResult* result) const {
  for (const RepairedDocument& document : documents_.documents) {
    const Tally& tally = tallies_[document.code];
    const std::uint64_t highest = tally.highest;
    const std::uint64_t missing =
        MissingPositions(highest, std::uint64_t{tally.positions} + tally.doubtful);
    const String name = Escaped(document.name);
    const bool is_bare = !tally.has_own_words && IsYoungerThanFlush(document.code);
    if (!tally.has_words || is_bare) {
      ++result->half_written;
      report_.Say({"half-written: ", name, ": no words"});
    } else if (missing == 0) {
      ++result->saved;
      report_.Say({"saved: ", name});
    } else if (IsUnfinished(document)) {
      ++result->half_written;
      report_.Say(
          {"half-written: ", name, ": at least ", missing, " of ", highest, " words missing"});
    } else {
      ++result->words_missing;
      report_.Say({"words missing: ", name, ": at least ", missing, " of ", highest});
    }
  }
  for (const LostDocument& lost : documents_.lost) {
    ++result->lost;
    report_.Say({"lost: ", Escaped(lost.name), ": ", lost.reason});
  }
  for (std::size_t code = 1; code < end_code_; ++code) {
    if (!orphans_[code]) continue;
    ++result->lost;
    report_.Say({"lost: code ", std::uint64_t{code}, ": only words of the document are left"});
  }
}

}  // namespace kestan
