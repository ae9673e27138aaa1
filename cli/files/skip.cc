// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/files/skip.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <utility>

#include "cli/console/message.h"

namespace kestan_cli {
namespace {

struct KindNames {
  const char* key;
  const char* one;
  const char* several;
  const char* remedy;
  bool has_remedy = true;
};

// In the order of SkipKind.
constexpr std::array kNames{
    KindNames{"binary", "binary file", "binary files",
              "pictures, programs and the like hold no text", false},
    KindNames{"link", "link", "links", "not followed; name what they lead to, if it lies elsewhere",
              false},
    KindNames{"special", "special file", "special files", "pipes, sockets and devices", false},
    KindNames{"index", "index", "indexes", "folders of other indexes", false},
    KindNames{"excluded", "excluded", "excluded",
              "--include and --exclude say so; --reset forgets them"},
    KindNames{"ignored", "ignored", "ignored",
              ".gitignore, .ignore or version control says so; --no-ignore takes them"},
    KindNames{"no_converter", "without converter", "without converter",
              "install the programs that read them; --why names them"},
    KindNames{"archive", "archive", "archives", "--archives reads what is in them"},
    KindNames{"unreadable", "unreadable", "unreadable",
              "they may be damaged; compare them with the originals"},
    KindNames{"conversion", "failed conversion", "failed conversions",
              "--why names the programs; --converter sets another"},
    KindNames{"changing", "changed meanwhile", "changed meanwhile", "run the command again"},
    KindNames{"too_large", "too large", "too large", "split them; --why names them"},
    KindNames{"name", "unusable name", "unusable names", "rename them, without line feeds"},
};

const KindNames& NamesOf(SkipKind kind) { return kNames.at(static_cast<std::size_t>(kind)); }

std::string RemedyOf(const Skip& skip) {
  if (!skip.remedy.empty()) return skip.remedy;
  if (skip.kind == SkipKind::kUnreadable && skip.reason == ReasonOf(EACCES)) {
    return "check their permissions";
  }
  return NamesOf(skip.kind).remedy;
}

}  // namespace

bool IsFailure(SkipKind kind) { return kind >= SkipKind::kUnreadable; }

std::string CountedSkips(unsigned long count, SkipKind kind) {
  const KindNames& names = NamesOf(kind);
  return WithCommas(count) + " " + (count == 1 ? names.one : names.several);
}

std::string KeyOf(SkipKind kind) { return NamesOf(kind).key; }

std::map<SkipKind, unsigned long> CountKinds(const std::vector<Skip>& skips) {
  std::map<SkipKind, unsigned long> counts;
  for (const Skip& skip : skips) ++counts[skip.kind];
  return counts;
}

std::vector<SkipReason> ReasonsFor(const std::vector<Skip>& skips) {
  std::map<std::pair<SkipKind, std::string>, unsigned long> counts;
  for (const Skip& skip : skips) ++counts[{skip.kind, RemedyOf(skip)}];
  std::vector<SkipReason> reasons;
  for (const auto& [reason, files] : counts) {
    const auto& [kind, remedy] = reason;
    reasons.push_back({kind, remedy, NamesOf(kind).has_remedy, files});
  }
  std::stable_sort(
      reasons.begin(), reasons.end(),
      [](const SkipReason& left, const SkipReason& right) { return left.files > right.files; });
  return reasons;
}

}  // namespace kestan_cli
