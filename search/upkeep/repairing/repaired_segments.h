// SPDX-License-Identifier: GPL-3.0-or-later
// Segments of a damaged index on their way into a new one.
#ifndef KESTAN_SEARCH_UPKEEP_REPAIRING_REPAIRED_SEGMENTS_H_
#define KESTAN_SEARCH_UPKEEP_REPAIRING_REPAIRED_SEGMENTS_H_

#include <kestan/search/status.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "search/segment/derived_files.h"
#include "search/segment/document_table.h"
#include "search/segment/segment.h"
#include "search/segment/segment_info.h"
#include "search/segment/term_dictionary.h"
#include "search/upkeep/repairing/repair_items.h"

namespace kestan::search {

// A segment as the damaged index has it.
struct DamagedSegment {
  SegmentInfo info;  // as MANIFEST has it; without one, the number alone
  bool is_in_manifest = true;
  std::vector<std::uint64_t> edit_numbers;  // without MANIFEST: of the files, the highest first
};

class RepairedSegments {
 public:
  // Reads segments in `folder` and writes them to `target`.
  RepairedSegments(std::string folder, std::string target, RepairItems* items)
      : folder_(std::move(folder)), target_(std::move(target)), items_(*items) {}

  // Takes over a segment, or what can be read of it. `with_positions` is that of the index, if it
  // is known yet; a segment that differs is lost.
  //   Returns  nothing where no document of it lives.
  Result<std::optional<SegmentInfo>> Take(const DamagedSegment& damaged,
                                          std::optional<bool>* with_positions);

  // Removes documents whose names were seen in segments before this one, and reports the others of
  // a segment that was not salvaged as saved.
  //   Returns  false if no document of it lives then.
  Result<bool> LeaveOutTwins(SegmentInfo* info, bool with_positions);

 private:
  using Taken = Result<std::optional<SegmentInfo>>;

  struct FoundEdits {
    std::optional<Edits> edits;  // none: there are none, or they are lost
    std::uint64_t number = 0;
  };

  Taken TakeSound(const DamagedSegment& damaged, std::optional<bool>* with_positions);
  Taken Salvage(const DamagedSegment& damaged, std::optional<bool>* with_positions);
  Status WriteDerived(const DamagedSegment& damaged, const DerivedFiles& derived,
                      SegmentInfo* info);
  FoundEdits FindEdits(const DamagedSegment& damaged, std::size_t documents);
  std::shared_ptr<const FileBytes> OpenDerived(const DamagedSegment& damaged,
                                               const std::string& name,
                                               const FileSummary& expected) const;
  std::optional<DocumentTable> FindTable(const DamagedSegment& damaged) const;
  std::optional<TermDictionary> FindTerms(const DamagedSegment& damaged) const;
  bool IsSound(const DamagedSegment& damaged);
  bool IsContradicted(const DamagedSegment& damaged, const DerivedFiles& derived) const;
  Taken LoseSalvaged(const DamagedSegment& damaged, const std::string& why);
  Status Lose(const DamagedSegment& damaged, const std::string& why);

  std::string Path(const std::string& name) const { return folder_ + "/" + name; }
  std::string TargetPath(const std::string& name) const { return target_ + "/" + name; }

  const std::string folder_;
  const std::string target_;
  RepairItems& items_;
  std::set<std::string, std::less<>> names_;  // that live in the segments seen so far
  std::set<std::uint64_t> salvaged_;          // numbers of segments
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_UPKEEP_REPAIRING_REPAIRED_SEGMENTS_H_
