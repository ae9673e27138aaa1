// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/upkeep/loose_segment.h"

#include "search/files/numbers.h"
#include "search/files/output_file.h"
#include "search/index/manifest/manifest.h"
#include "search/upkeep/file_copy.h"

namespace kestan::search {
namespace {

SegmentInfo LooseInfo() {
  SegmentInfo info;
  info.number = kLooseSegment;
  info.edit_number = 1;
  return info;
}

}  // namespace

std::string LooseFile(const std::string& folder) { return folder + "/" + SegmentFile(LooseInfo()); }

Result<std::shared_ptr<const Segment>> OpenLooseSegment(
    const std::string& folder, const std::vector<KnownDocument>& known,
    const std::function<void(Edits* edits)>& edit) {
  Result<DerivedFiles> derived = DeriveLooseFiles(LooseFile(folder), known);
  if (!derived.ok()) return derived.status();
  if (edit) edit(&derived->edits);
  SegmentInfo info = LooseInfo();
  info.documents = derived->documents;
  info.removed = static_cast<std::uint32_t>(derived->edits.removed_count());
  const Result<FileSummary> segment = SummaryOf(LooseFile(folder));
  if (!segment.ok()) return segment.status();
  const auto terms = WriteNewFile(folder + "/" + TermsFile(info), derived->terms);
  if (!terms.ok()) return terms.status();
  const auto table = WriteNewFile(folder + "/" + TableFile(info), derived->table);
  if (!table.ok()) return table.status();
  const auto edits = WriteNewFile(folder + "/" + EditsFile(info), derived->edits.Encode());
  if (!edits.ok()) return edits.status();
  info.segment = *segment;
  info.terms = *terms;
  info.table = *table;
  info.edits = *edits;
  return Segment::Open(folder, info, derived->with_positions);
}

void RemoveLooseSegment(const std::string& folder) { RemoveSegmentFiles(folder, LooseInfo()); }

}  // namespace kestan::search
