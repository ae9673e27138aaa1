// SPDX-License-Identifier: GPL-3.0-or-later
// How a file is read: its format, its converter, and what is left out of its words.
#ifndef KESTAN_CLI_EXTRACT_READING_H_
#define KESTAN_CLI_EXTRACT_READING_H_

#include <cstdint>
#include <string>
#include <string_view>

#include "cli/extract/converter/converter.h"
#include "cli/extract/document/document.h"

namespace kestan_cli {

enum class Format { kText, kMarkdown, kHtml, kRoff, kMail, kOffice };

// Returns the format of a text that begins with `head`: that for which the extension of `name`
// stands.
Format FormatOf(const std::string& name, std::string_view head = {});

// How to read files. Borrows the table.
struct ReadingRules {
  const Converters& converters;
  CommandLimits limits;         // of a converter
  std::uint64_t max_bytes = 0;  // of a file that needs none; at most kMaxTextBytes
  WordRules words;
  bool archives = false;  // whether their members are documents
};

// The first bytes of a file, at most kHeadBytes.
struct FileHead {
  std::string packed;    // as they are in the file
  std::string unpacked;  // of what is compressed in it; else the same
};

// Returns 16 hexadecimal digits that stand for how `rules` read the file `name`, which begins with
// `head`: its format or the command of its converter, and the words left out. Equal digits and
// equal bytes make equal documents.
std::string ReadingDigits(const std::string& name, const FileHead& head, const ReadingRules& rules);

// Returns the digits of a file that is read as its name alone says: with the converters that come
// with the command, and with no words left out.
std::string ReadingDigitsByName(const std::string& name, const FileHead& head);

// Returns whether the two are the same.
bool IsReadByName(const std::string& name, const FileHead& head, const ReadingRules& rules);

// Returns whether the file `name`, which begins with `head`, is read as an archive, if its members
// are documents: it is one, and there is no converter for it.
bool IsReadAsArchive(const std::string& name, std::string_view head, const Converters& converters);

// Returns the name by which the file is read as `rules` say: without the extensions of compression
// if it is unpacked.
std::string NameToReadBy(const std::string& name, std::string_view packed_head,
                         const Converters& converters);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXTRACT_READING_H_
