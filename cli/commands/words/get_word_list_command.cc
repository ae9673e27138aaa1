#include <kestan/results.h>

#include <string>
#include <string_view>

#include "cli/commands/commands.h"
#include "cli/console/json.h"
#include "cli/console/message.h"
#include "cli/index/opened_index.h"

namespace kestan_cli {
namespace {

Json JsonOf(Kestan& engine, const std::string& list) {
  Json words = Json::array();
  kestan::ReaderOf(engine).ForEachListedWord(
      list, [&](std::string_view word) { words.push_back(std::string(word)); });
  return words;
}

int RunGetWordList(Kestan& engine, const Values& values) {
  const std::string index = values.Text("INDEX");
  const std::string list = values.Text("LIST");
  const OpenedIndex opened(engine, index, Access::kRead);
  const char* const words = engine.DBGetWords(list.c_str());
  if (words == nullptr) {
    opened.CheckRead();
    throw CommandError("no word list " + Quoted(list) + " in index " + Quoted(index));
  }
  PrintReport(
      ReportFormatOf(values),
      [&] {
        return JsonReport({{"list", list}, {"words", JsonOf(engine, list)}});
      },
      [&] { return words; });
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
