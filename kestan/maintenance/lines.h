// SPDX-License-Identifier: GPL-3.0-or-later
// Text that comes and goes line by line.
#ifndef KESTAN_MAINTENANCE_LINES_H_
#define KESTAN_MAINTENANCE_LINES_H_

#include <functional>
#include <string_view>

namespace kestan {

// Takes a line, without its line feed. The line is lent for the call.
using TakeLine = std::function<void(std::string_view line)>;

// Gives the next line, without its line feed. The line stays as it is until the next call.
//   Returns  false, with `*line` as it was, if there is none.
using GiveLine = std::function<bool(std::string_view* line)>;

}  // namespace kestan

#endif  // KESTAN_MAINTENANCE_LINES_H_
