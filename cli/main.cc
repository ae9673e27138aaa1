// The command `kestan`: reads arguments, runs one command, and turns whatever went wrong into one
// line and an exit status.
#include <kestan/kestan.h>

#include <csignal>
#include <exception>
#include <new>
#include <string>

#include "cli/app/arguments.h"
#include "cli/app/commands.h"
#include "cli/console/message.h"
#include "cli/console/output.h"

namespace kestan_cli {
namespace {

int Complain(const std::string& what, int status = kFailed) {
  Say("kestan: " + what);
  return status;
}

int Run(const Arguments& arguments) {
  const Request request = ReadArguments(AllCommands(), arguments);
  if (request.command == nullptr) {
    Print(request.text);
    return kDone;
  }
  Kestan engine;
  return request.command->run(engine, request.values);
}

int RunAndReport(const Arguments& arguments) {
  try {
    return Run(arguments);
  } catch (const BrokenPipe&) {
    return kFailed;
  } catch (const CommandError& error) {
    return Complain(error.what(), error.status());
  } catch (const std::bad_alloc&) {
    return Complain("out of memory");
  } catch (const std::exception& error) {
    return Complain(error.what());
  }
}

}  // namespace
}  // namespace kestan_cli

int main(int argc, char** argv) {
  const kestan_cli::StandardDescriptors taken;
  // Neither a reader that leaves nor a limit on file sizes may end the process amid a change.
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  return kestan_cli::RunAndReport({argv + (argc > 0 ? 1 : 0), argv + argc});
}
