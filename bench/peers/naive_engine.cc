// SPDX-License-Identifier: GPL-3.0-or-later
// Not an engine: the plain reading of every document for every query, which says what the answers
// are. Its index is a copy of the documents.
#include <algorithm>
#include <cctype>
#include <cstdint>
#include <fstream>
#include <sstream>
#include <string>
#include <unordered_map>
#include <vector>

#include "bench/peers/corpus.h"
#include "bench/peers/engine.h"

namespace kestan_bench {
namespace {

constexpr std::uint32_t kNoWord = 0xffffffff;

struct Document {
  std::string name;
  std::vector<std::uint32_t> words;
};

class NaiveEngine : public Engine {
 public:
  void Open(const std::string& folder, OpenMode mode) override {
    path_ = folder + "/documents";
    if (mode == OpenMode::kRead) {
      ReadDocuments();
    } else if (mode != OpenMode::kUpdate) {
      out_.open(path_, std::ios::binary);
    }
  }

  void Add(const std::string& name, const std::string& text) override {
    out_ << name << ' ' << text.size() << '\n' << text << '\n';
  }

  void Commit() override {
    if (!out_.flush()) Fail(path_, "cannot be written");
  }

  void Optimise() override {}

  void RunQuery(const Query& query, Listing* listing) override {
    const std::uint32_t first = NumberOf(query.first);
    const std::uint32_t second = NumberOf(query.second);
    for (const Document& document : documents_) {
      if (Matches(document.words, query.kind, first, second)) listing->Add(document.name, 1);
    }
  }

  void Close() override { out_.close(); }
  std::string Version() const override { return "naive"; }

 private:
  void ReadDocuments() {
    CorpusReader reader(path_);
    std::string name;
    std::string text;
    while (reader.Next(&name, &text)) {
      for (char& byte : text) byte = static_cast<char>(std::tolower(byte));
      documents_.push_back({name, {}});
      std::istringstream words(text);
      for (std::string word; words >> word;) {
        const auto next = static_cast<std::uint32_t>(numbers_.size());
        documents_.back().words.push_back(numbers_.emplace(word, next).first->second);
      }
    }
  }

  std::uint32_t NumberOf(const std::string& word) const {
    const auto found = numbers_.find(word);
    return found == numbers_.end() ? kNoWord : found->second;
  }

  static bool Matches(const std::vector<std::uint32_t>& words, QueryKind kind, std::uint32_t first,
                      std::uint32_t second) {
    const auto holds = [&words](std::uint32_t word) {
      return std::find(words.begin(), words.end(), word) != words.end();
    };
    switch (kind) {
      case QueryKind::kWord:
        return holds(first);
      case QueryKind::kAnd:
        return holds(first) && holds(second);
      case QueryKind::kOr:
        return holds(first) || holds(second);
      case QueryKind::kAndNot:
        return holds(first) && !holds(second);
      default:
        return AreNear(words, first, second, NearDistance(kind));
    }
  }

  static bool AreNear(const std::vector<std::uint32_t>& words, std::uint32_t first,
                      std::uint32_t second, int distance) {
    const int size = static_cast<int>(words.size());
    for (int place = 0; place < size; ++place) {
      if (words[static_cast<std::size_t>(place)] != first) continue;
      const int end = std::min(size - 1, place + distance);
      for (int other = std::max(0, place - distance); other <= end; ++other) {
        if (other != place && words[static_cast<std::size_t>(other)] == second) return true;
      }
    }
    return false;
  }

  std::string path_;
  std::ofstream out_;
  std::vector<Document> documents_;
  std::unordered_map<std::string, std::uint32_t> numbers_;
};

}  // namespace

std::unique_ptr<Engine> MakeEngine() { return std::make_unique<NaiveEngine>(); }

}  // namespace kestan_bench
