// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/packed/archive_name.h"

#include <algorithm>
#include <array>
#include <string>

#include "cli/extract/converter/converter.h"
#include "cli/extract/packed/compressed_name.h"

namespace kestan_cli {
namespace {

constexpr std::array<std::string_view, 6> kZips{"zip", "jar", "war", "ear", "whl", "xpi"};

// Short extensions, and what they stand for.
struct ShortName {
  std::string_view extension;
  std::string_view compression;
};
constexpr std::array kShortNames{
    ShortName{"tgz", "gz"},   ShortName{"taz", "gz"},   ShortName{"tbz", "bz2"},
    ShortName{"tb2", "bz2"},  ShortName{"tbz2", "bz2"}, ShortName{"txz", "xz"},
    ShortName{"tzst", "zst"},
};

bool IsZip(std::string_view head) {
  const std::string_view magic = head.substr(0, 4);
  return magic == "PK\x03\x04" || magic == "PK\x05\x06";  // the second one has no members
}

// Returns whether `head` begins with the description of a member, which ends with a checksum: the
// oldest archives have no other mark.
bool IsTar(std::string_view head) {
  constexpr std::size_t kHeaderBytes = 512;
  constexpr std::size_t kChecksumAt = 148;
  constexpr std::size_t kChecksumBytes = 8;
  if (head.size() < kHeaderBytes || head.front() == '\0') return false;
  unsigned sum = kChecksumBytes * ' ';
  for (std::size_t i = 0; i < kHeaderBytes; ++i) {
    const bool is_of_sum = i - kChecksumAt < kChecksumBytes;
    if (!is_of_sum) sum += static_cast<unsigned char>(head[i]);
  }
  unsigned written = 0;
  for (const char digit : head.substr(kChecksumAt, kChecksumBytes)) {
    if (digit >= '0' && digit <= '7') written = written * 8 + static_cast<unsigned>(digit - '0');
  }
  return sum == written;
}

}  // namespace

bool IsArchive(std::string_view name, std::string_view head) {
  const std::string extension = ExtensionOf(name);
  if (std::find(kZips.begin(), kZips.end(), extension) != kZips.end()) return IsZip(head);
  if (extension == "tar") return IsTar(head);
  for (const ShortName& shortened : kShortNames) {
    if (shortened.extension != extension) continue;
    return IsCompressed("x." + std::string(shortened.compression), head);
  }
  return IsCompressed(name, head) && ExtensionOf(UnpackedName(std::string(name))) == "tar";
}

}  // namespace kestan_cli
