// From a file to a document.
#ifndef KESTAN_CLI_EXTRACT_FILE_TEXT_H_
#define KESTAN_CLI_EXTRACT_FILE_TEXT_H_

#include <cstdint>
#include <string>

#include "cli/extract/converter/converter.h"
#include "cli/extract/document.h"
#include "cli/files/fingerprint.h"

namespace kestan_cli {

// How to read files. Borrows the table.
struct ReadingRules {
  const Converters& converters;
  CommandLimits limits;         // of a converter
  std::uint64_t max_bytes = 0;  // of a file that is read without one; at most kMaxTextBytes
  WordRules words;
};

// A file that has been read, and not yet understood.
struct LoadedFile {
  std::string name;
  std::string head;  // its first bytes, kHeadBytes at most
  Fingerprint fingerprint;
  const Converter* converter = nullptr;  // which has to read it anew; the table's
  std::string bytes;                     // without a converter
};

// Reads the file `name` to its end; a binary one only until that shows.
//   Throws   SkipFile if it cannot be read, is binary and there is no converter for it, is too
//            large, or changes meanwhile.
LoadedFile LoadFile(const std::string& name, const ReadingRules& rules);

// Whether the document `name` of `fingerprint`, made of the same bytes as `file`, was made in the
// way that one of `file` would be made now: by the same format, and with the same words left out.
bool IsReadAlike(const LoadedFile& file, const std::string& name, const Fingerprint& fingerprint,
                 const ReadingRules& rules);

// Makes a document of `file`, by the format that its name tells.
//   Throws   SkipFile if it cannot be converted, if its text cannot be read whole and nothing tells
//            what is missing, or if it changes meanwhile.
Document DocumentOf(LoadedFile file, const ReadingRules& rules);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXTRACT_FILE_TEXT_H_
