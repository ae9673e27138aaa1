// SPDX-License-Identifier: GPL-3.0-or-later
// The option flags of an index: the record "g-opts", four bytes.
#ifndef KESTAN_FORMAT_OPTION_FLAGS_H_
#define KESTAN_FORMAT_OPTION_FLAGS_H_

#include <kestan/format/units.h>
#include <kestan/storage/dbdatum.h>

#include <array>
#include <cstddef>
#include <cstdint>

namespace kestan {

inline constexpr std::size_t kOptionsBytes = 4;

inline std::array<char, kOptionsBytes> EncodeOptions(std::uint32_t flags) {
  std::array<char, kOptionsBytes> bytes;
  WriteNumber(bytes.data(), bytes.size(), flags);
  return bytes;
}

inline std::uint32_t DecodeOptions(const DBDatum& record) {
  return ReadNumber(record, 0, kOptionsBytes);
}

}  // namespace kestan

#endif  // KESTAN_FORMAT_OPTION_FLAGS_H_
