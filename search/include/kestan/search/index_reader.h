// SPDX-License-Identifier: GPL-3.0-or-later
// Searching indexes: kestan::search::IndexReader.
//
// Words of an index come in UTF-8: terms, suggestions, notes, explanations, words of documents.
#ifndef KESTAN_SEARCH_INDEX_READER_H_
#define KESTAN_SEARCH_INDEX_READER_H_

#include <kestan/search/document_cursor.h>
#include <kestan/search/explanation.h>
#include <kestan/search/export.h>
#include <kestan/search/filtered_document.h>
#include <kestan/search/fragment.h>
#include <kestan/search/index_writer.h>
#include <kestan/search/search_query.h>
#include <kestan/search/status.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kestan::search {

// What words side by side in a query mean. With kBest and kAny a word outside quotes stands for its
// other forms too, in the language of the index, and stop words among them count only where there
// are no others. With kBest, words that stand in more than half of the documents of an
// index of 100 or more are not required either where there are others, but count for the score.
// Notes name both.
enum class WordsMean {
  // All of them; where no document has all, any of them, and a note says so. A question in plain
  // words is answered by the documents that have all of them first and after those by the ones that
  // have some; a note says how many have all. A question has no operators and at least four
  // different words that are required, and also some that are not, or a question mark at its end,
  // or eight required words.
  kBest,
  kAll,  // each as it is written
  kAny,
};

// The defaults of k1, b and the bonus lie where the answers to the questions of two test
// collections, of short and of long questions, hardly change with them: k1 from 1.8 to 2.2, b from
// 0.7 to 0.75, the bonus for nearness from 0.25 to 0.5, that for the beginning from 0.5 to 1.
// docs/quality.md has the figures. A bonus counts where positions are kept, and in queries of
// several words; with kBest, that for the beginning in others too.
struct SearchOptions {
  std::size_t limit = 10;  // how many hits to return; total counts all. 0: every match
  WordsMean words = WordsMean::kBest;
  double k1 = 2.0;               // BM25: how slowly further occurrences of a word count less
  double b = 0.75;               // BM25: how much the length of a document counts
  double proximity_bonus = 0.4;  // how much words of the query that stand near each other count
  double opening_bonus = 0.7;    // how much words count that are among the first 15 of a document
  bool with_titles = true;       // of hits; without them, less is read of each

  // Whether the text of a query must be read as it is written. If not, what makes no sense is left
  // out or taken for a word, and notes say so. If so, it is an error of kInvalidQuery with its
  // column: a parenthesis or a quote without its partner, an operator that lacks an operand, NEAR
  // without a distance from 1 on, an operator of other tools (docs/queries.md names them), a part
  // without letters or digits, a suffix that does not stand right after a word, a word of more than
  // 64 characters, nesting deeper than 200, and a text without words, unless a filter makes that
  // mean all documents. Words that say little are no mistakes.
  bool strict = false;

  // Which documents are to be found; null: all. One for which it returns false is as if it did not
  // match: it is in no answer and counts in no total, and where no document that is wanted has all
  // words, those with some of them answer. Scores are those of a search without it. A blank query
  // matches all documents then, in order of their names. It is called for documents that match and
  // no others, more than once for some, and from several threads at once. What it throws is an
  // error of kSystem.
  DocumentFilter filter{};
};

// One answer. It keeps nothing of the reader.
struct Hit {
  std::string name;
  std::string title;
  double score = 0;       // the higher, the more relevant; to be compared within one search
  int percent = 0;        // of the best hit's score, rounded; at least 1
  std::size_t index = 0;  // which of the opened indexes has it
};

// A match as ForEachMatch() gives it.
struct Match {
  std::string_view name;  // lent until the next one
  double score = 0;       // as in Hit
  std::size_t index = 0;  // as in Hit
};

struct SearchResults {
  std::uint64_t total = 0;               // how many documents match
  std::vector<Hit> hits;                 // the best first; of equal score, in order of their names
  std::vector<std::string> notes;        // how the query was read, and what of it was ignored
  std::vector<std::string> suggestions;  // for words that no document has
  std::vector<std::string> matched_terms;  // words of the index that the query matched; sorted
  int analyzer = 1;  // the version of the Analyzer by which the query was read; 0: ASCII letters
};

struct TermInfo {
  std::string term;
  std::uint64_t documents = 0;  // that hold it
};

// A word where it stands in a document. Lent for the call that gives it.
struct PlacedWord {
  std::string_view word;
  std::uint32_t position = 0;  // from 1, and after 65535 from 1 again; 0 where none is known
};

struct IndexStatistics {
  std::uint64_t documents = 0;          // without removed ones
  std::uint64_t removed_documents = 0;  // whose words still take space
  std::uint64_t words = 0;              // of all documents, each as often as it occurs
  std::uint64_t segments = 0;
  std::uint64_t bytes = 0;  // of all files; MANIFEST has what is not named here
  std::uint64_t segment_bytes = 0;
  std::uint64_t term_dictionary_bytes = 0;
  std::uint64_t document_table_bytes = 0;
  std::uint64_t edit_bytes = 0;
  bool with_positions = true;
};

// A snapshot of one index or of several: no later commit changes it. Any number of threads may use
// one reader at once; Refresh() is for one thread, while no other uses the reader.
//
// A child process that fork() made, while no other thread used the reader, may use its copy of it
// as its parent does: files of an index folder are read without a place in them that both would
// move. Of an index file of class Kestan it can destroy its copy; asked, that returns kForked.
//
// What a function of the host's throws (a filter, a visitor) is an error of kSystem.
class KESTAN_SEARCH_EXPORT IndexReader {
 public:
  // Opens the index folder, or the index file of class Kestan, at each of `paths`.
  //   Returns  kNotFound, kDamaged, kVersion, kSystem.
  static Result<IndexReader> Open(const std::string& path);
  static Result<IndexReader> Open(const std::vector<std::string>& paths);

  IndexReader(IndexReader&& other) noexcept;
  IndexReader& operator=(IndexReader&& other) noexcept;
  ~IndexReader();

  // Takes a new snapshot if there was a commit. Files that did not change stay open.
  //   Returns  whether anything changed. After an error the old snapshot stays.
  Result<bool> Refresh();

  // Finds the documents that match `query`. docs/queries.md describes the language.
  //   Returns  kDamaged where a file contradicts itself: never an answer that may be wrong.
  Result<SearchResults> Search(std::string_view query, const SearchOptions& options = {}) const;

  // Calls `visit` with every document that Search() would list without a limit, in no order of
  // relevance. It sorts and copies nothing, which is several times as fast. `visit` returns whether
  // to go on. `options.limit` counts for nothing.
  //   Returns  as Search() does; what was visited before an error is right.
  Status ForEachMatch(std::string_view query, const SearchOptions& options,
                      const std::function<bool(const Match&)>& visit) const;

  // Returns how many documents match, which takes less time than to rank them.
  Result<std::uint64_t> Count(std::string_view query, const SearchOptions& options = {}) const;

  // Tells how `query` is read, and what each of its parts finds: of the reading whose documents
  // Search() returns, or returns last where documents with some of the words follow those with all.
  // Of a filter there is a part "FILTER" above it, with how many documents pass it.
  //   Returns  kDamaged.
  Result<Explanation> Explain(std::string_view query, const SearchOptions& options = {}) const;

  // The same for a query that was built by calls. It has no text to be misread, so the notes are on
  // words that no document has, words that are cut, and an index without positions.
  //   Returns  what CheckQuery() returns, too.
  Result<SearchResults> Search(const SearchQuery& query, const SearchOptions& options = {}) const;
  Status ForEachMatch(const SearchQuery& query, const SearchOptions& options,
                      const std::function<bool(const Match&)>& visit) const;
  Result<std::uint64_t> Count(const SearchQuery& query, const SearchOptions& options = {}) const;
  Result<Explanation> Explain(const SearchQuery& query, const SearchOptions& options = {}) const;

  // Says whether `query` makes sense in this snapshot.
  //   Returns  kInvalidQuery for a word, a prefix or a phrase without letters or digits; a prefix
  //            that does not end in one; a distance that is none; an operator without operands;
  //            more than 200 operators one within the other, where a chain of one operator counts
  //            as one; more than 1,000,000 parts, each as often as it is there. kOutOfMemory if
  //            there was no memory to build it.
  Status CheckQuery(const SearchQuery& query) const;

  // Returns the terms that begin with `prefix`, in order of their bytes as they are stored (ASCII
  // first), with the number of living documents that hold each; terms without any are left out. At
  // most `limit`; 0: all.
  Result<std::vector<TermInfo>> Terms(std::string_view prefix, std::size_t limit = 0) const;

  // Returns words of the index that may be meant by `word`, which may be misspelled, the likeliest
  // first, with the number of living documents that hold each; none if a document has it in one of
  // its forms. The first three are those that a search for it suggests. At most `limit`; 0: all
  // that come into question. Of several words, the first ten that no document has, one after the
  // other. Takes a look at each word of the index.
  //   Returns  kDamaged.
  Result<std::vector<TermInfo>> Suggest(std::string_view word, std::size_t limit = 0) const;

  // Finds a document by its name. With several indexes, the first that has it answers.
  //   Returns  kNotFound if there is none.
  Result<DocumentInfo> FindDocument(std::string_view name) const;

  // Finds the document of a hit in the index that has it.
  //   Returns  kNotFound if this snapshot has it no longer.
  Result<DocumentInfo> FindDocument(const Hit& hit) const;

  // Returns a cursor before the first living document of this snapshot.
  DocumentCursor Documents() const noexcept;

  // Calls `visit` with each document of Documents(). `visit` returns whether to go on.
  Status ForEachDocument(const std::function<bool(const DocumentInfo&)>& visit) const;

  // The same with the words of each, as they were written, by ascending position and, where several
  // share one, in order of their bytes. A text of more than 65535 words has several at a position.
  // An index without positions has each word once. Takes a while: all postings are read, and as
  // many are held in memory as 128 MB hold, or one segment's words and names, or one document.
  Status ForEachDocumentWithWords(
      const std::function<bool(const DocumentInfo& document, const std::vector<PlacedWord>& words)>&
          visit) const;

  // Cuts the part out of `text`, the text of a hit in UTF-8, that shows best why it matches: about
  // 160 bytes on one line, one blank for each run of white space, "..." where text was left out.
  //   Returns  an empty list if no matched term of `results` occurs in it; kSystem where the text
  //            cannot be analyzed.
  static Result<std::vector<Fragment>> Snippet(const SearchResults& results, std::string_view text);

  // Returns what IndexWriter::SetProperty() has kept in the first index, or what ConvertIndexFile()
  // would make a property of, if that is an index file of class Kestan; "" for nothing. Allocates
  // the copy, which is all that can fail.
  Result<std::string> Property(std::string_view key) const;

  // Cannot fail: all of it was counted when the snapshot was taken.
  IndexStatistics Statistics() const noexcept;

 private:
  class Impl;
  explicit IndexReader(std::unique_ptr<Impl> impl);
  std::unique_ptr<Impl> impl_;
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_INDEX_READER_H_
