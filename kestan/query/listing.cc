// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/query/listing.h>

#include <kestan/format/id_list.h>
#include <kestan/format/keys.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>

namespace kestan {
namespace {

constexpr std::uint32_t kScale = 65536;
constexpr std::size_t kRoomBesideName = 20;  // for the percentage, the blank and the line feed

// A removed document must not set the scale for the others.
std::uint32_t BestScore(const ResultSet& set, const CodeSet& removed) {
  std::uint32_t best = 0;
  for (const auto& document : set.documents()) {
    if (!removed[document.code]) best = std::max<std::uint32_t>(best, document.score);
  }
  return best;
}

// Appends a number and a blank.
void AppendPercent(std::uint32_t percent, ScratchText* lines) {
  std::array<char, 10> digits;
  const char* const end = std::to_chars(digits.begin(), digits.end(), percent).ptr;
  lines->Append({digits.data(), static_cast<std::size_t>(end - digits.data())});
  lines->Append(" ");
}

}  // namespace

char* ListMatches(Database& store, const ResultSet& set, NameTable* names, ScratchBuffer* text) {
  DBDatumPtr record = Fetch(store, kDeletedKey);
  CodeSet removed;
  if (record.ptr != nullptr) CollectCodes(*record.ptr, &removed);

  const std::uint32_t best = BestScore(set, removed);
  const std::uint32_t factor = best != 0 ? 100 * kScale / best : kScale;
  ScratchText lines(text);
  names->Refresh(store);
  for (const auto& document : set.documents()) {
    if (removed[document.code]) continue;
    const std::string_view name = names->Find(store, document.code, &record);
    if (name.data() == nullptr) continue;
    lines.MakeRoom(name.size() + kRoomBesideName);
    AppendPercent((factor * document.score + kScale / 2) / kScale, &lines);
    lines.Append(name);
    lines.Append("\n");
  }
  return lines.Finish();
}

}  // namespace kestan
