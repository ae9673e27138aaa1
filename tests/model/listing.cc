// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>

#include "tests/model/model.h"
#include "tests/model/units.h"

namespace kestan_model {
namespace {

constexpr std::uint32_t kFirstSize = 4096;

// Cuts `number` to a whole number and keeps its low 32 bits; what fits no 64 bits leaves none.
std::uint32_t WholePart(double number) {
  const double limit = 9223372036854775808.0;
  if (!(number >= -limit && number < limit)) return 0;
  return static_cast<std::uint32_t>(static_cast<std::uint64_t>(static_cast<std::int64_t>(number)));
}

bool IsShare(double number) { return number >= 0 && number < 1; }

}  // namespace

Lines::Lines(Process& process) : process_(process) {
  process.buffer_size = std::max(process.buffer_size, kFirstSize);
}

void Lines::Add(const std::string& line, std::size_t room) {
  const auto left =
      static_cast<std::int64_t>(process_.buffer_size) - static_cast<std::int64_t>(text_.size());
  if (left < static_cast<std::int64_t>(room)) process_.buffer_size *= 2;
  text_ += line + "\n";
}

std::vector<unsigned> Model::DeletedCodes() {
  const Value deleted = store_.Get("g-deleted");
  return deleted == nullptr ? std::vector<unsigned>() : UnitsOf(deleted->bytes);
}

Text Model::QueryResults(int id) {
  if (Find(id) == nullptr) return ConstantEmpty();
  ResultSet live = *Find(id);
  for (const unsigned code : DeletedCodes()) live.erase(code);
  Lines lines(process_);
  std::uint32_t best = 0;
  for (const auto& [code, hit] : live) best = std::max(best, hit.score);
  const std::uint32_t factor = best == 0 ? 65536 : 6553600 / best;
  for (const auto& [code, hit] : live) {
    const Value name = store_.Get("c-" + BytesOf(code, 2));
    if (name == nullptr) continue;
    const std::uint32_t percent = (factor * hit.score + 32768) / 65536;
    lines.Add(std::to_string(percent) + " " + name->bytes, name->bytes.size() + 20);
  }
  return lines.Finish();
}

Text Model::CommonWords(double low, double high) {
  Value counter = store_.Get("g-code");
  if (counter == nullptr) return ConstantEmpty();
  const auto documents = static_cast<std::uint32_t>(NumberAt(counter->bytes, 0, 2) -
                                                    UnitsOf(avail_codes_->bytes).size());
  counter = nullptr;  // nobody holds it during the walk
  std::uint32_t upper = documents;
  if (high >= 0) upper = WholePart(IsShare(high) ? documents * high + 0.5 : high + 0.001);
  const std::uint32_t lower = WholePart(IsShare(low) ? documents * low + 0.5 : low + 0.001);
  return WordsBetween(lower, upper);
}

Text Model::WordsBetween(std::uint32_t lower, std::uint32_t upper) {
  Lines lines(process_);
  WalkAndFlush(101, 101, [&](const std::string& key, const Value& value) {
    if (IsSystemKey(key)) return;
    const std::size_t count = PostingsOf(value->bytes, PositionsKept()).size();
    if (lower <= count && count <= upper) lines.Add(key, key.size() + 2);
  });
  return lines.Finish();
}

Text Model::ListDocuments() {
  if (store_.Get("g-code") == nullptr) return ConstantEmpty();
  Lines lines(process_);
  WalkAndFlush(101, 101, [&](const std::string& key, const Value&) {
    if (key.substr(0, 2) == "d-") lines.Add(key.substr(2), key.size());
  });
  return lines.Finish();
}

}  // namespace kestan_model
