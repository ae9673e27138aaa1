// SPDX-License-Identifier: GPL-3.0-or-later
// What every engine of the comparison does, so that one driver can time them all.
#ifndef KESTAN_BENCH_PEERS_ENGINE_H_
#define KESTAN_BENCH_PEERS_ENGINE_H_

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kestan_bench {

enum class QueryKind { kWord, kAnd, kNear1, kNear10, kOr, kAndNot };

// A question in lower-case words: `first`, or `first` KIND `second`. NEAR/k is at most k words
// apart, in either order.
struct Query {
  QueryKind kind;
  std::string first;
  std::string second;
};

// The distance of a NEAR query in words; 0 for the other kinds.
constexpr int NearDistance(QueryKind kind) {
  if (kind == QueryKind::kNear1) return 1;
  return kind == QueryKind::kNear10 ? 10 : 0;
}

// Receives the matching documents of a query. While time is taken it only looks at them; otherwise
// it keeps their names, to be compared with those of the other engines.
class Listing {
 public:
  explicit Listing(bool keeps_names) : keeps_names_(keeps_names) {}

  // Takes one document, in any order of documents. Copies the name if it keeps it.
  void Add(std::string_view name, double score) {
    checksum_ += name.size() + (score > 0 ? 1 : 0);
    if (keeps_names_) names_.emplace_back(name);
  }

  // Takes all documents as lines "SCORE NAME". Walks over the text once.
  void AddLines(const char* lines) {
    checksum_ += std::strlen(lines);
    while (keeps_names_ && *lines != '\0') {
      const char* name = std::strchr(lines, ' ') + 1;
      const char* end = std::strchr(name, '\n');
      names_.emplace_back(name, static_cast<std::size_t>(end - name));
      lines = end + 1;
    }
  }

  const std::vector<std::string>& names() const { return names_; }
  std::uint64_t checksum() const { return checksum_; }

 private:
  const bool keeps_names_;
  std::vector<std::string> names_;
  std::uint64_t checksum_ = 0;
};

// What a host does for an engine that does not clean raw text itself. Works in place.
void CleanText(std::string* text);

enum class OpenMode {
  kCreateAtOnce,   // a new index, to be committed once
  kCreateInSteps,  // a new index, to be committed again and again
  kUpdate,         // an index that is there, for Optimise()
  kRead,           // an index that is there, for queries
};

// One search engine over one index in a folder. Ends the process with a message on any failure.
class Engine {
 public:
  virtual ~Engine() = default;

  // Opens the index in `folder`, which exists and is empty for a new one.
  virtual void Open(const std::string& folder, OpenMode mode) = 0;

  // Reduces raw text to words of letters with apostrophes inside them, which white space separates.
  virtual void Clean(std::string* text) { CleanText(text); }

  // Indexes a document. Borrows both; `text` is words of letters and apostrophes in any case, which
  // white space separates.
  virtual void Add(const std::string& name, const std::string& text) = 0;

  // Makes what was added outlive the process.
  virtual void Commit() = 0;

  // Does once what the engine offers to make a finished index smaller or faster.
  virtual void Optimise() = 0;

  // Lists all documents that match, each with its name and score, in any order.
  virtual void RunQuery(const Query& query, Listing* listing) = 0;

  // Lists the `limit` best documents that match, the best first.
  //   Returns  false if the engine is not compared in this.
  virtual bool RunBest(const Query& /*query*/, std::size_t /*limit*/, Listing* /*listing*/) {
    return false;
  }

  virtual void Close() = 0;

  // Returns the engine's name and version.
  virtual std::string Version() const = 0;

  // Returns the sum of the sizes of the keys and values in the open index; 0 if it has none.
  virtual std::uint64_t PayloadBytes() { return 0; }
};

// Each driver program links one engine, which this makes.
std::unique_ptr<Engine> MakeEngine();

// Ends the process with "WHO: WHAT" on the standard error stream.
[[noreturn]] void Fail(const std::string& who, const std::string& what);

}  // namespace kestan_bench

#endif  // KESTAN_BENCH_PEERS_ENGINE_H_
