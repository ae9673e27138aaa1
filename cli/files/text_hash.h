// Hashing of texts for the tables of the standard library.
#ifndef KESTAN_CLI_FILES_TEXT_HASH_H_
#define KESTAN_CLI_FILES_TEXT_HASH_H_

#include <cstddef>
#include <string_view>

namespace kestan_cli {

// A hash with a secret of the process. The standard one has none, so that whoever chooses the names
// of files or the words of texts could make all of them share one place.
struct TextHash {
  std::size_t operator()(std::string_view text) const;
};

}  // namespace kestan_cli

#endif  // KESTAN_CLI_FILES_TEXT_HASH_H_
