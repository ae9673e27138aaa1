// SPDX-License-Identifier: GPL-3.0-or-later
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include "cli/app/manual.h"
#include "cli/commands/commands.h"
#include "cli/console/message.h"
#include "cli/export/iso_time.h"

namespace kestan_cli {
namespace {

// Returns the date of the version or, where that of the sources is given in the way that builds
// agree on (seconds since 1970), that. So equal sources make equal pages.
std::string EditionDate() {
  const char* const given = std::getenv("SOURCE_DATE_EPOCH");
  if (given == nullptr) return KESTAN_VERSION_DATE;
  Values values;
  values.Add("SOURCE_DATE_EPOCH", given);
  const auto seconds = values.Number("SOURCE_DATE_EPOCH", 0, 0, UINT32_MAX);
  return IsoTime(static_cast<std::uint32_t>(seconds)).substr(0, 10);
}

std::string ReadPage(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  if (!file) throw CommandError("cannot read " + Quoted(path));
  return text.str();
}

void WritePage(const std::string& folder, const std::string& name, const std::string& text) {
  const std::string path = folder + "/" + name;
  std::ofstream page(path, std::ios::binary);
  page << text;
  if (!page.flush()) throw CommandError("cannot write " + Quoted(path));
}

int RunManual(const Values& values) {
  const ManualEdition edition{KESTAN_VERSION, EditionDate()};
  const std::string folder = values.Text("FOLDER");
  for (const auto& [name, text] : ManualPages(AllCommands(), edition)) {
    WritePage(folder, name, text);
  }
  if (!values.Has("QUERIES")) return kDone;
  WritePage(folder, "kestan-query.7", QueryPage(ReadPage(values.Text("QUERIES")), edition));
  return kDone;
}

}  // namespace

Command ManualCommand() {
  Command command{
      "manual",
      "Write the manual pages into a folder.",
      {{"FOLDER", "where to write them"},
       {"QUERIES", "docs/queries.md, for a page on queries", Positional::Count::kOptional}},
      {},
      "",
      {"kestan manual manual docs/queries.md"},
      RunManual};
  command.hidden = true;
  return command;
}

}  // namespace kestan_cli
