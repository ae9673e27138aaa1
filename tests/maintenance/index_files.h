// SPDX-License-Identifier: GPL-3.0-or-later
// Index files for tests that damage them, and a map of what lies where in one.
#ifndef KESTAN_TESTS_MAINTENANCE_INDEX_FILES_H_
#define KESTAN_TESTS_MAINTENANCE_INDEX_FILES_H_

#include <cstddef>
#include <cstdint>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "tests/support/files.h"
#include "tests/support/index_test.h"

namespace kestan_maintenance {

inline constexpr std::size_t kBlockBytes = 512;

// Numbers that are the same at every run.
class Dice {
 public:
  explicit Dice(unsigned seed) : engine_(seed) {}
  std::size_t Below(std::size_t limit) { return engine_() % limit; }
  char Byte() { return static_cast<char>(engine_()); }

 private:
  std::mt19937 engine_;
};

using kestan_tests::ReadFile;
using kestan_tests::WriteFile;

// Makes an index as a host would: `documents` documents of some 10 to 70 words out of a vocabulary
// in which a few are frequent and many rare, flushed now and then, with titles, summaries, removed,
// replaced and renamed documents, and a shrink in every third index.
void MakeIndex(const std::string& path, int documents, unsigned seed);

// Goes on with the index at `path`, which MakeIndex() has made: adds the documents after number
// `documents` up to `more`, and changes some.
void ChangeIndex(const std::string& path, int documents, int more, unsigned seed);

// What of a good file lies where.
enum class Place { kHeader, kDirectory, kBucket, kData, kFree };

// One record of a good file, and where its parts are.
struct Record {
  std::string key;
  std::string value;
  std::size_t element = 0;  // where its element begins
  std::size_t data = 0;     // where its key begins
};

struct FileMap {
  std::vector<Record> records;
  std::vector<Place> places;  // of every byte
};

// Returns the place in memory of what is at `at` in a file that has been read whole.
inline std::size_t InMemory(std::uint64_t at) { return static_cast<std::size_t>(at); }

// Reads the good file `bytes`.
FileMap MapOf(const std::string& bytes);

// What a salvage of the file at `path` finds.
kestan_tests::Records Salvaged(const std::string& path);

}  // namespace kestan_maintenance

#endif  // KESTAN_TESTS_MAINTENANCE_INDEX_FILES_H_
