// SPDX-License-Identifier: GPL-3.0-or-later
// Whole files as strings of bytes.
#ifndef KESTAN_TESTS_SUPPORT_FILES_H_
#define KESTAN_TESTS_SUPPORT_FILES_H_

#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace kestan_tests {

// Returns the bytes of the file at `path`. Throws if it cannot be opened.
inline std::string ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error("cannot read " + path);
  return {std::istreambuf_iterator<char>(file), {}};
}

// Makes `bytes` the content of the file at `path`. Throws if it cannot be written.
inline void WriteFile(const std::string& path, const std::string& bytes) {
  std::ofstream file(path, std::ios::binary);
  if (!file.write(bytes.data(), static_cast<std::streamsize>(bytes.size())).flush()) {
    throw std::runtime_error("cannot write " + path);
  }
}

}  // namespace kestan_tests

#endif  // KESTAN_TESTS_SUPPORT_FILES_H_
