// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/storage/gdbm/gdbm_header.h>

#include <cstring>

namespace kestan::gdbm {
namespace {

constexpr std::int32_t kSmallestBlockBytes = 64;

bool IsDirectory(const Header& header) {
  constexpr int kMostBits = 27;  // more would not fit the size
  return header.directory_bits >= 0 && header.directory_bits <= kMostBits &&
         header.directory_bytes == std::int32_t{sizeof(Offset)} << header.directory_bits;
}

}  // namespace

bool ReadHeader(std::string_view file, Header* header, Shape* shape) {
  if (file.size() < sizeof *header) return false;
  std::memcpy(header, file.data(), sizeof *header);
  if (!HasHeaderFields(header->magic) && header->magic != kOldMagic) return false;
  if (header->block_bytes < kSmallestBlockBytes || header->bucket_elements <= 0) return false;
  if (header->bucket_bytes < static_cast<std::int32_t>(sizeof(BucketHead))) return false;
  const auto bytes = static_cast<std::uint32_t>(header->bucket_bytes);
  const auto elements = static_cast<std::uint32_t>((bytes - sizeof(BucketHead)) / sizeof(Element));
  if (elements != static_cast<std::uint32_t>(header->bucket_elements)) return false;
  if (!IsDirectory(*header) || header->directory >= file.size()) return false;
  *shape = {bytes, elements};
  return true;
}

}  // namespace kestan::gdbm
