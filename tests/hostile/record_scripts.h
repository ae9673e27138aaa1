// SPDX-License-Identifier: GPL-3.0-or-later
// Calls that read every kind of record, made to the engine and to the model alike.
#ifndef KESTAN_TESTS_HOSTILE_RECORD_SCRIPTS_H_
#define KESTAN_TESTS_HOSTILE_RECORD_SCRIPTS_H_

#include "tests/model/world.h"

namespace kestan_hostile {

// A small index, without option flags: the documents a, b and f of the codes 1, 2 and 6, the
// removed code 3, the reusable codes 5 and 4, the words "cat", "dog" and "x", a word list, and a
// title, a summary and a user record. Its codes end at 6.
kestan_model::Records GoodIndex();

// The same index without positions.
kestan_model::Records GoodIndexWithoutPositions();

// Each script goes through an index of these records from its opening to a look at what the files
// hold at its end. A disagreement with the model fails the test, which names it `damage`. Where
// engine and model promise to end the process, a child process is seen to do so.
void ReadAndConvert(const kestan_model::Records& records, const std::string& damage);
void ShrinkAndAdd(const kestan_model::Records& records, const std::string& damage);
void RemoveAndMove(const kestan_model::Records& records, const std::string& damage);

}  // namespace kestan_hostile

#endif  // KESTAN_TESTS_HOSTILE_RECORD_SCRIPTS_H_
