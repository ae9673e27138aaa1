// SPDX-License-Identifier: GPL-3.0-or-later
// Datums and views of the same bytes.
#ifndef KESTAN_STORAGE_DATUM_BYTES_H_
#define KESTAN_STORAGE_DATUM_BYTES_H_

#include <kestan/storage/dbdatum.h>

#include <cstdint>
#include <string_view>

namespace kestan {

// Returns a datum around `bytes`, which it borrows.
inline DBDatum AsDatum(std::string_view bytes) {
  return {bytes.data(), static_cast<std::uint32_t>(bytes.size())};
}

// Returns a view of the bytes of `datum`.
inline std::string_view BytesOf(const DBDatum& datum) { return {datum.data, datum.size}; }

}  // namespace kestan

#endif  // KESTAN_STORAGE_DATUM_BYTES_H_
