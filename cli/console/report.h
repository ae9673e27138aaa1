// SPDX-License-Identifier: GPL-3.0-or-later
// Reports of commands: as text, as JSON, or none.
#ifndef KESTAN_CLI_CONSOLE_REPORT_H_
#define KESTAN_CLI_CONSOLE_REPORT_H_

#include "cli/console/output.h"

namespace kestan_cli {

enum class ReportFormat {
  kText,
  kJson,  // one line
  kNone,
};

// Returns the format that the options of a command ask for. JSON prevails over silence.
inline ReportFormat ReportFormatOf(bool json, bool quiet) {
  if (json) return ReportFormat::kJson;
  return quiet ? ReportFormat::kNone : ReportFormat::kText;
}

// Prints what `json` or what `text` returns, as `format` says. Calls only the one that it needs.
// A closed pipe changes nothing: the work is done.
//   Throws   as PrintIfRead does.
template <typename Json, typename Text>
void PrintReport(ReportFormat format, Json json, Text text) {
  if (format == ReportFormat::kJson) PrintIfRead(json());
  if (format == ReportFormat::kText) PrintIfRead(text());
}

}  // namespace kestan_cli

#endif  // KESTAN_CLI_CONSOLE_REPORT_H_
