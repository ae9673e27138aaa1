// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/segment/segment_info.h"

namespace kestan::search {

std::string SegmentFile(const SegmentInfo& info) {
  return std::to_string(info.number) + ".segment";
}

std::string TermsFile(const SegmentInfo& info) { return std::to_string(info.number) + ".terms"; }

std::string TableFile(const SegmentInfo& info) {
  return std::to_string(info.number) + ".documents";
}

std::string EditsFile(const SegmentInfo& info) {
  return std::to_string(info.number) + "-" + std::to_string(info.edit_number) + ".edits";
}

}  // namespace kestan::search
