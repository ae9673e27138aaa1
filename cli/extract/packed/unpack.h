// SPDX-License-Identifier: GPL-3.0-or-later
// Decompresses files, within limits.
#ifndef KESTAN_CLI_EXTRACT_PACKED_UNPACK_H_
#define KESTAN_CLI_EXTRACT_PACKED_UNPACK_H_

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace kestan_cli {

// What unpacks to more than so many times its size is taken for a bomb, once it has become large.
constexpr std::uint64_t kMaxRatio = 250;
constexpr std::uint64_t kRatioFrom = std::uint64_t{1} << 24;

// Returns the next piece of a file, valid until the next call; an empty one at the end. May throw.
using PieceSource = std::function<std::string_view()>;

struct UnpackRules {
  std::uint64_t max_bytes = 0;  // of the text
  bool cuts = false;            // a longer text is cut, not refused
  // Looks at the next piece and all before it. May throw.
  std::function<void(const std::string& before, std::string_view piece)> check;
};

struct Unpacked {
  std::string bytes;
  bool is_cut = false;
};

// Decompresses all that `source` gives, in memory.
//   Throws   SkipFile if it is broken, or exceeds a limit; what `source` and `check` throw;
//            bad_alloc if there is no memory.
Unpacked Unpack(const PieceSource& source, const UnpackRules& rules);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXTRACT_PACKED_UNPACK_H_
