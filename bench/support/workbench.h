// SPDX-License-Identifier: GPL-3.0-or-later
// Shared by the workloads: a temporary directory, and checks that stop a wrong benchmark.
#ifndef KESTAN_BENCH_SUPPORT_WORKBENCH_H_
#define KESTAN_BENCH_SUPPORT_WORKBENCH_H_

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "tests/support/temp_dir.h"

namespace kestan_bench {

// Ends the process if an answer is not what it must be: a time for a wrong answer means nothing.
inline void Check(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "wrong answer: %s\n", what);
  std::exit(1);
}

// A temporary directory on the disk: the time that a flush waits is part of what is measured.
class TempDir : public kestan_tests::TempDir {
 public:
  TempDir() : kestan_tests::TempDir(std::filesystem::temp_directory_path()) {}
};

// Copies the file at `from` over the one at `to`.
inline void CopyOver(const std::string& from, const std::string& to) {
  std::filesystem::copy_file(from, to, std::filesystem::copy_options::overwrite_existing);
}

inline std::uint64_t CountLines(const char* text) {
  std::uint64_t lines = 0;
  for (; *text != '\0'; ++text) lines += *text == '\n' ? 1U : 0U;
  return lines;
}

}  // namespace kestan_bench

#endif  // KESTAN_BENCH_SUPPORT_WORKBENCH_H_
