// SPDX-License-Identifier: GPL-3.0-or-later
#include <string>

#include "cli/app/completion/bash_completion.h"
#include "cli/app/completion/fish_completion.h"
#include "cli/app/completion/zsh_completion.h"
#include "cli/commands/commands.h"
#include "cli/console/message.h"
#include "cli/console/output.h"

namespace kestan_cli {
namespace {

std::string CompletionFor(const std::string& shell) {
  if (shell == "bash") return BashCompletion(AllCommands());
  if (shell == "zsh") return ZshCompletion(AllCommands());
  if (shell == "fish") return FishCompletion(AllCommands());
  throw CommandError("no completion for the shell " + Quoted(shell) +
                     "; there are bash, zsh and fish");
}

int RunCompletion(const Values& values) {
  Print(CompletionFor(values.Text("SHELL")));
  return kDone;
}

}  // namespace

Command CompletionCommand() {
  return {"completion",
          "Print what a shell needs to complete this command's arguments.",
          {{"SHELL", "bash, zsh or fish"}},
          {},
          "",
          {"eval \"$(kestan completion bash)\""},
          RunCompletion};
}

}  // namespace kestan_cli
