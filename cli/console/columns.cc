// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/console/columns.h"

#include <sys/ioctl.h>
#include <clocale>
#include <cwchar>

#include <algorithm>
#include <vector>

#include "cli/console/control_characters.h"

namespace kestan_cli {
namespace {

constexpr std::size_t kUsualColumns = 80;
constexpr std::string_view kLeftOut = "...";
constexpr char32_t kJoiner = 0x200d;
constexpr char32_t kEmojiSelector = 0xfe0f;  // asks for a picture, which is wide

// While it exists, the C library knows the width of every character. In the locale of the user it
// may know ASCII alone.
class UnicodeLocale {
 public:
  UnicodeLocale() : before_(IsThere() ? uselocale(Unicode()) : locale_t{}) {}
  ~UnicodeLocale() {
    if (IsThere()) uselocale(before_);
  }
  UnicodeLocale(const UnicodeLocale&) = delete;
  UnicodeLocale& operator=(const UnicodeLocale&) = delete;

  static bool IsThere() { return Unicode() != locale_t{}; }

 private:
  static locale_t Unicode() {
    static const locale_t kUnicode = newlocale(LC_CTYPE_MASK, "C.UTF-8", locale_t{});
    return kUnicode;
  }

  const locale_t before_;
};

// What is not known is wide, so that no line gets too long.
std::size_t WidthOf(char32_t code) {
  if (code < 0x80) return 1;
  const int width = UnicodeLocale::IsThere() ? wcwidth(static_cast<wchar_t>(code)) : -1;
  return width < 0 ? 2 : static_cast<std::size_t>(width);
}

std::vector<Cluster> ClustersOf(std::string_view text) {
  std::vector<Cluster> clusters;
  while (!text.empty()) {
    clusters.push_back(FirstCluster(text));
    text.remove_prefix(clusters.back().bytes);
  }
  return clusters;
}

// Returns how many bytes of the clusters from `cluster` on fit into `columns`.
template <typename Iterator>
std::size_t FittingBytes(Iterator cluster, Iterator end, std::size_t columns) {
  std::size_t bytes = 0;
  for (; cluster != end && cluster->columns <= columns; ++cluster) {
    columns -= cluster->columns;
    bytes += cluster->bytes;
  }
  return bytes;
}

}  // namespace

std::size_t ColumnsOfTerminal(int descriptor) {
  struct winsize size {};
  if (ioctl(descriptor, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return kUsualColumns;
  return size.ws_col;
}

Cluster FirstCluster(std::string_view text) {
  const UnicodeLocale locale;
  Character next = FirstCharacter(text);
  Cluster cluster{next.bytes, WidthOf(next.code)};
  while (cluster.bytes < text.size()) {
    const bool is_joined = next.code == kJoiner;
    next = FirstCharacter(text.substr(cluster.bytes));
    const std::size_t width = WidthOf(next.code);
    if (width > 0 && !is_joined) break;
    cluster.bytes += next.bytes;
    cluster.columns += width;
    if (next.code == kEmojiSelector) cluster.columns = std::max<std::size_t>(cluster.columns, 2);
  }
  return cluster;
}

std::size_t ColumnsOf(std::string_view text) {
  std::size_t columns = 0;
  for (const Cluster& cluster : ClustersOf(text)) columns += cluster.columns;
  return columns;
}

std::string FittedStart(std::string_view text, std::size_t columns) {
  if (ColumnsOf(text) <= columns) return std::string(text);
  const std::vector<Cluster> clusters = ClustersOf(text);
  const std::string_view end = kLeftOut.substr(0, columns);
  const std::size_t bytes = FittingBytes(clusters.begin(), clusters.end(), columns - end.size());
  return std::string(text.substr(0, bytes)).append(end);
}

std::string FittedEnd(std::string_view text, std::size_t columns) {
  if (ColumnsOf(text) <= columns) return std::string(text);
  const std::vector<Cluster> clusters = ClustersOf(text);
  const std::string_view start = kLeftOut.substr(0, columns);
  const std::size_t bytes =
      FittingBytes(clusters.rbegin(), clusters.rend(), columns - start.size());
  return std::string(start).append(text.substr(text.size() - bytes));
}

std::string Wrapped(std::string_view text, std::size_t columns, std::size_t indent) {
  std::string wrapped;
  std::size_t used = 0;  // columns of the last line
  std::string blanks;    // before the next word
  while (!text.empty()) {
    const std::size_t gap = std::min(text.find_first_not_of(' '), text.size());
    blanks.assign(gap, ' ');
    text.remove_prefix(gap);
    const std::string_view word = text.substr(0, text.find(' '));
    text.remove_prefix(word.size());
    if (word.empty()) break;  // blanks at the end
    const std::size_t width = ColumnsOf(word);
    if (!wrapped.empty() && used + gap + width > columns) {
      wrapped += "\n";
      blanks.assign(indent, ' ');
      used = 0;
    }
    wrapped.append(blanks).append(word);
    used += blanks.size() + width;
  }
  return wrapped;
}

}  // namespace kestan_cli
