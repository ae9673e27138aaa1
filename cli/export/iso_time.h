// SPDX-License-Identifier: GPL-3.0-or-later
// Times of an index in the notation of ISO 8601.
#ifndef KESTAN_CLI_EXPORT_ISO_TIME_H_
#define KESTAN_CLI_EXPORT_ISO_TIME_H_

#include <cstdint>
#include <string>

namespace kestan_cli {

// Returns a time given in seconds since 1970 as 2026-11-21T16:00:00Z.
std::string IsoTime(std::uint32_t seconds);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXPORT_ISO_TIME_H_
