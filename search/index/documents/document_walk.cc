// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/index/documents/document_walk.h"

#include <utility>

#include "search/index/documents/document_info.h"

namespace kestan::search {

Result<const DocumentInfo*> DocumentWalk::Next() {
  for (; segment_ < snapshot_.segments.size(); ++segment_, code_ = 0) {
    const Segment& segment = *snapshot_.segments[segment_];
    for (; code_ < segment.size(); ++code_) {
      const auto code = static_cast<Code>(code_ + 1);
      if (segment.IsRemoved(code)) continue;
      auto info = InfoOf(segment, code);
      if (!info.ok()) return info.status();
      info_ = std::move(*info);
      ++code_;
      return &info_;
    }
  }
  return nullptr;
}

}  // namespace kestan::search
