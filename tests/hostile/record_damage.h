// SPDX-License-Identifier: GPL-3.0-or-later
// Ways in which a record can be damaged.
#ifndef KESTAN_TESTS_HOSTILE_RECORD_DAMAGE_H_
#define KESTAN_TESTS_HOSTILE_RECORD_DAMAGE_H_

#include <set>
#include <string>

namespace kestan_hostile {

// Returns what damage makes of the record `good`: each truncation, bytes too many, the record
// twice, each unit made a limit of its range, and changed bytes at each offset. A byte gets 6 other
// values, or all 255 with KESTAN_HOSTILE_BYTES=all in the environment.
std::set<std::string> DamagedForms(const std::string& good);

}  // namespace kestan_hostile

#endif  // KESTAN_TESTS_HOSTILE_RECORD_DAMAGE_H_
