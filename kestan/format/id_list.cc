// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/format/id_list.h>

#include <cstdint>
#include <cstring>

namespace kestan {

std::array<char, kUnitBytes> EncodeCode(Code code) {
  std::array<char, kUnitBytes> bytes;
  StoreUnit(bytes.data(), code);
  return bytes;
}

std::size_t CountCodes(const DBDatum& list) { return list.size / kUnitBytes; }

Code CodeAt(const DBDatum& list, std::size_t index) { return UnitAt(list, index); }

void CollectCodes(const DBDatum& list, CodeSet* codes) {
  for (std::size_t i = 0; i < CountCodes(list); ++i) codes->set(CodeAt(list, i));
}

void AppendCode(DBDatum* list, Code code) {
  const std::size_t count = CountCodes(*list);
  Resize(list, (count + 1) * kUnitBytes);
  StoreUnit(UnitAddress(*list, count), code);
}

void AppendCodes(DBDatum* list, const DBDatum& more) {
  const std::size_t count = CountCodes(*list);
  const std::size_t added = CountCodes(more);
  Resize(list, (count + added) * kUnitBytes);
  if (added != 0) std::memcpy(UnitAddress(*list, count), more.data, added * kUnitBytes);
}

Code TakeLastCode(DBDatum* list) {
  const std::size_t last = CountCodes(*list) - 1;
  list->size = static_cast<std::uint32_t>(last * kUnitBytes);
  return UnitAt(*list, last);
}

Code DecodeCounter(const DBDatum& record) {
  return static_cast<Code>(ReadNumber(record, 0, kUnitBytes));
}

void SetCounter(DBDatum* record, Code code) {
  GrowTo(record, kUnitBytes);
  StoreUnit(record->data, code);
}

}  // namespace kestan
