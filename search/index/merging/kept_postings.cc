// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/index/merging/kept_postings.h"

#include <cstddef>

namespace kestan::search {
namespace {

constexpr std::size_t kUnitBytes = sizeof(Code);

std::uint16_t UnitAt(const char* bytes) { return *EncodedPositions::Iterator(bytes); }

void SetUnit(std::uint16_t unit, char* bytes) {
  bytes[0] = static_cast<char>(unit & 0xff);
  bytes[1] = static_cast<char>(unit >> 8);
}

// Returns how many bytes the posting at the start of `record` has; 0 if it is cut short.
std::size_t PostingBytes(std::string_view record, bool with_positions) {
  if (!with_positions) return record.size() >= kUnitBytes ? kUnitBytes : 0;
  if (record.size() < 2 * kUnitBytes) return 0;
  const std::size_t bytes = kUnitBytes * (2 + std::size_t{UnitAt(record.data() + kUnitBytes)});
  return bytes <= record.size() ? bytes : 0;
}

// Appends what is kept of `record`, whose postings have positions or not, with or without them.
std::optional<std::uint32_t> AppendKept(std::string_view record, bool has_positions,
                                        bool with_positions, const std::vector<Code>& new_codes,
                                        std::string* kept) {
  // All are copied, and those that are not kept written over by the next: most are kept.
  const std::size_t begin = kept->size();
  kept->resize(begin + record.size());
  char* end = kept->data() + begin;
  std::uint32_t count = 0;
  Code last = 0;
  while (!record.empty()) {
    const std::size_t bytes = PostingBytes(record, has_positions);
    if (bytes == 0) return std::nullopt;
    const Code code = UnitAt(record.data());
    if (code <= last || code >= new_codes.size()) return std::nullopt;
    last = code;
    if (new_codes[code] != 0) {
      const std::size_t kept_bytes = with_positions ? bytes : kUnitBytes;
      record.copy(end, kept_bytes);
      SetUnit(new_codes[code], end);
      end += kept_bytes;
      ++count;
    }
    record.remove_prefix(bytes);
  }
  kept->resize(static_cast<std::size_t>(end - kept->data()));
  return count;
}

}  // namespace

std::optional<std::uint32_t> AppendKeptPostings(std::string_view record, bool with_positions,
                                                const std::vector<Code>& new_codes,
                                                std::string* kept) {
  return AppendKept(record, with_positions, with_positions, new_codes, kept);
}

std::optional<std::uint32_t> AppendKeptCodes(std::string_view record,
                                             const std::vector<Code>& new_codes,
                                             std::string* kept) {
  return AppendKept(record, true, false, new_codes, kept);
}

}  // namespace kestan::search
