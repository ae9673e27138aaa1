#include <fstream>
#include <string>

#include "cli/app/commands.h"
#include "cli/app/manual.h"
#include "cli/console/message.h"
#include "cli/console/output.h"

namespace kestan_cli {
namespace {

int RunCompletion(Kestan&, const Values& values) {
  const std::string shell = values.Text("SHELL");
  if (shell == "bash") {
    Print(BashCompletion(AllCommands()));
  } else if (shell == "zsh") {
    Print(ZshCompletion(AllCommands()));
  } else if (shell == "fish") {
    Print(FishCompletion(AllCommands()));
  } else {
    throw CommandError("no completion for the shell " + Quoted(shell) +
                       "; there are bash, zsh and fish");
  }
  return kDone;
}

int RunManual(Kestan&, const Values& values) {
  for (const auto& [name, text] : ManualPages(AllCommands())) {
    const std::string path = values.Text("FOLDER") + "/" + name;
    std::ofstream page(path, std::ios::binary);
    page << text;
    if (!page.flush()) throw CommandError("cannot write " + Quoted(path));
  }
  return kDone;
}

}  // namespace

std::vector<Command> ManualCommands() {
  return {
      {"completion",
       "Print what a shell needs to complete this command's arguments.",
       {{"SHELL", "bash, zsh or fish"}},
       {},
       "",
       {"kestan completion bash > ~/.local/share/bash-completion/completions/kestan"},
       RunCompletion},
      {"manual",
       "Write the manual pages into a folder.",
       {{"FOLDER", "where to write them"}},
       {},
       "",
       {"kestan manual man1"},
       RunManual,
       false,
       true},
  };
}

}  // namespace kestan_cli
