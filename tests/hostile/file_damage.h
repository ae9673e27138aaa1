// SPDX-License-Identifier: GPL-3.0-or-later
// A good index file, and ways in which a disk or another program can damage it.
#ifndef KESTAN_TESTS_HOSTILE_FILE_DAMAGE_H_
#define KESTAN_TESTS_HOSTILE_FILE_DAMAGE_H_

#include <cstddef>
#include <random>
#include <string>
#include <vector>

#include "tests/support/files.h"

namespace kestan_hostile {

// A file and what was done to it.
struct Damaged {
  std::string what;
  std::string bytes;
};

inline constexpr std::size_t kBlockBytes = 512;

// Numbers that are the same at every run.
class Dice {
 public:
  std::size_t Below(std::size_t limit) { return engine_() % limit; }
  char Byte() { return static_cast<char>(engine_()); }

 private:
  std::mt19937 engine_;
};

// Makes an index as a host would, with documents removed, reused and waiting, and returns its file,
// which has some 50,000 bytes and is the same every time.
std::string GoodFile();

using kestan_tests::ReadFile;
using kestan_tests::WriteFile;

// Each kind of damage, done to the file `good` in one place after the other.
std::vector<Damaged> FlippedInTheFirstBlock(const std::string& good);
std::vector<Damaged> FlippedAnywhere(const std::string& good, std::size_t count);
std::vector<Damaged> Cut(const std::string& good);
std::vector<Damaged> BlocksOfZeros(const std::string& good);
std::vector<Damaged> BlocksOfNoise(const std::string& good);
std::vector<Damaged> BlocksSwapped(const std::string& good);

// Entries of gdbm's directory, each of which says where a bucket of keys lies, put in the place of
// others. A walk over such a file may come to a bucket a second time.
std::vector<Damaged> DirectoryEntriesRepeated(const std::string& good);

// Files that never were an index.
std::vector<Damaged> Strangers(const std::string& good);

}  // namespace kestan_hostile

#endif  // KESTAN_TESTS_HOSTILE_FILE_DAMAGE_H_
