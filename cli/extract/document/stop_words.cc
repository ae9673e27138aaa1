// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/document/stop_words.h"

#include <optional>

#include <kestan/search.h>

#include "cli/console/message.h"
#include "cli/extract/charset/decode.h"
#include "cli/extract/document/document.h"
#include "cli/extract/document/words.h"
#include "cli/files/skip.h"
#include "cli/files/stable_file.h"

namespace kestan_cli {
namespace {

CommandError TooLarge(const std::string& path) {
  return CommandError(Quoted(path) + " is too large");
}

std::string ReadWords(const std::string& path) {
  std::string bytes;
  try {
    StableFile file(path);
    for (std::string_view piece; file.Read(&piece);) {
      if (bytes.size() + piece.size() > kMaxTextBytes) throw TooLarge(path);
      bytes += piece;
    }
  } catch (const SkipFile& problem) {
    throw CommandError("cannot read " + Quoted(path) + ": " + problem.what());
  }
  const std::optional<std::string> text = DecodedText(std::move(bytes));
  if (!text.has_value()) throw CommandError("cannot read " + Quoted(path) + ": not a text");
  return *text;
}

}  // namespace

std::string StopWords(const std::string& choice) {
  if (choice.empty()) return "";
  const std::string words =
      choice == "english" ? kestan::search::EnglishStopWords() : ReadWords(choice);
  if (words.size() > kMaxTextBytes) throw TooLarge(choice);
  return WordsIn(words);
}

}  // namespace kestan_cli
