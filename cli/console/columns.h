// SPDX-License-Identifier: GPL-3.0-or-later
// Text that fits a terminal.
#ifndef KESTAN_CLI_CONSOLE_COLUMNS_H_
#define KESTAN_CLI_CONSOLE_COLUMNS_H_

#include <cstddef>
#include <string>
#include <string_view>

namespace kestan_cli {

// Returns how many columns the terminal at `descriptor` has; 80 where that is not known.
std::size_t ColumnsOfTerminal(int descriptor);

// A character with what is drawn over it: accents, variation selectors, what a joiner adds.
struct Cluster {
  std::size_t bytes;
  std::size_t columns;
};

// Returns the first cluster of `text`, which is not empty and has no control characters. Wide
// characters of East Asia and emoji take two columns, in every locale. Where terminals differ, as
// with emoji joined to one, it is the largest number.
Cluster FirstCluster(std::string_view text);

// Returns how many columns `text` takes.
std::size_t ColumnsOf(std::string_view text);

// Returns `text`, or as much of its start, or of its end, as fits into `columns` with "..." where
// the rest was.
std::string FittedStart(std::string_view text, std::size_t columns);
std::string FittedEnd(std::string_view text, std::size_t columns);

// Returns the line `text` with line feeds instead of blanks, so that no line is longer than
// `columns`; those after the first begin with `indent` blanks. What has no blanks stays whole.
std::string Wrapped(std::string_view text, std::size_t columns, std::size_t indent);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_CONSOLE_COLUMNS_H_
