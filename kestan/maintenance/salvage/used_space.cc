// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/maintenance/salvage/used_space.h>

#include <algorithm>

namespace kestan::gdbm {

void UsedSpace::Add(Offset at, Offset bytes) {
  if (bytes != 0 && file_.Holds(at, bytes)) spans_.push_back({at, at + bytes});
}

void UsedSpace::AddFree(const Bucket& bucket) {
  for (const FreeSpace& space : bucket.free) {
    if (space.bytes > 0) Add(space.at, static_cast<Offset>(space.bytes));
  }
}

void UsedSpace::AddFreeLists(const Header& header) {
  const bool is_extended = header.magic == kExtendedMagic;
  Offset list = sizeof(Header) + (is_extended ? kExtensionBytes : 0);
  Offset read = 0;
  while (list != 0 && read <= file_.size()) {  // the lists may form a cycle
    FreeList head;
    if (!file_.Read(list, &head)) return;
    Offset next = list + sizeof head;
    for (std::int32_t i = 0; i < head.count && read <= file_.size(); ++i) {
      FreeSpace space;
      if (!file_.Read(next, &space)) break;
      if (space.bytes > 0) Add(space.at, static_cast<Offset>(space.bytes));
      next += sizeof space;
      read += sizeof space;
    }
    read += sizeof head;
    list = head.next;
  }
}

void UsedSpace::Merge() {
  std::sort(spans_.begin(), spans_.end(),
            [](const Span& left, const Span& right) { return left.begin < right.begin; });
  auto merged = spans_.begin();
  for (const Span& span : spans_) {
    if (span.begin <= merged->end) {
      merged->end = std::max(merged->end, span.end);
    } else {
      *++merged = span;
    }
  }
  spans_.erase(merged + 1, spans_.end());
}

bool UsedSpace::Overlaps(const Element& element) const {
  const Offset end = element.data + static_cast<Offset>(element.key_bytes) +
                     static_cast<Offset>(element.value_bytes);
  auto next = std::upper_bound(spans_.begin(), spans_.end(), element.data,
                               [](Offset wanted, const Span& span) { return wanted < span.begin; });
  if (next != spans_.end() && next->begin < end) return true;
  return (--next)->end > element.data;
}

}  // namespace kestan::gdbm
