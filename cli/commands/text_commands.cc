// The texts that an index keeps beside its words: a title, a summary and a user record for each
// document, and lists of words by name.
#include <algorithm>
#include <cstdio>
#include <sstream>
#include <string>

#include "cli/app/commands.h"
#include "cli/console/json.h"
#include "cli/console/message.h"
#include "cli/console/output.h"
#include "cli/index/document_records.h"
#include "cli/index/index_transaction.h"
#include "cli/index/side_record.h"
#include "search/text/lines.h"

namespace kestan_cli {
namespace {

using kestan::search::LinesOf;

auto NoText(const SideRecord& record, const std::string& name, const std::string& index) {
  return CommandError("document " + Quoted(name) + " of index " + Quoted(index) + " has no " +
                      record.title);
}

template <const SideRecord& kRecord>
int RunGet(Kestan& engine, const Values& values) {
  const std::string index = values.Text("INDEX");
  const std::string name = values.Text("NAME");
  const OpenedIndex opened(engine, index, Access::kRead);
  const char* const text = (engine.*kRecord.get)(name.c_str());
  if (text == nullptr) {
    CheckIndexed(opened, name);
    throw NoText(kRecord, name, index);
  }
  if (values.Has("--json")) {
    Print(JsonLine({{"schema", kJsonSchema}, {"name", name}, {kRecord.command, text}}));
  } else {
    Print(std::string(text) + "\n");
  }
  return kDone;
}

// Checks before the copy is made that there is such a document.
void CheckBefore(Kestan& engine, const std::string& index, const std::string& name) {
  const OpenedIndex opened(engine, index, Access::kRead);
  CheckIndexed(opened, name);
}

template <const SideRecord& kRecord>
int RunSet(Kestan& engine, const Values& values) {
  const std::string index = values.Text("INDEX");
  const std::string name = values.Text("NAME");
  IndexChange change(engine, index, Access::kWrite, WayOf(values.Has("--in-place"), index));
  CheckBefore(engine, index, name);
  OpenedIndex& opened = change.Begin();
  opened.CheckWritten((engine.*kRecord.put)(name.c_str(), values.Text("TEXT").c_str()));
  change.Commit();
  return kDone;
}

template <const SideRecord& kRecord>
int RunDelete(Kestan& engine, const Values& values) {
  const std::string index = values.Text("INDEX");
  const std::string name = values.Text("NAME");
  IndexChange change(engine, index, Access::kWrite, WayOf(values.Has("--in-place"), index));
  const OpenedIndex& opened = change.Begin();
  if ((engine.*kRecord.remove)(name.c_str()) != 0) {
    CheckIndexed(opened, name);
    throw NoText(kRecord, name, index);
  }
  change.Commit();
  return kDone;
}

Positional NameArgument() { return {"NAME", "the document's name, as `kestan list` prints it"}; }

template <const SideRecord& kRecord>
void AddCommands(const std::string& sample, std::vector<Command>* commands) {
  const std::string name = kRecord.command;
  const std::string title = kRecord.title;
  commands->push_back({name + " get",
                       "Print a document's " + title + ".",
                       {IndexArgument(), NameArgument()},
                       {JsonOption()},
                       "",
                       {"kestan " + name + " get my.index notes.txt"},
                       RunGet<kRecord>});
  commands->push_back({name + " set",
                       "Set a document's " + title + ".",
                       {IndexArgument(), NameArgument(), {"TEXT", "the new text"}},
                       {InPlaceOption()},
                       "",
                       {"kestan " + name + " set my.index notes.txt '" + sample + "'"},
                       RunSet<kRecord>});
  commands->push_back({name + " delete",
                       "Delete a document's " + title + ".",
                       {IndexArgument(), NameArgument()},
                       {InPlaceOption()},
                       "",
                       {"kestan " + name + " delete my.index notes.txt"},
                       RunDelete<kRecord>});
}

// ---- Word lists ----

int RunGetWords(Kestan& engine, const Values& values) {
  const std::string index = values.Text("INDEX");
  const OpenedIndex opened(engine, index, Access::kRead);
  const char* const words = engine.DBGetWords(values.Text("LIST").c_str());
  if (words == nullptr) {
    opened.CheckRead();
    throw CommandError("no word list " + Quoted(values.Text("LIST")) + " in index " +
                       Quoted(index));
  }
  if (values.Has("--json")) {
    Print(JsonLine(
        {{"schema", kJsonSchema}, {"list", values.Text("LIST")}, {"words", LinesOf(words)}}));
  } else {
    Print(words);
  }
  return kDone;
}

constexpr std::size_t kMaxListedBytes = 127;
constexpr std::size_t kMaxInputBytes = std::size_t{1} << 26;  // millions of words

// A NUL would end the list for the engine.
bool IsAscii(char byte) { return static_cast<signed char>(byte) > 0; }

std::string WordsToPut(const Values& values) {
  if (!values.Has("WORD")) return ReadInput(stdin, kMaxInputBytes);
  std::string words;
  for (const std::string& word : values.All("WORD")) words += word + "\n";
  return words;
}

// The engine would cut a long word, and make other words of bytes above 127.
void CheckWords(const std::string& words) {
  std::istringstream rest(words);
  for (std::string word; rest >> word;) {
    if (word.size() > kMaxListedBytes) {
      throw CommandError("the word " + Quoted(word) + " has " + std::to_string(word.size()) +
                         " bytes; a list keeps words of at most " +
                         std::to_string(kMaxListedBytes));
    }
    if (!std::all_of(word.begin(), word.end(), IsAscii)) {
      throw CommandError("the word " + Quoted(word) + " is not in ASCII; a list keeps no others");
    }
  }
}

int RunPutWords(Kestan& engine, const Values& values) {
  const std::string index = values.Text("INDEX");
  const std::string words = WordsToPut(values);
  CheckWords(words);
  IndexChange change(engine, index, Access::kWrite, WayOf(values.Has("--in-place"), index));
  OpenedIndex& opened = change.Begin();
  opened.CheckWritten(engine.DBPutWords(values.Text("LIST").c_str(), words.c_str()));
  change.Commit();
  return kDone;
}

void AddWordListCommands(std::vector<Command>* commands) {
  const Positional list{"LIST", "the name of the list"};
  commands->push_back({"wordlist get",
                       "Print a list of words that the index keeps.",
                       {IndexArgument(), list},
                       {JsonOption()},
                       "",
                       {"kestan wordlist get my.index colours"},
                       RunGetWords});
  commands->push_back(
      {"wordlist put",
       "Keep a list of words in the index, in place of an earlier one.",
       {IndexArgument(),
        list,
        {"WORD", "the words; without any, they are read from the standard input",
         Positional::Count::kAny}},
       {InPlaceOption()},
       "A word is at most 127 bytes long, and of ASCII. White space separates words.",
       {"kestan wordlist put my.index colours red green blue"},
       RunPutWords});
}

}  // namespace

std::vector<Command> TextCommands() {
  std::vector<Command> commands;
  AddCommands<kTitle>("Things to do", &commands);
  AddCommands<kSummary>("What is left for this week", &commands);
  AddCommands<kUser>("reviewed=yes", &commands);
  AddWordListCommands(&commands);
  return commands;
}

}  // namespace kestan_cli
