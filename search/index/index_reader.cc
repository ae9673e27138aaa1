// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/search/index_reader.h>

#include <algorithm>
#include <exception>
#include <set>
#include <utility>

#include "search/index/caught.h"
#include "search/index/document_words.h"
#include "search/index/documents/document_info.h"
#include "search/index/documents/document_walk.h"
#include "search/index/documents/hits.h"
#include "search/index/manifest/index_language.h"
#include "search/index/missing_words.h"
#include "search/index/opened_index.h"
#include "search/index/question.h"
#include "search/matching/reading.h"
#include "search/matching/vocabulary.h"
#include "search/query/built/lowering.h"
#include "search/ranking/ranked_search.h"
#include "search/segment/snapshot.h"
#include "search/snippet/snippet.h"
#include "search/text/analyzer/word_encoding.h"
#include "search/text/utf8.h"

namespace kestan::search {
namespace {

// Makes exceptions errors, which are about no file of their own.
template <typename Work>
auto Caught(const Work& work) -> decltype(work()) {
  return Caught("", work);
}

}  // namespace

class IndexReader::Impl {
 public:
  using DocumentVisitor = std::function<bool(const DocumentInfo&, const std::vector<PlacedWord>&)>;

  Status Open(const std::vector<std::string>& paths) {
    if (paths.empty()) return {StatusCode::kInvalidArgument, "no index to open"};
    for (const std::string& path : paths) {
      auto opened = OpenIndex(path);
      if (!opened.ok()) return opened.status();
      indexes_.push_back(std::move(*opened));
    }
    snapshot_ = SnapshotOf(indexes_);
    return {};
  }

  Result<bool> Refresh() {
    std::vector<OpenedIndex> indexes;
    bool changed = false;
    for (const OpenedIndex& index : indexes_) {
      auto opened = OpenIndex(index.folder, &index);
      if (!opened.ok()) return opened.status();
      // Another index may have come to be there, and be as many commits old.
      changed = changed || opened->manifest.Encode() != index.manifest.Encode();
      indexes.push_back(std::move(*opened));
    }
    Snapshot snapshot = SnapshotOf(indexes);
    indexes_ = std::move(indexes);
    snapshot_ = std::move(snapshot);
    return changed;
  }

  // `Asked` is std::string_view or SearchQuery, here and below.
  template <typename Asked>
  Result<SearchResults> Search(const Asked& query, const SearchOptions& options) const {
    SearchResults results;
    auto answer = Ask(query, snapshot_, options);
    if (!answer.ok()) return answer.status();
    results.notes = Readable(std::move(answer->notes));
    results.suggestions = Readable(std::move(answer->suggestions));
    results.total = answer->found.total;
    results.matched_terms = Readable(std::move(answer->found.terms));
    std::sort(results.matched_terms.begin(), results.matched_terms.end());
    results.analyzer = is_analyzed() ? 1 : 0;
    const Status status =
        ListHits(answer->found.best, snapshot_, options.with_titles, &results.hits);
    if (!status.ok()) return status;
    return results;
  }

  template <typename Asked>
  Status ForEachMatch(const Asked& query, const SearchOptions& options,
                      const std::function<bool(const Match&)>& visit) const {
    const auto found = AllAnswers(query, snapshot_, options);
    return found.ok() ? VisitMatches(*found, snapshot_, visit) : found.status();
  }

  template <typename Asked>
  Result<Explanation> Explain(const Asked& query, const SearchOptions& options) const {
    auto explanation = ExplainAnswer(query, snapshot_, options);
    if (explanation.ok()) MakeReadable(&*explanation);
    return explanation;
  }

  template <typename Asked>
  Result<std::uint64_t> Count(const Asked& query, const SearchOptions& options) const {
    return CountAnswers(query, snapshot_, options);
  }

  Result<std::vector<TermInfo>> Terms(std::string_view prefix, std::size_t limit) const {
    std::vector<TermInfo> terms;
    Status error;
    const std::string stored = is_analyzed() ? StoredCharacters(prefix) : std::string(prefix);
    const Status status = ForEachTerm(snapshot_, stored, [&](std::string_view term) {
      const auto documents = LivingDocumentsWith(snapshot_, term);
      if (!documents.ok()) {
        error = documents.status();
        return false;
      }
      if (*documents > 0) terms.push_back({Readable(std::string(term)), *documents});
      return limit == 0 || terms.size() < limit;
    });
    if (!status.ok()) return status;
    if (!error.ok()) return error;
    return terms;
  }

  Result<std::vector<TermInfo>> Suggest(std::string_view word, std::size_t limit) const {
    const auto query = Lowered(SearchQuery::Word(word), OperatorOf(WordsMean::kBest), rules());
    if (query.status().code() == StatusCode::kInvalidQuery) return std::vector<TermInfo>();
    if (!query.ok()) return query.status();
    const auto suggested = SuggestedWords(*query, snapshot_, limit);
    if (!suggested.ok()) return suggested.status();
    std::vector<TermInfo> terms;
    for (const FuzzyMatch& match : *suggested)
      terms.push_back({Readable(match.word), match.documents});
    return terms;
  }

  Result<DocumentInfo> FindDocument(std::string_view name) const {
    for (const auto& segment : snapshot_.segments) {
      const auto code = segment->FindDocument(name);
      const Status status = segment->status();  // a name that is not read is not found
      if (!status.ok()) return status;
      if (code) return InfoOf(*segment, *code);
    }
    return Status(StatusCode::kNotFound, "no document of this name");
  }

  Result<DocumentInfo> FindDocument(const Hit& hit) const {
    for (std::size_t i = 0; i < snapshot_.segments.size(); ++i) {
      if (snapshot_.index_of_segment[i] != hit.index) continue;
      const Segment& segment = *snapshot_.segments[i];
      const auto code = segment.FindDocument(hit.name);
      const Status status = segment.status();
      if (!status.ok()) return status;
      if (code) return InfoOf(segment, *code);
    }
    return Status(StatusCode::kNotFound, "no document of this name");
  }

  Status ForEachDocumentWithWords(const DocumentVisitor& visit) const {
    bool goes_on = true;
    for (const auto& segment : snapshot_.segments) {
      Status error;
      Status status =
          ForEachWithWords(*segment, [&](Code code, const std::vector<PlacedWord>& words) {
            const auto info = InfoOf(*segment, code);
            error = info.status();
            goes_on = error.ok() && VisitReadable(*info, words, visit);
            return goes_on;
          });
      if (!error.ok()) return error;
      if (!status.ok() || !goes_on) return status;
    }
    return {};
  }

  Status ForEachDocument(const std::function<bool(const DocumentInfo&)>& visit) const {
    DocumentWalk walk(snapshot_);
    while (true) {
      const auto document = walk.Next();
      if (!document.ok() || *document == nullptr || !visit(**document)) return document.status();
    }
  }

  const Snapshot& snapshot() const { return snapshot_; }

  Result<std::string> Property(std::string_view key) const {
    const OpenedIndex& index = indexes_.front();
    if (!index.identity.empty()) return index.segments.front()->PropertyOf(key);
    const auto found = index.manifest.properties.find(key);
    return found != index.manifest.properties.end() ? found->second : std::string();
  }

  IndexStatistics Statistics() const noexcept {
    IndexStatistics statistics;
    statistics.documents = snapshot_.living_documents();
    statistics.words = snapshot_.living_words();
    statistics.segments = snapshot_.segments.size();
    for (const auto& segment : snapshot_.segments) {
      statistics.removed_documents += segment->size() - segment->living_documents();
    }
    for (const OpenedIndex& index : indexes_) AddSizes(index, &statistics);
    return statistics;
  }

 private:
  TextRules rules() const { return snapshot_.rules; }
  bool is_analyzed() const { return snapshot_.rules == TextRules::kAnalyzer; }

  // What comes out of an index is in UTF-8.
  std::string Readable(std::string text) const {
    return is_analyzed() ? DecodedWords(text) : std::move(text);
  }

  std::vector<std::string> Readable(std::vector<std::string> texts) const {
    for (std::string& text : texts) text = Readable(std::move(text));
    return texts;
  }

  void MakeReadable(Explanation* explanation) const {
    explanation->part = Readable(std::move(explanation->part));
    for (Explanation& part : explanation->parts) MakeReadable(&part);
  }

  bool VisitReadable(const DocumentInfo& info, const std::vector<PlacedWord>& words,
                     const DocumentVisitor& visit) const {
    const auto is_readable = [](const PlacedWord& word) {
      return FindNonAscii(word.word, 0) == word.word.size();
    };
    if (!is_analyzed() || std::all_of(words.begin(), words.end(), is_readable)) {
      return visit(info, words);
    }
    std::vector<std::string> decoded;
    decoded.reserve(words.size());
    std::vector<PlacedWord> placed = words;
    for (PlacedWord& word : placed) word.word = decoded.emplace_back(DecodedWords(word.word));
    return visit(info, placed);
  }

  static void AddSizes(const OpenedIndex& index, IndexStatistics* statistics) {
    if (!index.manifest.with_positions) statistics->with_positions = false;
    statistics->bytes += index.bytes;
    for (const SegmentInfo& info : index.manifest.segments) {
      statistics->segment_bytes += info.segment.bytes;
      statistics->term_dictionary_bytes += info.terms.bytes;
      statistics->document_table_bytes += info.table.bytes;
      statistics->edit_bytes += info.edits.bytes;
    }
  }

  static Snapshot SnapshotOf(const std::vector<OpenedIndex>& indexes) {
    Snapshot snapshot;
    for (std::size_t i = 0; i < indexes.size(); ++i) {
      if (indexes[i].rules == TextRules::kAnalyzer) snapshot.rules = TextRules::kAnalyzer;
      for (const auto& segment : indexes[i].segments) {
        snapshot.segments.push_back(segment);
        snapshot.index_of_segment.push_back(i);
        snapshot.languages.push_back(LanguageOf(indexes[i].manifest));
      }
    }
    return snapshot;
  }

  std::vector<OpenedIndex> indexes_;
  Snapshot snapshot_;
};

IndexReader::IndexReader(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
IndexReader::IndexReader(IndexReader&& other) noexcept = default;
IndexReader& IndexReader::operator=(IndexReader&& other) noexcept = default;
IndexReader::~IndexReader() = default;

Result<IndexReader> IndexReader::Open(const std::string& path) {
  return Caught([&] { return Open(std::vector<std::string>{path}); });
}

Result<IndexReader> IndexReader::Open(const std::vector<std::string>& paths) {
  return Caught([&]() -> Result<IndexReader> {
    auto impl = std::make_unique<Impl>();
    const Status status = impl->Open(paths);
    if (!status.ok()) return status;
    return IndexReader(std::move(impl));
  });
}

Result<bool> IndexReader::Refresh() {
  return Caught([&] { return impl_->Refresh(); });
}

Result<SearchResults> IndexReader::Search(std::string_view query,
                                          const SearchOptions& options) const {
  return Caught([&] { return impl_->Search(query, options); });
}

Status IndexReader::ForEachMatch(std::string_view query, const SearchOptions& options,
                                 const std::function<bool(const Match&)>& visit) const {
  return Caught([&] { return impl_->ForEachMatch(query, options, visit); });
}

Result<std::uint64_t> IndexReader::Count(std::string_view query,
                                         const SearchOptions& options) const {
  return Caught([&] { return impl_->Count(query, options); });
}

Result<SearchResults> IndexReader::Search(const SearchQuery& query,
                                          const SearchOptions& options) const {
  return Caught([&] { return impl_->Search(query, options); });
}

Status IndexReader::ForEachMatch(const SearchQuery& query, const SearchOptions& options,
                                 const std::function<bool(const Match&)>& visit) const {
  return Caught([&] { return impl_->ForEachMatch(query, options, visit); });
}

Result<std::uint64_t> IndexReader::Count(const SearchQuery& query,
                                         const SearchOptions& options) const {
  return Caught([&] { return impl_->Count(query, options); });
}

Result<Explanation> IndexReader::Explain(const SearchQuery& query,
                                         const SearchOptions& options) const {
  return Caught([&] { return impl_->Explain(query, options); });
}

Status IndexReader::CheckQuery(const SearchQuery& query) const {
  return Caught(
      [&] { return Lowered(query, DefaultOperator::kAnd, impl_->snapshot().rules).status(); });
}

Result<std::vector<TermInfo>> IndexReader::Suggest(std::string_view word, std::size_t limit) const {
  return Caught([&] { return impl_->Suggest(word, limit); });
}

DocumentCursor IndexReader::Documents() const noexcept {
  try {
    return DocumentCursor(std::make_unique<DocumentWalk>(impl_->snapshot()));
  } catch (const std::exception&) {
    return DocumentCursor(nullptr);
  }
}

Result<std::vector<TermInfo>> IndexReader::Terms(std::string_view prefix, std::size_t limit) const {
  return Caught([&] { return impl_->Terms(prefix, limit); });
}

Result<DocumentInfo> IndexReader::FindDocument(std::string_view name) const {
  return Caught([&] { return impl_->FindDocument(name); });
}

Result<DocumentInfo> IndexReader::FindDocument(const Hit& hit) const {
  return Caught([&] { return impl_->FindDocument(hit); });
}

Result<Explanation> IndexReader::Explain(std::string_view query,
                                         const SearchOptions& options) const {
  return Caught([&] { return impl_->Explain(query, options); });
}

Status IndexReader::ForEachDocumentWithWords(
    const std::function<bool(const DocumentInfo&, const std::vector<PlacedWord>&)>& visit) const {
  return Caught([&] { return impl_->ForEachDocumentWithWords(visit); });
}

Status IndexReader::ForEachDocument(const std::function<bool(const DocumentInfo&)>& visit) const {
  return Caught([&] { return impl_->ForEachDocument(visit); });
}

Result<std::vector<Fragment>> IndexReader::Snippet(const SearchResults& results,
                                                   std::string_view text) {
  return Caught([&]() -> Result<std::vector<Fragment>> {
    const auto rules = results.analyzer == 0 ? TextRules::kAsciiLetters : TextRules::kAnalyzer;
    std::set<std::string, std::less<>> terms;
    for (const std::string& term : results.matched_terms) {
      terms.insert(results.analyzer == 0 ? term : StoredCharacters(term));
    }
    return MakeSnippet(text, terms, rules);
  });
}

Result<std::string> IndexReader::Property(std::string_view key) const {
  return Caught([&] { return impl_->Property(key); });
}

IndexStatistics IndexReader::Statistics() const noexcept { return impl_->Statistics(); }

}  // namespace kestan::search
