// Hashes texts for the tables of the standard library.
#ifndef KESTAN_CLI_EXPORT_TEXT_HASH_H_
#define KESTAN_CLI_EXPORT_TEXT_HASH_H_

#include <cstddef>
#include <string_view>

namespace kestan_cli {

// A hash with a secret of the process. The standard hash has none: whoever chooses the names of
// files or the words of texts could put all of them into one bucket.
struct TextHash {
  std::size_t operator()(std::string_view text) const;
};

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXPORT_TEXT_HASH_H_
