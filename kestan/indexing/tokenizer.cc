#include <kestan/indexing/tokenizer.h>

#include <kestan/text/fold.h>
#include <kestan/text/white_space.h>

namespace kestan {
namespace {

constexpr std::size_t kFirstTable = 512;

}  // namespace

Tokenizer::Tokenizer(std::string_view text)
    : text_(text), folded_(Folded(text)), table_(kFirstTable) {
  Split();
  SortPositions();
}

void Tokenizer::Split() {
  const char* const begin = text_.data();
  const char* const end = begin + text_.size();
  for (const char* next = begin;;) {
    while (next < end && IsWhiteSpace(*next)) ++next;
    if (next == end) break;
    const char* const start = next;
    unsigned all = kFoldBit;
    while (next < end && !IsWhiteSpace(*next)) all &= static_cast<unsigned char>(*next++);
    const auto length = static_cast<std::size_t>(next - start);
    Record({start, length});
    if (all == 0) Record({folded_.data() + (start - begin), length});
    if (++next_position_ == 0) next_position_ = 1;  // 0 means that a position is not known
  }
}

void Tokenizer::Record(std::string_view word) {
  const std::uint32_t index = IndexOf(word);
  ++words_[index].positions.count;
  occurrences_.push_back({index, next_position_});
}

// Finds or adds a word.
std::uint32_t Tokenizer::IndexOf(std::string_view word) {
  if (words_.size() * 2 >= table_.size()) GrowTable();
  const std::size_t mask = table_.size() - 1;
  const std::uint32_t hash = hasher_(word);
  std::size_t place = hash & mask;
  for (; table_[place] != 0; place = (place + 1) & mask) {
    const Word& known = words_[table_[place] - 1];
    if (known.hash == hash && known.bytes == word) return table_[place] - 1;
  }
  words_.push_back({word, {nullptr, 0}, hash});
  table_[place] = static_cast<std::uint32_t>(words_.size());
  return table_[place] - 1;
}

void Tokenizer::GrowTable() {
  table_.assign(table_.size() * 4, 0);
  const std::size_t mask = table_.size() - 1;
  for (std::uint32_t i = 0; i < words_.size(); ++i) {
    std::size_t place = words_[i].hash & mask;
    while (table_[place] != 0) place = (place + 1) & mask;
    table_[place] = i + 1;
  }
}

// Gathers the positions of each word from the occurrences, which stand in text order.
void Tokenizer::SortPositions() {
  positions_.resize(occurrences_.size());
  Vector<Position*> ends(words_.size());
  Position* next = positions_.data();
  for (std::size_t i = 0; i < words_.size(); ++i) {
    words_[i].positions.first = ends[i] = next;
    next += words_[i].positions.count;
  }
  for (const Occurrence& occurrence : occurrences_) *ends[occurrence.word]++ = occurrence.position;
}

}  // namespace kestan
