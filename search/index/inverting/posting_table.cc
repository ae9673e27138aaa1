// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/index/inverting/posting_table.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <new>

namespace kestan::search {
namespace {

constexpr std::size_t kFirstSlots = 1 << 12;
constexpr std::size_t kGroupWords = 64;

// Asks the processor for memory that is read soon. A term, its slot and the end of its record lie
// anywhere: without this, each waits for the one before it.
void Prefetch(const void* memory) { __builtin_prefetch(memory); }

// The first bytes of a term as a number that orders terms as their bytes do.
std::uint64_t PrefixOf(std::string_view term) {
  std::uint64_t prefix = 0;
  for (std::size_t i = 0; i < sizeof prefix; ++i) {
    prefix = prefix << 8 | (i < term.size() ? static_cast<unsigned char>(term[i]) : 0U);
  }
  return prefix;
}

char* PutUnit(std::uint16_t unit, char* bytes) {
  bytes[0] = static_cast<char>(unit & 0xff);
  bytes[1] = static_cast<char>(unit >> 8);
  return bytes + sizeof unit;
}

char* PutPositions(const Positions& positions, std::size_t count, char* bytes) {
  bytes = PutUnit(static_cast<std::uint16_t>(count), bytes);
  for (std::size_t i = 0; i < count; ++i) bytes = PutUnit(positions.first[i], bytes);
  return bytes;
}

// Returns how large the next chunk of a record of `bytes` bytes is. Long records leave little room
// unused.
std::size_t NextChunk(std::size_t bytes) {
  constexpr std::size_t kLeast = 16;
  constexpr std::size_t kShortRecord = 256;
  constexpr std::size_t kMost = Arena::kBlockBytes / 8;
  const std::size_t chunk =
      bytes < kShortRecord ? bytes / 2 : std::max(bytes / 8, kShortRecord / 2);
  return std::clamp(chunk, kLeast, kMost);
}

}  // namespace

// The bytes of the word follow it.
struct PostingTable::Term {
  std::uint32_t word_bytes;
  std::uint32_t documents;
  std::uint32_t record_bytes;
  Arena::Address first_chunk;
  Arena::Address last_chunk;
  std::uint32_t used;      // bytes of the last chunk
  std::uint32_t capacity;  // of the last chunk
};

// The bytes of the record follow it.
struct PostingTable::Chunk {
  Arena::Address next;
  std::uint32_t used;  // of a chunk that is not the last one
};

PostingTable::PostingTable(bool with_positions)
    : with_positions_(with_positions), slots_(kFirstSlots) {}

PostingTable::Term* PostingTable::At(TermAddress address) const {
  return std::launder(reinterpret_cast<Term*>(arena_.At(address)));
}

void PostingTable::Add(Code code, const Tokenizer& words) {
  const Tokenizer::Word* next = words.words().begin();
  std::size_t left = words.words().size();
  while (left > 0) {
    const std::size_t count = std::min(left, kGroupWords);
    GrowFor(terms_ + count);
    AddGroup(code, next, count);
    next += count;
    left -= count;
  }
}

// Goes over the words three times: each time the memory that the next time reads is on its way.
void PostingTable::AddGroup(Code code, const Tokenizer::Word* words, std::size_t count) {
  const std::size_t mask = slots_.size() - 1;
  for (std::size_t i = 0; i < count; ++i) Prefetch(&slots_[words[i].hash & mask]);
  for (std::size_t i = 0; i < count; ++i) {
    const Slot& slot = slots_[words[i].hash & mask];
    if (slot.term != 0 && slot.hash == words[i].hash) Prefetch(At(slot.term));
  }
  std::array<TermAddress, kGroupWords> terms;
  for (std::size_t i = 0; i < count; ++i) {
    terms[i] = FindOrAdd(words[i]);
    const Term& term = *At(terms[i]);
    if (term.last_chunk != 0) Prefetch(arena_.At(term.last_chunk) + sizeof(Chunk) + term.used);
  }
  for (std::size_t i = 0; i < count; ++i) AppendPosting(code, words[i].positions, At(terms[i]));
}

PostingTable::TermAddress PostingTable::FindOrAdd(const Tokenizer::Word& word) {
  const std::size_t mask = slots_.size() - 1;
  std::size_t place = word.hash & mask;
  for (; slots_[place].term != 0; place = (place + 1) & mask) {
    const Slot& slot = slots_[place];
    if (slot.hash == word.hash && TermAt(slot.term) == word.bytes) return slot.term;
  }
  slots_[place] = {word.hash, NewTerm(word.bytes)};
  ++terms_;
  return slots_[place].term;
}

PostingTable::TermAddress PostingTable::NewTerm(std::string_view word) {
  const TermAddress address = arena_.Allocate(sizeof(Term) + word.size());
  Term* const term = new (arena_.At(address)) Term{};
  term->word_bytes = static_cast<std::uint32_t>(word.size());
  std::memcpy(arena_.At(address) + sizeof(Term), word.data(), word.size());
  return address;
}

// Makes room for so many terms.
void PostingTable::GrowFor(std::size_t terms) {
  std::size_t size = slots_.size();
  while (terms > size / 8 * 5) size *= 2;
  if (size == slots_.size()) return;
  std::vector<Slot> slots(size);
  for (const Slot& slot : slots_) {
    if (slot.term == 0) continue;
    std::size_t place = slot.hash & (size - 1);
    while (slots[place].term != 0) place = (place + 1) & (size - 1);
    slots[place] = slot;
  }
  slots_ = std::move(slots);
}

void PostingTable::AppendPosting(Code code, const Positions& positions, Term* term) {
  const std::size_t count = std::min<std::size_t>(positions.count, kMaxPosition);
  const std::size_t size =
      with_positions_ ? sizeof code + sizeof(Position) * (1 + count) : sizeof code;
  const bool is_first = term->documents++ == 0;
  if (is_first) AddChunk(size, term);
  const bool fits = size <= term->capacity - term->used;
  if (!fits && posting_.size() < size) posting_.resize(size);
  char* const bytes =
      fits ? arena_.At(term->last_chunk) + sizeof(Chunk) + term->used : posting_.data();
  char* const next = PutUnit(code, bytes);
  if (with_positions_) PutPositions(positions, count, next);
  if (!fits) return Append(bytes, size, term);
  term->used += static_cast<std::uint32_t>(size);
  term->record_bytes += static_cast<std::uint32_t>(size);
}

void PostingTable::Append(const char* bytes, std::size_t size, Term* term) {
  while (size > 0) {
    if (term->used == term->capacity) AddChunk(NextChunk(term->record_bytes), term);
    const std::size_t count = std::min<std::size_t>(size, term->capacity - term->used);
    std::memcpy(arena_.At(term->last_chunk) + sizeof(Chunk) + term->used, bytes, count);
    term->used += static_cast<std::uint32_t>(count);
    term->record_bytes += static_cast<std::uint32_t>(count);
    bytes += count;
    size -= count;
  }
}

void PostingTable::AddChunk(std::size_t bytes, Term* term) {
  bytes = (std::min(bytes, Arena::kBlockBytes / 2) + Arena::kUnitBytes - 1) / Arena::kUnitBytes *
          Arena::kUnitBytes;
  const Arena::Address address = arena_.Allocate(sizeof(Chunk) + bytes);
  new (arena_.At(address)) Chunk{};
  if (term->last_chunk == 0) {
    term->first_chunk = address;
  } else {
    new (arena_.At(term->last_chunk)) Chunk{address, term->used};
  }
  term->last_chunk = address;
  term->used = 0;
  term->capacity = static_cast<std::uint32_t>(bytes);
}

std::size_t PostingTable::memory() const {
  return arena_.memory() + slots_.capacity() * sizeof(Slot) + posting_.capacity();
}

std::vector<PostingTable::TermAddress> PostingTable::SortedTerms() const {
  struct Key {
    std::uint64_t prefix;
    TermAddress term;
  };
  std::vector<Key> keys;
  keys.reserve(terms_);
  for (const Slot& slot : slots_) {
    if (slot.term != 0) keys.push_back({PrefixOf(TermAt(slot.term)), slot.term});
  }
  std::sort(keys.begin(), keys.end(), [this](const Key& left, const Key& right) {
    if (left.prefix != right.prefix) return left.prefix < right.prefix;
    return TermAt(left.term) < TermAt(right.term);
  });
  std::vector<TermAddress> terms;
  terms.reserve(keys.size());
  for (const Key& key : keys) terms.push_back(key.term);
  return terms;
}

std::string_view PostingTable::TermAt(TermAddress address) const {
  return {arena_.At(address) + sizeof(Term), At(address)->word_bytes};
}

std::uint32_t PostingTable::DocumentsOf(TermAddress address) const {
  return At(address)->documents;
}

void PostingTable::CopyRecord(TermAddress address, std::string* record) const {
  const Term& term = *At(address);
  record->clear();
  record->reserve(term.record_bytes);
  for (Arena::Address next = term.first_chunk; next != 0;) {
    const char* const bytes = arena_.At(next);
    const Chunk chunk = *std::launder(reinterpret_cast<const Chunk*>(bytes));
    record->append(bytes + sizeof(Chunk), chunk.next != 0 ? chunk.used : term.used);
    next = chunk.next;
  }
}

}  // namespace kestan::search
