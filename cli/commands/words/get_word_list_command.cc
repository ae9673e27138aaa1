#include <string>

#include "cli/app/command_registry.h"
#include "cli/console/json.h"
#include "cli/console/message.h"
#include "cli/index/opened_index.h"
#include "search/text/lines.h"

namespace kestan_cli {
namespace {

using kestan::search::LinesOf;

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
        return JsonReport({{"list", list}, {"words", LinesOf(words)}});
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
