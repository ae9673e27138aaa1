// SPDX-License-Identifier: GPL-3.0-or-later
// What every form in which documents leave an index has to do.
#ifndef KESTAN_CLI_EXPORT_EXPORT_WRITER_H_
#define KESTAN_CLI_EXPORT_EXPORT_WRITER_H_

#include <kestan/search.h>

#include <string>
#include <string_view>
#include <vector>

#include "cli/extract/charset/latin1.h"

namespace kestan_cli {

// A document as it leaves. Borrows what it is made of.
struct ExportedDocument {
  const kestan::search::DocumentInfo& info;
  const std::vector<kestan::search::PlacedWord>& words;  // by ascending position
  bool has_positions = true;                             // false: each word is there once
};

// What the writer found in a document. The export reports it once, at the end.
struct ExportNotes {
  // Returns `text` in UTF-8.
  std::string Utf8(std::string_view text) { return Utf8OrAllLatin1(text, &document_was_latin1); }

  bool document_was_latin1 = false;  // something in it is not UTF-8
  bool document_had_nul = false;
};

// Turns documents into text, one after the other. Each function returns the text that comes next.
class ExportWriter {
 public:
  ExportWriter() = default;
  virtual ~ExportWriter() = default;
  ExportWriter(const ExportWriter&) = delete;
  ExportWriter& operator=(const ExportWriter&) = delete;

  virtual std::string Begin() = 0;
  virtual std::string Add(const ExportedDocument& document, ExportNotes* notes) = 0;
  virtual std::string End() = 0;
};

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXPORT_EXPORT_WRITER_H_
