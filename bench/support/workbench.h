// What the micro-benchmarks share: a folder that vanishes, and checks that stop a wrong benchmark.
#ifndef KESTAN_BENCH_SUPPORT_WORKBENCH_H_
#define KESTAN_BENCH_SUPPORT_WORKBENCH_H_

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

namespace kestan_bench {

// Ends the process if an answer is not what it must be: a time for a wrong answer means nothing.
inline void Check(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "wrong answer: %s\n", what);
  std::exit(1);
}

// A new folder below the system's folder for temporary files, removed with all that it holds.
class TempDir {
 public:
  TempDir() {
    std::string pattern = (std::filesystem::temp_directory_path() / "kestan-bench-XXXXXX").string();
    Check(mkdtemp(pattern.data()) != nullptr, "a temporary folder");
    path_ = pattern;
  }
  ~TempDir() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  // Returns the path of `name` in the folder; the file need not be there.
  std::string operator/(std::string_view name) const { return path_ + "/" + std::string(name); }

 private:
  std::string path_;
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
