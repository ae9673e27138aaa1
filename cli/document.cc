#include "document.h"

#include <kestan/kestan.h>

#include <algorithm>
#include <utility>

namespace kestan_cli {
namespace {

constexpr std::string_view kWhiteSpace = " \t\n\v\f\r";

bool IsWhiteSpace(char byte) { return kWhiteSpace.find(byte) != std::string_view::npos; }

bool ContinuesCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xc0) == 0x80; }

// Returns where to cut `line`, at `max_bytes` or up to three bytes before: a UTF-8 character has
// four at most, and text in another encoding is cut where it comes.
std::size_t CutAt(const std::string& line, std::size_t max_bytes) {
  for (std::size_t at = max_bytes; at + 4 > max_bytes; --at) {
    if (!ContinuesCharacter(line[at])) return at;
    if (at == 0) break;
  }
  return max_bytes;
}

// Parts `text` into its first line that is not blank and all that follows it.
void SplitAtTitle(std::string_view text, std::string_view* title, std::string_view* rest) {
  text.remove_prefix(std::min(text.find_first_not_of(kWhiteSpace), text.size()));
  const std::size_t end = std::min(text.find('\n'), text.size());
  *title = text.substr(0, end);
  *rest = text.substr(end);
}

std::string StripLines(std::string text) {
  const int length = Kestan::StripBadLines(text.data(), static_cast<unsigned>(text.size()));
  text.resize(static_cast<std::size_t>(length));
  return text;
}

}  // namespace

std::string Excerpt(std::string_view text, std::size_t max_bytes) {
  std::string line;
  bool gap = false;
  for (char byte : text) {
    if (IsWhiteSpace(byte)) {
      gap = !line.empty();
      continue;
    }
    if (gap) line += ' ';
    gap = false;
    line += byte;
    if (line.size() > max_bytes + 1) break;
  }
  if (line.size() > max_bytes) line.resize(CutAt(line, max_bytes));
  if (!line.empty() && line.back() == ' ') line.pop_back();
  return line;
}

std::string CleanWords(std::string text) {
  const auto size = static_cast<unsigned>(text.size());
  text += ' ';  // the last blank may land one byte past the text
  int length = Kestan::StripNonWords(text.data(), size);
  const char* const no_stop_words = nullptr;
  length = Kestan::StripWords(text.data(), static_cast<unsigned>(length), "", &no_stop_words);
  text.resize(static_cast<std::size_t>(length));
  return text;
}

Document MakeDocument(std::string text) {
  std::string_view title;
  std::string_view rest;
  SplitAtTitle(text, &title, &rest);
  Document document;
  document.title = Excerpt(title, kMaxTitleBytes);
  document.summary = Excerpt(rest, kMaxSummaryBytes);
  document.words = CleanWords(StripLines(std::move(text)));
  return document;
}

}  // namespace kestan_cli
