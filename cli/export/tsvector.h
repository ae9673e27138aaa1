// SPDX-License-Identifier: GPL-3.0-or-later
// The words of a document as PostgreSQL's type tsvector takes them.
#ifndef KESTAN_CLI_EXPORT_TSVECTOR_H_
#define KESTAN_CLI_EXPORT_TSVECTOR_H_

#include <cstddef>
#include <string>

#include "cli/export/export_writer.h"

namespace kestan_cli {

// PostgreSQL's limits.
constexpr std::size_t kMaxLexemeBytes = 2046;
constexpr std::size_t kMaxTsVectorBytes = (std::size_t{1} << 20) - 1;
constexpr std::size_t kMaxLexemePositions = 256;
constexpr unsigned kMaxLexemePosition = 16383;

// What a tsvector cannot hold.
struct TsVectorLosses {
  // Returns one line, such as "1 word of more than 2046 bytes left out"; empty if nothing is lost.
  std::string Text() const;

  std::size_t long_words = 0;          // different words, left out with all their positions
  std::size_t words_past_the_end = 0;  // different words that did not fit into its 1 MB
  std::size_t late_positions = 0;      // past 16383; the words stay, if without a position
  std::size_t many_positions = 0;      // of words that have 256 positions already
  std::size_t unusable_words = 0;      // different words without a byte, of damaged indexes
};

struct TsVector {
  std::string text;  // what the server reads, as 'hello':1 'world':2; UTF-8
  TsVectorLosses losses;
  bool was_latin1 = false;  // some word was not UTF-8
  bool had_nul = false;     // some NUL has become U+FFFD
};

// Makes a tsvector of the words of `document`: each once, in lower case (A-Z), in the order of
// their first occurrences, and with its positions if they are known.
TsVector MakeTsVector(const ExportedDocument& document);

// Returns `text` with U+FFFD for each NUL, which PostgreSQL does not accept, and sets `*had_nul` if
// there was one; it is never cleared.
std::string WithoutNuls(std::string text, bool* had_nul);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXPORT_TSVECTOR_H_
