#include "cli/files/skip.h"

#include <array>
#include <cstddef>

namespace kestan_cli {
namespace {

struct KindNames {
  const char* key;
  const char* one;
  const char* several;
};

// In the order of SkipKind.
constexpr std::array kNames{
    KindNames{"binary", "binary file", "binary files"},
    KindNames{"link", "link", "links"},
    KindNames{"special", "special file", "special files"},
    KindNames{"index", "index", "indexes"},
    KindNames{"excluded", "excluded", "excluded"},
    KindNames{"ignored", "ignored", "ignored"},
    KindNames{"no_converter", "without converter", "without converter"},
    KindNames{"unreadable", "unreadable", "unreadable"},
    KindNames{"conversion", "failed conversion", "failed conversions"},
    KindNames{"changing", "changed meanwhile", "changed meanwhile"},
    KindNames{"too_large", "too large", "too large"},
    KindNames{"name", "unusable name", "unusable names"},
};

const KindNames& NamesOf(SkipKind kind) { return kNames.at(static_cast<std::size_t>(kind)); }

}  // namespace

bool IsFailure(SkipKind kind) { return kind >= SkipKind::kUnreadable; }

std::string CountedSkips(unsigned long count, SkipKind kind) {
  const KindNames& names = NamesOf(kind);
  return std::to_string(count) + " " + (count == 1 ? names.one : names.several);
}

std::string KeyOf(SkipKind kind) { return NamesOf(kind).key; }

std::map<SkipKind, unsigned long> CountKinds(const std::vector<Skip>& skips) {
  std::map<SkipKind, unsigned long> counts;
  for (const Skip& skip : skips) ++counts[skip.kind];
  return counts;
}

}  // namespace kestan_cli
