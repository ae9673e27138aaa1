// SPDX-License-Identifier: GPL-3.0-or-later
// A document that a test hands to what exports it.
#ifndef KESTAN_TESTS_CLI_EXPORT_HELD_DOCUMENT_H_
#define KESTAN_TESTS_CLI_EXPORT_HELD_DOCUMENT_H_

#include <vector>

#include "cli/export/export_writer.h"

namespace kestan_tests {

struct HeldDocument {
  kestan::search::DocumentInfo info = {};
  std::vector<kestan::search::PlacedWord> words = {};
  bool has_positions = true;

  // Lends itself.
  operator kestan_cli::ExportedDocument() const { return {info, words, has_positions}; }
};

}  // namespace kestan_tests

#endif  // KESTAN_TESTS_CLI_EXPORT_HELD_DOCUMENT_H_
