// SPDX-License-Identifier: GPL-3.0-or-later
// The command `kestan`: reads the arguments, runs one command, and turns any error into a message
// of one line and an exit status.

#include <csignal>
#include <exception>
#include <new>
#include <string>

#include "cli/app/arguments.h"
#include "cli/app/help_text.h"
#include "cli/app/standard_descriptors.h"
#include "cli/commands/commands.h"
#include "cli/console/diagnostics.h"
#include "cli/console/interruption.h"
#include "cli/console/message.h"
#include "cli/console/output.h"
#include "cli/extract/module/loaded_mail_reader.h"
#include "cli/extract/module/loaded_readers.h"

namespace kestan_cli {
namespace {

int Fail(const std::string& what, int status = kFailed) {
  ReportProblem(what);
  return status;
}

int Run(const Arguments& arguments) {
  const Request request = ReadArguments(AllCommands(), arguments);
  if (request.command == nullptr) {
    PrintHelp(request.text);
    return kDone;
  }
  return request.command->run(request.values);
}

int RunAndReport(const Arguments& arguments) {
  try {
    return Run(arguments);
  } catch (const Interrupted& interrupted) {
    std::signal(interrupted.signal(), SIG_DFL);
    std::raise(interrupted.signal());
    return kFailed;
  } catch (const BrokenPipe&) {
    return kDone;
  } catch (const CommandError& error) {
    return Fail(error.what(), error.status());
  } catch (const std::bad_alloc&) {
    return Fail("out of memory");
  } catch (const std::exception& error) {
    return Fail(error.what());
  }
}

// Says once why all documents that needed them were skipped.
void ReportUnusableReaders() {
  for (const std::string& problem : {ReadersProblem(), MailReaderProblem()}) {
    if (!problem.empty()) ReportProblem(problem);
  }
}

}  // namespace
}  // namespace kestan_cli

int main(int argc, char** argv) {
  const kestan_cli::StandardDescriptors descriptors;
  // Neither a closed pipe nor a limit on file sizes may end the process in the middle of a change.
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  const int status = kestan_cli::RunAndReport({argv + (argc > 0 ? 1 : 0), argv + argc});
  kestan_cli::ReportUnusableReaders();
  return status;
}
