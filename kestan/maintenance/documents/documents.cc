#include <kestan/format/document_record.h>
#include <kestan/format/id_list.h>
#include <kestan/format/keys.h>
#include <kestan/format/option_flags.h>
#include <kestan/format/posting.h>
#include <kestan/format/posting_list.h>
#include <kestan/format/units.h>
#include <kestan/maintenance/documents.h>
#include <kestan/storage/memory.h>
#include <kestan/storage/walk/flush_policy.h>
#include <kestan/storage/walk/record_iterator.h>
#include <kestan/text/fold.h>

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

namespace kestan {
namespace {

using WordId = std::uint32_t;  // a word's place among all words in order of their bytes
constexpr WordId kNoWord = std::numeric_limits<WordId>::max();

struct Document {
  Code code;
  std::uint32_t timestamp;
  String name;
};

// ---- What the index holds: its documents and its words ----

// Fetches the value of `key`. One that is not there makes `*value` null.
//   Returns  0, or gdbm's number of a read failure.
int Read(Database& store, std::string_view key, DBDatumPtr* value) {
  const int error = store.Get(value, AsDatum(key));
  return Database::IsReadFailure(error) ? error : 0;
}

bool HasBytes(const DBDatumPtr& value, std::string_view bytes) {
  return value.ptr != nullptr && std::string_view(value.ptr->data, value.ptr->size) == bytes;
}

// Everything that the keys say, which reading the postings takes.
class Contents {
 public:
  //   Returns  0 or gdbm's error number.
  int Gather(Database& store) {
    DBDatumPtr options;
    if (const int error = Read(store, kOptionsKey, &options); error != 0) return error;
    if (options.ptr != nullptr) {
      has_positions_ = KeepsPositions(DecodeOptions(*options.ptr));
    }
    Vector<String> document_keys;
    if (const int error = SortKeys(store, &document_keys); error != 0) return error;
    if (const int error = ReadDocumentRecords(store, document_keys); error != 0) return error;
    DropKeysOfEmptyName();
    FindFoldedWords();
    return 0;
  }

  bool has_positions() const { return has_positions_; }
  const Vector<Document>& documents() const { return documents_; }  // by ascending code
  const Vector<String>& words() const { return words_; }            // in order of their bytes

  // Returns the folded form of `word`, which is recorded wherever `word` is; kNoWord if `word` is
  // its own folded form, or the other has no record.
  WordId FoldedWord(WordId word) const { return folded_words_[word]; }

 private:
  // Two-byte keys are those of words, and of the empty name.
  int SortKeys(Database& store, Vector<String>* document_keys) {
    RecordIterator record(store, WalkOptions::Keys());
    for (; record.Valid(); record.Next()) {
      const std::string_view key = BytesOf(record.key());
      if (IsOfFamily(key, kDocumentFamily)) document_keys->emplace_back(key);
      if (key.size() <= kFamilyBytes || !IsOfKnownFamily(key)) words_.emplace_back(key);
    }
    std::sort(words_.begin(), words_.end());
    words_.erase(std::unique(words_.begin(), words_.end()), words_.end());
    return record.walk_error();
  }

  int ReadDocumentRecords(Database& store, const Vector<String>& keys) {
    PeriodicFlush flush(store);
    for (const String& key : keys) {
      if (const int error = ReadDocumentRecord(store, key); error != 0) return error;
      flush.Note(key.size());
    }
    std::sort(documents_.begin(), documents_.end(),
              [](const Document& left, const Document& right) { return left.code < right.code; });
    return 0;
  }

  // Only what the name record of its code names is a document: a word may have such a key too. So
  // no two documents share a code.
  int ReadDocumentRecord(Database& store, const String& key) {
    DBDatumPtr record;
    if (const int error = Read(store, key, &record); error != 0) return error;
    if (record.ptr == nullptr) return 0;
    const Code code = DocumentCode(*record.ptr);
    const auto name_key = NameKey(code);
    DBDatumPtr name;
    if (const int error = Read(store, {name_key.data(), name_key.size()}, &name); error != 0) {
      return error;
    }
    const std::string_view own_name = std::string_view(key).substr(kDocumentFamily.size());
    if (!HasBytes(name, own_name)) return 0;
    documents_.push_back({code, DocumentTimestamp(*record.ptr), String(own_name)});
    return 0;
  }

  // Where a document has the empty name, "d-" and its like are its records.
  void DropKeysOfEmptyName() {
    const auto is_empty = [](const Document& document) { return document.name.empty(); };
    if (std::none_of(documents_.begin(), documents_.end(), is_empty)) return;
    words_.erase(std::remove_if(words_.begin(), words_.end(), IsOfKnownFamily), words_.end());
  }

  void FindFoldedWords() {
    for (const String& word : words_) {
      folded_words_.push_back(IsFolded(std::string_view(word)) ? kNoWord : Find(Folded(word)));
    }
  }

  WordId Find(const String& word) const {
    const auto found = std::lower_bound(words_.begin(), words_.end(), word);
    const bool is_recorded = found != words_.end() && *found == word;
    return is_recorded ? static_cast<WordId>(found - words_.begin()) : kNoWord;
  }

  bool has_positions_ = true;
  Vector<Document> documents_;
  Vector<String> words_;
  Vector<WordId> folded_words_;  // by word
};

// ---- From postings to the places of words ----

// Where a word stands. As one number, so that sorting by document, position and word is fast.
using Place = std::uint64_t;

constexpr Place MakePlace(Code code, Position position, WordId word) {
  return Place{code} << 48 | Place{position} << 32 | word;
}
Code CodeOf(Place place) { return static_cast<Code>(place >> 48); }
Position PositionOf(Place place) { return static_cast<Position>(place >> 32); }
WordId WordOf(Place place) { return static_cast<WordId>(place); }

// Calls `visit(posting)` for each posting of the record, in no particular order, except those that
// a later one replaces: where no shrink purges the record, a posting may be that of an earlier
// document, and the last one of a code counts.
template <typename Visit>
void ForEachPostingOf(std::string_view word, const DBDatum& record, bool has_positions,
                      Visit visit) {
  PostingReader reader(record, has_positions);
  Posting posting{};
  if (!IsNeverPurged(word)) {
    while (reader.Next(&posting)) visit(posting);
    return;
  }
  Vector<Posting> postings;
  while (reader.Next(&posting)) postings.push_back(posting);
  CodeSet visited;
  for (auto last = postings.rbegin(); last != postings.rend(); ++last) {
    if (!visited[last->code]) visit(*last);
    visited.set(last->code);
  }
}

// Calls `visit(word, record, posting)` for each posting of the index.
//   Returns  0 or gdbm's error number.
template <typename Visit>
int ForEachPosting(Database& store, const Contents& contents, Visit visit) {
  PeriodicFlush flush(store);
  DBDatumPtr record;
  for (WordId word = 0; word < contents.words().size(); ++word) {
    const String& bytes = contents.words()[word];
    if (const int error = Read(store, bytes, &record); error != 0) return error;
    if (record.ptr == nullptr) continue;
    ForEachPostingOf(bytes, *record.ptr, contents.has_positions(),
                     [&](const Posting& posting) { visit(word, *record.ptr, posting); });
    const std::size_t held_bytes = record.ptr->size;
    record.Free();
    flush.Note(held_bytes);
  }
  return 0;
}

using PlaceCounts = Vector<std::size_t>;  // of each code

int CountPlaces(Database& store, const Contents& contents, PlaceCounts* counts) {
  counts->assign(std::size_t{kMaxCode} + 1, 0);
  return ForEachPosting(store, contents, [&](WordId, const DBDatum&, const Posting& posting) {
    (*counts)[posting.code] += contents.has_positions() ? posting.positions : 1;
  });
}

// Finds the `count` places of words in the documents of `codes`, in order.
int FindPlaces(Database& store, const Contents& contents, const CodeSet& codes, std::size_t count,
               Vector<Place>* places) {
  places->clear();
  places->reserve(count);
  const int error = ForEachPosting(
      store, contents, [&](WordId word, const DBDatum& record, const Posting& posting) {
        if (!codes[posting.code]) return;
        if (!contents.has_positions()) places->push_back(MakePlace(posting.code, 0, word));
        const std::size_t end = posting.first_unit + posting.units;
        for (std::size_t unit = end - posting.positions; unit < end; ++unit) {
          places->push_back(MakePlace(posting.code, UnitAt(record, unit), word));
        }
      });
  std::sort(places->begin(), places->end());
  return error;
}

// ---- From places to the words of one document ----

// Puts the words of one document together.
class WordOrder {
 public:
  explicit WordOrder(const Contents& contents) : contents_(contents) {}

  // Takes the places of one document, in order.
  const Vector<PlacedWord>& Restore(const Place* begin, const Place* end) {
    words_.clear();
    while (begin != end) {
      const Position position = PositionOf(*begin);
      const Place* const next =
          std::find_if(begin, end, [=](Place place) { return PositionOf(place) != position; });
      CountWords(begin, next);
      DropFoldedForms();
      for (const Counted& each : here_) {
        words_.insert(words_.end(), each.count, {contents_.words()[each.word], position});
      }
      begin = next;
    }
    return words_;
  }

 private:
  struct Counted {
    WordId word;
    std::size_t count;
  };

  void CountWords(const Place* begin, const Place* end) {
    here_.clear();
    for (const Place* place = begin; place != end; ++place) {
      const WordId word = WordOf(*place);
      if (here_.empty() || here_.back().word != word) here_.push_back({word, 0});
      ++here_.back().count;
    }
  }

  // A word with capitals accounts for one occurrence of its folded form, recorded with it. What is
  // left of the folded form stood in the text itself, in another round of the positions.
  void DropFoldedForms() {
    for (const Counted& each : here_) {
      const WordId folded = contents_.FoldedWord(each.word);
      if (folded == kNoWord) continue;
      const auto found =
          std::lower_bound(here_.begin(), here_.end(), folded,
                           [](const Counted& left, WordId right) { return left.word < right; });
      if (found == here_.end() || found->word != folded) continue;
      found->count -= std::min(found->count, each.count);
    }
  }

  const Contents& contents_;
  Vector<Counted> here_;  // the words at one position, in order
  Vector<PlacedWord> words_;
};

// ---- Handing documents out ----

class DocumentGiver {
 public:
  DocumentGiver(Database& store, const Contents& contents, const TakeDocument& take)
      : store_(store), contents_(contents), take_(take), order_(contents), flush_(store) {}

  // Gives all documents, as many at once as have no more than `most` places, or else one.
  int Give(const PlaceCounts& counts, std::size_t most) {
    const Document* const end = contents_.documents().data() + contents_.documents().size();
    for (const Document* first = contents_.documents().data(); first != end;) {
      std::size_t places = counts[first->code];
      const Document* next = first + 1;
      while (next != end && places + counts[next->code] <= most) places += counts[next++->code];
      if (const int error = GiveBatch(first, next, places); error != 0) return error;
      first = next;
    }
    return 0;
  }

 private:
  int GiveBatch(const Document* first, const Document* end, std::size_t places) {
    codes_.reset();
    for (const Document* document = first; document != end; ++document) codes_.set(document->code);
    const int error = FindPlaces(store_, contents_, codes_, places, &places_);
    if (error != 0) return error;
    for (const Document* document = first; document != end; ++document) {
      if (const int failure = GiveOne(*document); failure != 0) return failure;
    }
    return 0;
  }

  int GiveOne(const Document& document) {
    const auto begin = std::lower_bound(places_.begin(), places_.end(), Place{document.code} << 48);
    const auto end = std::find_if(begin, places_.end(),
                                  [&](Place place) { return CodeOf(place) != document.code; });
    const Place* const places = places_.data() + (begin - places_.begin());
    const Vector<PlacedWord>& words = order_.Restore(places, places + (end - begin));
    StoredDocument given;
    given.name = document.name;
    given.code = document.code;
    given.timestamp = document.timestamp;
    given.words = words.data();
    given.word_count = words.size();
    given.has_positions = contents_.has_positions();
    return GiveWithSideRecords(&given);
  }

  int GiveWithSideRecords(StoredDocument* given) {
    const std::array families{std::pair{kTitleFamily, &given->title},
                              std::pair{kSummaryFamily, &given->summary},
                              std::pair{kUserFamily, &given->user}};
    std::array<DBDatumPtr, families.size()> records;
    std::size_t bytes = 0;
    for (std::size_t i = 0; i < families.size(); ++i) {
      const auto& [family, text] = families[i];
      if (const int error = Read(store_, ItemKey(family, given->name), &records[i]); error != 0) {
        return error;
      }
      const DBDatum* const record = records[i].ptr;
      if (record == nullptr) continue;
      *text = std::string_view(record->data, record->size);
      bytes += record->size;
    }
    take_(*given);
    records = {};
    flush_.Note(bytes);
    return 0;
  }

  Database& store_;
  const Contents& contents_;
  const TakeDocument& take_;
  WordOrder order_;
  PeriodicFlush flush_;
  CodeSet codes_;  // of the documents that are given now
  Vector<Place> places_;
};

}  // namespace

int ReadDocuments(Database& store, const TakeDocument& take, std::size_t places_at_once) {
  if (store.Flush() == -1) return -1;
  Contents contents;
  if (const int error = contents.Gather(store); error != 0) return error;
  PlaceCounts counts;
  if (const int error = CountPlaces(store, contents, &counts); error != 0) return error;
  return DocumentGiver(store, contents, take).Give(counts, places_at_once);
}

}  // namespace kestan
