// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/files/ignore/ignore_list.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace kestan_cli {

IgnoreList::IgnoreList(std::string_view bytes) {
  constexpr std::string_view kByteOrderMark = "\xef\xbb\xbf";
  if (bytes.substr(0, kByteOrderMark.size()) == kByteOrderMark) {
    bytes.remove_prefix(kByteOrderMark.size());
  }
  for (std::size_t number = 1; !bytes.empty(); ++number) {
    const std::size_t end = std::min(bytes.find('\n'), bytes.size());
    std::string_view line = bytes.substr(0, end);
    if (end < bytes.size() && !line.empty() && line.back() == '\r') line.remove_suffix(1);
    Add(line.substr(0, line.find('\0')), number);
    bytes.remove_prefix(std::min(end + 1, bytes.size()));
  }
}

void IgnoreList::Add(std::string_view line, std::size_t number) {
  std::optional<IgnorePattern> pattern = IgnorePattern::Parse(line);
  if (!pattern.has_value()) return;
  patterns_.push_back({std::move(*pattern), number});
  const IgnorePattern& added = patterns_.back().pattern;
  const std::optional<std::string> literal = added.Literal();
  if (!literal.has_value()) return wild_.push_back(patterns_.size());
  Last& last = (added.is_path() ? paths_ : names_)[*literal];
  (added.is_for_folders_only() ? last.of_folders : last.of_all) = patterns_.size();
}

std::size_t IgnoreList::LastOf(const LastByText& lasts, std::string_view text, bool is_folder) {
  const auto found = lasts.find(text);
  if (found == lasts.end()) return 0;
  const Last& last = found->second;
  return is_folder ? std::max(last.of_all, last.of_folders) : last.of_all;
}

IgnoreList::Match IgnoreList::Find(std::string_view path, bool is_folder) const {
  const std::string_view name = path.substr(path.rfind('/') + 1);
  std::size_t best = std::max(LastOf(names_, name, is_folder), LastOf(paths_, path, is_folder));
  for (auto wild = wild_.rbegin(); wild != wild_.rend() && *wild > best; ++wild) {
    const IgnorePattern& pattern = patterns_[*wild - 1].pattern;
    if (pattern.is_for_folders_only() && !is_folder) continue;
    if (pattern.Matches(path)) best = *wild;
  }
  if (best == 0) return {};
  return {&patterns_[best - 1].pattern, patterns_[best - 1].line};
}

}  // namespace kestan_cli
