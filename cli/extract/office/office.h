// SPDX-License-Identifier: GPL-3.0-or-later
// Extracts the text of office documents: zip archives of XML, or of pages.
#ifndef KESTAN_CLI_EXTRACT_OFFICE_OFFICE_H_
#define KESTAN_CLI_EXTRACT_OFFICE_OFFICE_H_

#include <cstdint>
#include <string>
#include <string_view>

namespace kestan_cli {

// Returns whether a file named `name`, which begins with `head`, is one: .docx, .pptx, .xlsx, .odt,
// .ods, .odp or .epub.
bool IsOffice(std::string_view name, std::string_view head);

// Returns the text of the document `bytes`, which is named `name`, in UTF-8 and without a NUL. The
// title of its description, if it has one, becomes the first line.
//   Throws   SkipFile if it is broken, or unpacks to more than `max_bytes` or kMaxRatio times its
//            size; bad_alloc.
std::string TextOfOffice(std::string_view name, std::string_view bytes, std::uint64_t max_bytes);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXTRACT_OFFICE_OFFICE_H_
