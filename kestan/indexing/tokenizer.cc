// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/indexing/tokenizer.h>

#include <kestan/storage/hash.h>
#include <kestan/storage/memory/memory.h>
#include <kestan/text/fold.h>
#include <kestan/text/white_space.h>

namespace kestan {
namespace {

constexpr std::size_t kFirstTable = 512;

}  // namespace

// The words by their hashes, and where they occur.
class Tokenizer::Table {
 public:
  explicit Table(std::string_view text) : text_(text), folded_(Folded(text)), table_(kFirstTable) {
    Split();
    SortPositions();
  }

  const Vector<Word>& words() const { return words_; }
  std::size_t CountWords() const { return count_; }

 private:
  struct Occurrence {
    std::uint32_t word;  // its index
    Position position;
  };

  void Split();
  void Record(std::string_view word);
  std::uint32_t IndexOf(std::string_view word);
  void GrowTable();
  void SortPositions();

  const Hasher hasher_;
  const String text_;
  String folded_;  // the same bytes, folded, at the same places
  std::size_t count_ = 0;
  Position next_position_ = 1;
  Vector<Word> words_;
  Vector<std::uint32_t> table_;  // by hash: the index of a word plus 1, or 0
  Vector<Occurrence> occurrences_;
  Vector<Position> positions_;
};

void Tokenizer::Table::Split() {
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
    ++count_;
    if (++next_position_ == 0) next_position_ = 1;  // 0 means that a position is not known
  }
}

void Tokenizer::Table::Record(std::string_view word) {
  const std::uint32_t index = IndexOf(word);
  ++words_[index].positions.count;
  occurrences_.push_back({index, next_position_});
}

// Finds or adds a word.
std::uint32_t Tokenizer::Table::IndexOf(std::string_view word) {
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

void Tokenizer::Table::GrowTable() {
  table_.assign(table_.size() * 4, 0);
  const std::size_t mask = table_.size() - 1;
  for (std::uint32_t i = 0; i < words_.size(); ++i) {
    std::size_t place = words_[i].hash & mask;
    while (table_[place] != 0) place = (place + 1) & mask;
    table_[place] = i + 1;
  }
}

// Gathers the positions of each word from the occurrences, which stand in text order.
void Tokenizer::Table::SortPositions() {
  positions_.resize(occurrences_.size());
  Vector<Position*> ends(words_.size());
  Position* next = positions_.data();
  for (std::size_t i = 0; i < words_.size(); ++i) {
    words_[i].positions.first = ends[i] = next;
    next += words_[i].positions.count;
  }
  for (const Occurrence& occurrence : occurrences_) *ends[occurrence.word]++ = occurrence.position;
}

Tokenizer::Tokenizer(std::string_view text) : table_(New<Table>(text)) {}

Tokenizer::~Tokenizer() = default;

Tokenizer::Words Tokenizer::words() const {
  return {table_->words().data(), table_->words().size()};
}

std::size_t Tokenizer::CountWords() const { return table_->CountWords(); }

}  // namespace kestan
