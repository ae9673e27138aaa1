// SPDX-License-Identifier: GPL-3.0-or-later
// JSON as the command prints it.
#ifndef KESTAN_CLI_CONSOLE_JSON_H_
#define KESTAN_CLI_CONSOLE_JSON_H_

#include <nlohmann/json.hpp>
#include <string>

#include "cli/console/control_characters.h"

namespace kestan_cli {

using Json = nlohmann::ordered_json;

// The version of the fields of all reports. Raised when a field is removed or changes its meaning.
constexpr int kJsonSchema = 1;

// Returns `report` on one line. Bytes that are not UTF-8 become U+FFFD. All control characters are
// escaped, so that a terminal may show the line as it is.
inline std::string JsonLine(const Json& report) {
  return EscapeControlsInJson(report.dump(-1, ' ', false, Json::error_handler_t::replace)) + "\n";
}

// Returns a report on one line: "schema", then the fields of the object `fields`.
inline std::string JsonReport(const Json& fields) {
  Json report{{"schema", kJsonSchema}};
  for (const auto& [name, value] : fields.items()) report[name] = value;
  return JsonLine(report);
}

}  // namespace kestan_cli

#endif  // KESTAN_CLI_CONSOLE_JSON_H_
