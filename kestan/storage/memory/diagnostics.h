// SPDX-License-Identifier: GPL-3.0-or-later
// The diagnostics of the engine.
#ifndef KESTAN_STORAGE_MEMORY_DIAGNOSTICS_H_
#define KESTAN_STORAGE_MEMORY_DIAGNOSTICS_H_

namespace kestan {

// Prints "Kestan: " and then `format`, of at most 200 bytes, filled in as by printf, on the
// standard error stream. Adds no line feed. Takes no memory, for it also says that there is none.
[[gnu::format(printf, 1, 2)]] void PrintDiagnostic(const char* format, ...);

}  // namespace kestan

#endif  // KESTAN_STORAGE_MEMORY_DIAGNOSTICS_H_
