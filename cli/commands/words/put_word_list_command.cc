// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <sstream>
#include <string>

#include "cli/commands/commands.h"
#include "cli/console/input.h"
#include "cli/console/message.h"
#include "cli/index/opened_writer.h"

namespace kestan_cli {
namespace {

constexpr std::size_t kMaxListedBytes = 127;
constexpr std::size_t kMaxInputBytes = std::size_t{1} << 26;  // millions of words

// Excludes NUL, which would end the list for the engine.
bool IsAscii(char byte) { return static_cast<signed char>(byte) > 0; }

std::string WordsOf(const Values& values) {
  if (!values.Has("WORD")) return ReadInput(stdin, kMaxInputBytes);
  std::string words;
  for (const std::string& word : values.All("WORD")) words += word + "\n";
  return words;
}

// Returns each word followed by a line feed. A list keeps what one in an index file can: that would
// cut a long word, and change bytes above 127.
std::string CheckedWords(const std::string& words) {
  std::string list;
  std::istringstream rest(words);
  for (std::string word; rest >> word; list += word + "\n") {
    if (word.size() > kMaxListedBytes) {
      throw CommandError("the word " + Quoted(word) + " has " + std::to_string(word.size()) +
                         " bytes; a list keeps words of at most " +
                         std::to_string(kMaxListedBytes));
    }
    if (!std::all_of(word.begin(), word.end(), IsAscii)) {
      throw CommandError("the word " + Quoted(word) + " is not in ASCII; a list keeps no others");
    }
  }
  return list;
}

int RunPutWordList(const Values& values) {
  const std::string words = CheckedWords(WordsOf(values));
  OpenedWriter opened(values.Text("INDEX"), OpenedWriter::IfMissing::kFail,
                      StyleOfStandardError(false));
  opened.writer().SetProperty("wordlist:" + values.Text("LIST"), words);
  opened.Commit();
  return kDone;
}

}  // namespace

Command PutWordListCommand() {
  return {"wordlist put",
          "Keep a list of words in the index, in place of an earlier one.",
          {IndexArgument(),
           {"LIST", "the name of the list"},
           {"WORD", "the words; without any, they are read from the standard input",
            Positional::Count::kAny}},
          {},
          "A word is at most 127 bytes long, and of ASCII. White space separates words. A list "
          "without words is taken away.",
          {"kestan wordlist put my.index colours red green blue"},
          RunPutWordList};
}

}  // namespace kestan_cli
