#include <algorithm>
#include <filesystem>
#include <string_view>

#include "commands.h"
#include "opened_index.h"
#include "output.h"

namespace kestan_cli {
namespace {

std::vector<std::string_view> LinesOf(std::string_view text) {
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    lines.push_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return lines;
}

std::size_t CountLines(std::string_view text) {
  return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

std::string Fact(const std::string& what, const std::string& value) {
  return what + ": " + value + "\n";
}

}  // namespace

int RunList(Kestan& engine, const std::string& index, const Arguments&) {
  OpenedIndex opened(engine, index, Access::kRead);
  std::vector<std::string_view> names = LinesOf(engine.ListDocuments());
  std::sort(names.begin(), names.end());
  std::string lines;
  for (std::string_view name : names) lines.append(name).append("\n");
  Print(lines);
  return kDone;
}

int RunStats(Kestan& engine, const std::string& index, const Arguments&) {
  OpenedIndex opened(engine, index, Access::kRead);
  std::string facts = Fact("documents", std::to_string(CountLines(engine.ListDocuments())));
  facts += Fact("words", std::to_string(CountLines(engine.CommonWords(1, -1))));
  facts += Fact("option flags", std::to_string(engine.Options()));
  facts += Fact("positions kept", (engine.Options() & 1) == 0 ? "yes" : "no");
  facts += Fact("file size", std::to_string(std::filesystem::file_size(index)) + " bytes");
  Print(facts);
  return kDone;
}

}  // namespace kestan_cli
