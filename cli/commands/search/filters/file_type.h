// SPDX-License-Identifier: GPL-3.0-or-later
// Types of documents, as people name them.
#ifndef KESTAN_CLI_COMMANDS_SEARCH_FILTERS_FILE_TYPE_H_
#define KESTAN_CLI_COMMANDS_SEARCH_FILTERS_FILE_TYPE_H_

#include <string>
#include <string_view>

namespace kestan_cli {

// Returns whether the file at `path` is of `type`, in lower case: one of its extensions, in which
// capitals do not count ("tar" and "gz" of "x.tar.gz", "pdf" of "x.PDF"), or a kind, which
// stands for several:
//
//   html    html, htm, xhtml
//   man     those of manual pages: ls.1, printf.3p, x.man
//   office  docx, odt, epub, pptx, xlsx, doc, rtf
//   text    txt, text, md, markdown, rst, and names without an extension
//   source  those of programs and scripts in the usual languages
//
// Before the extension of a compression, the one before it counts too.
bool IsFileOfType(std::string_view path, std::string_view type);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_COMMANDS_SEARCH_FILTERS_FILE_TYPE_H_
