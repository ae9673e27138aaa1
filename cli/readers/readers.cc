// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/readers/readers.h"

#include "cli/readers/archive_reader.h"
#include "cli/readers/charset_decoder.h"
#include "cli/readers/charset_guess.h"
#include "cli/readers/decompressor.h"
#include "cli/readers/html_parser.h"

extern "C" __attribute__((visibility("default"))) const kestan_cli::Readers*
KestanReaders() noexcept {
  static constexpr kestan_cli::Readers kReaders{
      KESTAN_READERS_VERSION,    kestan_cli::UseParserMemory, kestan_cli::ExamineCharset,
      kestan_cli::DecodeCharset, kestan_cli::GuessCharset,    kestan_cli::ParseHtml,
      kestan_cli::Decompress,    kestan_cli::ReadZip,         kestan_cli::ReadArchive,
      kestan_cli::ParseXml};
  return &kReaders;
}
