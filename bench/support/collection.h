// SPDX-License-Identifier: GPL-3.0-or-later
// Test collections of documents and questions, as retrieval_quality.py describes them.
#ifndef KESTAN_BENCH_SUPPORT_COLLECTION_H_
#define KESTAN_BENCH_SUPPORT_COLLECTION_H_

#include <string>
#include <vector>

namespace kestan_bench {

using Fields = std::vector<std::string>;

// Returns the lines of the file at `path`, each of at least two fields that tabs part. Ends the
// process where there are none.
std::vector<Fields> ReadCollection(const std::string& path);

// Ends the process with "WHO: WHAT" on the standard error stream.
[[noreturn]] void EndWith(const std::string& who, const std::string& what);

}  // namespace kestan_bench

#endif  // KESTAN_BENCH_SUPPORT_COLLECTION_H_
