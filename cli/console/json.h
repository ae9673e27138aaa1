// JSON as the command prints it.
#ifndef KESTAN_CLI_CONSOLE_JSON_H_
#define KESTAN_CLI_CONSOLE_JSON_H_

#include <nlohmann/json.hpp>
#include <string>

#include "cli/console/control.h"

namespace kestan_cli {

using Json = nlohmann::ordered_json;

// The version of what all reports look like; a field that goes or changes its meaning raises it.
constexpr int kJsonSchema = 1;

// Returns `report` on one line. Bytes that are not UTF-8 become U+FFFD; control characters are
// escaped, all of them, so that a terminal gets JSON too.
inline std::string JsonLine(const Json& report) {
  return WithControlsInJson(report.dump(-1, ' ', false, Json::error_handler_t::replace)) + "\n";
}

}  // namespace kestan_cli

#endif  // KESTAN_CLI_CONSOLE_JSON_H_
