// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/packed/compressed_name.h"

#include <algorithm>
#include <array>

#include "cli/extract/converter/converter.h"

namespace kestan_cli {
namespace {

struct Compression {
  std::string_view extension;
  std::string_view magic;
};

constexpr std::array kCompressions{
    Compression{"gz", "\x1f\x8b"},
    Compression{"bz2", "BZh"},
    Compression{"xz",
                {"\xfd"
                 "7zXZ\0",
                 6}},
    Compression{"zst", "\x28\xb5\x2f\xfd"},
};

const Compression* CompressionOf(std::string_view name) {
  const std::string extension = ExtensionOf(name);
  const auto* const found = std::find_if(
      kCompressions.begin(), kCompressions.end(),
      [&](const Compression& compression) { return compression.extension == extension; });
  return found != kCompressions.end() ? &*found : nullptr;
}

}  // namespace

bool IsCompressed(std::string_view name, std::string_view head) {
  const Compression* const compression = CompressionOf(name);
  return compression != nullptr && head.substr(0, compression->magic.size()) == compression->magic;
}

std::string UnpackedName(std::string name) {
  for (int layer = 0; layer < kMaxLayers; ++layer) {
    const Compression* const compression = CompressionOf(name);
    if (compression == nullptr) break;
    name.resize(name.size() - compression->extension.size() - 1);
  }
  return name;
}

}  // namespace kestan_cli
