// SPDX-License-Identifier: GPL-3.0-or-later
// Parses HTML and XML with libxml2.
#ifndef KESTAN_CLI_READERS_HTML_PARSER_H_
#define KESTAN_CLI_READERS_HTML_PARSER_H_

#include <cstddef>

#include "cli/readers/readers.h"

namespace kestan_cli {

// As Readers::use_memory.
void UseParserMemory(Reallocate reallocate) noexcept;

// As Readers::parse_html. Without UseParserMemory it fails.
ReadStatus ParseHtml(const char* bytes, std::size_t size, const HtmlEvents& events) noexcept;

// As Readers::parse_xml. Without UseParserMemory it fails.
ReadStatus ParseXml(const char* bytes, std::size_t size, const HtmlEvents& events) noexcept;

}  // namespace kestan_cli

#endif  // KESTAN_CLI_READERS_HTML_PARSER_H_
