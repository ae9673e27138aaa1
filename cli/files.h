// Finding the text files to index, without touching the index.
#ifndef KESTAN_CLI_FILES_H_
#define KESTAN_CLI_FILES_H_

#include <cstddef>
#include <string>
#include <vector>

namespace kestan_cli {

// The longest text that the engine can clean.
constexpr std::size_t kMaxTextBytes = 0x7fffffff - 1;

struct TextFiles {
  std::vector<std::string> names;  // lexically normal paths, in order of their bytes, each once
  std::size_t binary_files = 0;    // left out: with a NUL byte, or no file at all (a pipe, say)
  std::size_t links = 0;           // left out: symbolic links inside folders
};

// Finds the text files among `paths` and in all folders below them, but not the index at
// `index_path`. A path that is a symbolic link itself is followed. Reads every file to its end, for
// a file that cannot be read must be found out before the index is opened.
//   Throws   CommandError with the name of the first path or file that is missing, unreadable,
//            of more than `max_bytes` bytes, or has a line feed in its name.
TextFiles FindTextFiles(const std::vector<std::string>& paths, const std::string& index_path,
                        std::size_t max_bytes = kMaxTextBytes);

// Reads the file at `path`.
//   Throws   CommandError if it cannot be read.
std::string ReadFile(const std::string& path);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_FILES_H_
