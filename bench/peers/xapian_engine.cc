// SPDX-License-Identifier: GPL-3.0-or-later
// Xapian with positions; the name of a document is its value 0, which is read in order of
// documents.
#include <xapian.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "bench/peers/engine.h"

namespace kestan_bench {
namespace {

constexpr Xapian::valueno kNameSlot = 0;

Xapian::Query ToXapian(const Query& query) {
  const Xapian::Query first(query.first);
  if (query.kind == QueryKind::kWord) return first;
  const Xapian::Query second(query.second);
  if (query.kind == QueryKind::kAnd) return {Xapian::Query::OP_AND, first, second};
  if (query.kind == QueryKind::kOr) return {Xapian::Query::OP_OR, first, second};
  if (query.kind == QueryKind::kAndNot) return {Xapian::Query::OP_AND_NOT, first, second};
  const Xapian::Query words[] = {first, second};
  const auto window = static_cast<Xapian::termcount>(NearDistance(query.kind) + 1);
  return {Xapian::Query::OP_NEAR, words, words + 2, window};
}

class XapianEngine : public Engine {
 public:
  void Open(const std::string& folder, OpenMode mode) override {
    path_ = folder + "/glass";
    if (mode == OpenMode::kRead) {
      reader_ = Xapian::Database(path_);
    } else if (mode != OpenMode::kUpdate) {
      writer_ = Xapian::WritableDatabase(
          path_, Xapian::DB_CREATE | Xapian::DB_BACKEND_GLASS | Xapian::DB_NO_SYNC);
    }
  }

  void Add(const std::string& name, const std::string& text) override {
    Xapian::Document document;
    document.add_value(kNameSlot, name);
    Xapian::termpos position = 0;
    for (std::size_t start = 0; start < text.size();) {
      const std::size_t end = std::min(text.find(' ', start), text.size());
      word_.assign(text, start, end - start);
      for (char& byte : word_) byte = static_cast<char>(std::tolower(byte));
      if (!word_.empty()) document.add_posting(word_, ++position);
      start = end + 1;
    }
    writer_.add_document(document);
  }

  void Commit() override { writer_.commit(); }

  void Optimise() override {
    const std::string compacted = path_ + ".compacted";
    Xapian::Database(path_).compact(compacted, Xapian::DBCOMPACT_NO_RENUMBER);
    std::filesystem::remove_all(path_);
    std::filesystem::rename(compacted, path_);
  }

  void RunQuery(const Query& query, Listing* listing) override {
    Xapian::Enquire enquire(reader_);
    enquire.set_query(ToXapian(query));
    enquire.set_docid_order(Xapian::Enquire::DONT_CARE);
    const Xapian::MSet matches = enquire.get_mset(0, reader_.get_doccount());
    scores_.clear();
    for (auto match = matches.begin(); match != matches.end(); ++match) {
      scores_.emplace_back(*match, match.get_weight());
    }
    std::sort(scores_.begin(), scores_.end());
    auto name = reader_.valuestream_begin(kNameSlot);
    for (const auto& [document, score] : scores_) {
      name.skip_to(document);
      listing->Add(*name, score);
    }
  }

  bool RunBest(const Query& query, std::size_t limit, Listing* listing) override {
    Xapian::Enquire enquire(reader_);
    enquire.set_query(ToXapian(query));
    const auto count = static_cast<Xapian::doccount>(limit);
    const Xapian::MSet matches = enquire.get_mset(0, count);
    for (auto match = matches.begin(); match != matches.end(); ++match) {
      listing->Add(match.get_document().get_value(kNameSlot), match.get_weight());
    }
    return true;
  }

  void Close() override {
    writer_.close();
    reader_.close();
  }

  std::string Version() const override { return std::string("Xapian ") + Xapian::version_string(); }

 private:
  std::string path_;
  std::string word_;
  Xapian::WritableDatabase writer_;
  Xapian::Database reader_;
  std::vector<std::pair<Xapian::docid, double>> scores_;
};

}  // namespace

std::unique_ptr<Engine> MakeEngine() { return std::make_unique<XapianEngine>(); }

}  // namespace kestan_bench
