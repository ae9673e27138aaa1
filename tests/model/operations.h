// SPDX-License-Identifier: GPL-3.0-or-later
// What a host can do, as values that RapidCheck makes up, shrinks and prints.
#ifndef KESTAN_TESTS_MODEL_OPERATIONS_H_
#define KESTAN_TESTS_MODEL_OPERATIONS_H_

#include <rapidcheck.h>

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "tests/model/world.h"

namespace kestan_model {

// One call of the engine and of the model.
struct Operation {
  std::string shown;
  std::function<void(World&)> run;
};
void showValue(const Operation& operation, std::ostream& out);

using Operations = rc::Gen<Operation>;

// A whole case. Printed as numbered steps.
struct Script {
  std::vector<Operation> steps;
};
void showValue(const Script& script, std::ostream& out);

// Words and names that a script draws from. Few, so that operations meet the same records often.
struct Vocabulary {
  std::vector<std::string> words;
  std::vector<std::string> names;
};

// Each family of operations, in proportions that make for eventful scripts.
Operations DocumentOperations(const Vocabulary& vocabulary);    // document_operations.cc
Operations QueryOperations(const Vocabulary& vocabulary);       // query_operations.cc
Operations LifecycleOperations();                               // lifecycle_operations.cc
Operations SideRecordOperations(const Vocabulary& vocabulary);  // side_record_operations.cc

// Everything together, in scripts that begin by opening a new index.
rc::Gen<Script> Scripts(const Operations& operations);
Operations AllOperations(const Vocabulary& vocabulary);

// Runs a script from an empty folder; fails the case at the first disagreement. At the end the
// index is closed and every record of every file is compared.
void Run(const Script& script);

// Replaces records in the index file by those that `records` makes up, and opens it again.
Operations PlantOperation(const rc::Gen<Records>& records);

// Plants so many words that walks over the index flush before their end.
Operations FillOperation(const rc::Gen<int>& counts);

// Copies the index and compares what the files hold then.
std::vector<Operation> CopyAndCompare();

}  // namespace kestan_model

#endif  // KESTAN_TESTS_MODEL_OPERATIONS_H_
