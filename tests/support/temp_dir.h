// SPDX-License-Identifier: GPL-3.0-or-later
// A temporary directory that removes itself.
#ifndef KESTAN_TESTS_SUPPORT_TEMP_DIR_H_
#define KESTAN_TESTS_SUPPORT_TEMP_DIR_H_

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

namespace kestan_tests {

// Returns a directory in memory where the system has one, because on a disk every flush waits for
// the disk. Otherwise returns the system's directory for temporary files.
inline std::filesystem::path FastDirectory() {
  const std::filesystem::path memory = "/dev/shm";
  const bool in_memory = access(memory.c_str(), W_OK) == 0;
  return in_memory ? memory : std::filesystem::temp_directory_path();
}

// A new directory below `parent`, removed at the end with all that it holds. Throws if it cannot be
// made.
class TempDir {
 public:
  explicit TempDir(const std::filesystem::path& parent = FastDirectory()) {
    std::string pattern = (parent / "kestan-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) {
      throw std::system_error(errno, std::generic_category(), pattern);
    }
    path_ = pattern;
  }
  ~TempDir() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  // Returns the path of `name` in the directory; the file need not exist.
  std::string operator/(std::string_view name) const { return path_ + "/" + std::string(name); }

 private:
  std::string path_;
};

}  // namespace kestan_tests

#endif  // KESTAN_TESTS_SUPPORT_TEMP_DIR_H_
