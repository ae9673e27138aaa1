// SPDX-License-Identifier: GPL-3.0-or-later
// Runs a target on files instead of a fuzzer's inventions: replay_TARGET FILE-OR-FOLDER...
// So the seeds, and every input that was a finding once, are tests of every build.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "tests/support/counted.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

namespace fs = std::filesystem;

std::vector<fs::path> FilesIn(const fs::path& place) {
  if (!fs::is_directory(place)) return {place};
  std::vector<fs::path> files;
  for (const auto& entry : fs::directory_iterator(place)) files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  return files;
}

// In memory of just that size, so that the address sanitizer sees each byte read beyond it.
bool Replay(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  if (!stream) return false;
  const std::string bytes{std::istreambuf_iterator<char>(stream), {}};
  std::printf("%s\n", file.filename().c_str());
  std::fflush(stdout);  // so that a crash below has its input's name in front of it
  char* const copy = kestan_tests::MallocCopy(bytes);
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(copy), bytes.size());
  std::free(copy);
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  std::size_t replayed = 0;
  for (int i = 1; i < argc; ++i) {
    for (const fs::path& file : FilesIn(argv[i])) {
      if (!Replay(file)) {
        std::fprintf(stderr, "cannot read %s\n", file.c_str());
        return 1;
      }
      ++replayed;
    }
  }
  std::printf("replayed %zu files\n", replayed);
  return replayed != 0 ? 0 : 1;
}
