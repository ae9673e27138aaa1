// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/storage/dbdatum.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace {

constexpr std::uint32_t kCodeBytes = 4;

void FillInCode(const DBDatum& datum) {
  if (datum.code == 0) datum.code = datum.CalcCode();
}

// Compares the first `size` bytes of both as unsigned bytes, as memcmp does.
int CompareBytes(const DBDatum& left, const DBDatum& right, std::uint32_t size) {
  return size == 0 ? 0 : std::memcmp(left.data, right.data, size);
}

}  // namespace

std::uint32_t DBDatum::CalcCode() const {
  std::uint32_t prefix = 0;
  for (std::uint32_t i = 0; i < kCodeBytes; ++i) {
    const std::uint32_t byte = i < size ? static_cast<unsigned char>(data[i]) : 0;
    prefix = prefix << 8 | byte;
  }
  return prefix;
}

bool DBDatum::operator<(const DBDatum& other) const {
  FillInCode(*this);
  FillInCode(other);
  if (code != other.code) return code < other.code;
  const int order = CompareBytes(*this, other, std::min(size, other.size));
  return order != 0 ? order < 0 : size < other.size;
}

bool DBDatum::operator==(const DBDatum& other) const {
  if (size != other.size) return false;
  FillInCode(*this);
  FillInCode(other);
  return code == other.code && CompareBytes(*this, other, size) == 0;
}

DBDatumPtr& DBDatumPtr::operator=(const DBDatumPtr& other) {
  if (this == &other) return *this;
  return *this = DBDatumPtr(other);  // hold the new datum before letting go of the old
}

DBDatumPtr& DBDatumPtr::operator=(DBDatumPtr&& other) noexcept {
  if (this == &other) return *this;
  Free();
  ptr = std::exchange(other.ptr, nullptr);
  return *this;
}

void DBDatumPtr::Free() {
  DBDatum* const datum = std::exchange(ptr, nullptr);
  if (datum == nullptr || datum->refs-- != 1) return;
  std::free(datum->data);
  delete datum;
}
