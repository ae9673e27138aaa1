// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <string>
#include <string_view>

#include "cli/commands/commands.h"
#include "cli/console/json.h"
#include "cli/console/message.h"
#include "cli/index/index_errors.h"
#include "cli/index/opened_reader.h"

namespace kestan_cli {
namespace {

// Returns the words, each of which a line feed ends.
Json JsonOf(std::string_view lines) {
  Json words = Json::array();
  while (!lines.empty()) {
    const std::string_view word = lines.substr(0, lines.find('\n'));
    words.push_back(std::string(word));
    lines.remove_prefix(std::min(word.size() + 1, lines.size()));
  }
  return words;
}

int RunGetWordList(const Values& values) {
  const std::string index = values.Text("INDEX");
  const std::string list = values.Text("LIST");
  const std::string words = ValueOf(OpenReader(index).Property("wordlist:" + list), index);
  if (words.empty()) {
    throw CommandError("no word list " + Quoted(list) + " in index " + Quoted(index));
  }
  PrintReport(
      ReportFormatOf(values),
      [&] {
        return JsonReport({{"list", list}, {"words", JsonOf(words)}});
      },
      [&]() -> const std::string& { return words; });
  return kDone;
}

}  // namespace

Command GetWordListCommand() {
  return {"wordlist get",
          "Print a list of words that the index keeps.",
          {IndexArgument(), {"LIST", "the name of the list"}},
          {JsonOption()},
          "",
          {"kestan wordlist get my.index colours"},
          RunGetWordList};
}

}  // namespace kestan_cli
