#include "cli/sync/indexed_file.h"

#include <sys/stat.h>

#include <charconv>
#include <cstdio>

#include "cli/console/output.h"

namespace kestan_cli {
namespace {

// Takes `mark` and the number behind it from the beginning of `*text`.
template <typename Number>
bool TakeNumber(std::string_view mark, std::string_view* text, Number* number) {
  if (text->substr(0, mark.size()) != mark) return false;
  const char* const start = text->data() + mark.size();
  const auto [end, error] = std::from_chars(start, text->data() + text->size(), *number);
  if (error != std::errc()) return false;
  text->remove_prefix(static_cast<std::size_t>(end - text->data()));
  return true;
}

bool IsVersion(const struct stat& file, const FileVersion& version) {
  return S_ISREG(file.st_mode) && static_cast<std::uint64_t>(file.st_size) == version.bytes &&
         file.st_mtim.tv_sec == version.seconds && file.st_mtim.tv_nsec == version.nanoseconds;
}

}  // namespace

std::optional<FileVersion> ParseVersion(std::string_view user_record) {
  FileVersion version;
  const bool is_version = TakeNumber("size=", &user_record, &version.bytes) &&
                          TakeNumber(" mtime=", &user_record, &version.seconds) &&
                          TakeNumber(".", &user_record, &version.nanoseconds);
  const bool ends = user_record.empty() || user_record[0] == ' ' || user_record[0] == '\n';
  if (!is_version || !ends) return std::nullopt;
  return version;
}

std::optional<std::string> ReadIfUnchanged(const std::string& path, const FileVersion& indexed) {
  struct stat status {};
  // Looked at before it is opened: a pipe would wait for a writer.
  if (stat(path.c_str(), &status) != 0 || !IsVersion(status, indexed)) return std::nullopt;
  const OpenFile file(std::fopen(path.c_str(), "rb"));
  if (file == nullptr) return std::nullopt;
  std::string text(kMaxSnippetSource, '\0');
  text.resize(std::fread(text.data(), 1, text.size(), file.get()));
  if (std::ferror(file.get()) != 0) return std::nullopt;
  return text;
}

}  // namespace kestan_cli
