// SPDX-License-Identifier: GPL-3.0-or-later
// The words of the dump of a folder. docs/dump-format.md shows one.
#ifndef KESTAN_SEARCH_UPKEEP_DUMP_TEXT_H_
#define KESTAN_SEARCH_UPKEEP_DUMP_TEXT_H_

#include <string_view>

namespace kestan::search {

constexpr std::string_view kFolderDumpName = "kestan-folder-dump ";
constexpr std::string_view kFolderDumpVersion = "1";
constexpr std::string_view kPositionsLine = "positions ";
constexpr std::string_view kPropertyLine = "property ";
constexpr std::string_view kPartLine = "part ";
constexpr std::string_view kDocumentLine = "document ";
constexpr std::string_view kLastLine = "parts ";
constexpr char kGoesOn = '\\';  // at the end of a line that the next one continues

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_UPKEEP_DUMP_TEXT_H_
