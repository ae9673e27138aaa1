// The file behind a document, and whether it is still what was indexed.
#ifndef KESTAN_CLI_SYNC_INDEXED_FILE_H_
#define KESTAN_CLI_SYNC_INDEXED_FILE_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kestan_cli {

// How much of a file is read for a snippet.
constexpr std::size_t kMaxSnippetSource = std::size_t{1} << 18;

// What tells one version of a file from another.
struct FileVersion {
  std::uint64_t bytes = 0;
  std::int64_t seconds = 0;  // since 1970, when it was last changed
  std::int64_t nanoseconds = 0;
};

// Reads a document's user record: a line "size=BYTES mtime=SECONDS.NANOSECONDS", behind which other
// words may follow.
//   Returns  nothing if it does not begin so.
std::optional<FileVersion> ParseVersion(std::string_view user_record);

// Returns the first kMaxSnippetSource bytes of the file at `path`; nothing if there is no regular
// file that can be read, or it is not of the version `indexed`.
std::optional<std::string> ReadIfUnchanged(const std::string& path, const FileVersion& indexed);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_SYNC_INDEXED_FILE_H_
