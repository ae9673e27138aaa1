#include "search/index/alike_files.h"

#include <array>
#include <cstdint>
#include <unordered_map>

#include "search/files/output_file.h"

namespace kestan::search {
namespace {

using NameOf = std::string (*)(const SegmentInfo& info);

// A kind of files that each segment has one of.
struct Kind {
  FileSummary SegmentInfo::*summary;
  NameOf name;
  std::uint64_t most_bytes;  // that a file may have to be compared
};

// Large index files and term dictionaries of one size are rare. Document tables of many documents
// without texts, whose names are all as long, are not, and an index has to be opened at once.
constexpr std::uint64_t kAny = UINT64_MAX;
constexpr std::uint64_t kMostTableBytes = std::uint64_t{1} << 20;

constexpr std::array<Kind, 3> kKinds = {{{&SegmentInfo::segment, SegmentFile, kAny},
                                         {&SegmentInfo::terms, TermsFile, kAny},
                                         {&SegmentInfo::table, TableFile, kMostTableBytes}}};

}  // namespace

Status CheckAlikeFiles(const std::string& folder, const Manifest& manifest,
                       const std::function<bool(const SegmentInfo& info)>& is_known) {
  if (manifest.segments.size() < 2) return {};
  for (const Kind& kind : kKinds) {
    std::unordered_map<std::uint64_t, std::size_t> counts;  // of files, by size
    for (const SegmentInfo& info : manifest.segments) ++counts[(info.*kind.summary).bytes];
    if (counts.size() == manifest.segments.size()) continue;
    for (const SegmentInfo& info : manifest.segments) {
      const FileSummary& expected = info.*kind.summary;
      const bool is_too_large = expected.bytes > kind.most_bytes;
      if (counts[expected.bytes] == 1 || is_too_large || is_known(info)) continue;
      const std::string path = folder + "/" + kind.name(info);
      const Result<FileSummary> found = SummaryOf(path);
      if (!found.ok()) return found.status();
      if (!(*found == expected)) {
        return {StatusCode::kDamaged, "its bytes have changed since it was written", path};
      }
    }
  }
  return {};
}

}  // namespace kestan::search
