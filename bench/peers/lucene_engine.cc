// SPDX-License-Identifier: GPL-3.0-or-later
// Lucene++ with positions; the name of a document is a field of its own. The first query of a
// process reads the names it lists from the stored fields, later ones from Lucene's cache of that
// field.
#include <LuceneHeaders.h>
#include <SerialMergeScheduler.h>
#include <SpanNearQuery.h>
#include <SpanTermQuery.h>
// The others need what LuceneHeaders.h declares.
#include <FieldCache.h>
#include <MMapDirectory.h>

#include <memory>
#include <string>
#include <utility>

#include "bench/peers/engine.h"

namespace kestan_bench {
namespace {

using Lucene::newLucene;

constexpr double kBufferMebibytes = 256;
const Lucene::String kName = L"name";
const Lucene::String kBody = L"body";

// A folder whose files are written but not synced: a commit need not outlive the machine.
class UnsyncedDirectory : public Lucene::MMapDirectory {
 public:
  explicit UnsyncedDirectory(const Lucene::String& path) : MMapDirectory(path) {}
  void sync(const Lucene::String& /*name*/) override {}
};

class WordAnalyzer : public Lucene::Analyzer {
 public:
  Lucene::TokenStreamPtr tokenStream(const Lucene::String& /*field*/,
                                     const Lucene::ReaderPtr& reader) override {
    return newLucene<Lucene::LowerCaseFilter>(newLucene<Lucene::WhitespaceTokenizer>(reader));
  }
};

// Finds the name of a document by its number.
class Names {
 public:
  explicit Names(Lucene::IndexReaderPtr reader) : reader_(std::move(reader)) {}

  void UseCache() {
    if (!cached_) cached_ = Lucene::FieldCache::DEFAULT()->getStrings(reader_, kName);
  }

  std::string NameOf(int document) {
    if (cached_) return Lucene::StringUtils::toUTF8(cached_[document]);
    return Lucene::StringUtils::toUTF8(reader_->document(document)->get(kName));
  }

 private:
  Lucene::IndexReaderPtr reader_;
  Lucene::Collection<Lucene::String> cached_;
};

class AllMatches : public Lucene::Collector {
 public:
  AllMatches(Names* names, Listing* listing) : names_(*names), listing_(*listing) {}

  void setScorer(const Lucene::ScorerPtr& scorer) override { scorer_ = scorer; }
  void setNextReader(const Lucene::IndexReaderPtr& /*reader*/, int32_t first) override {
    first_ = first;
  }
  bool acceptsDocsOutOfOrder() override { return true; }

  void collect(int32_t document) override {
    listing_.Add(names_.NameOf(first_ + document), scorer_->score());
  }

 private:
  Names& names_;
  Listing& listing_;
  Lucene::ScorerPtr scorer_;
  int32_t first_ = 0;
};

Lucene::TermPtr BodyTerm(const std::string& word) {
  return newLucene<Lucene::Term>(kBody, Lucene::StringUtils::toUnicode(word));
}

Lucene::QueryPtr NearQuery(const Query& query) {
  auto words = Lucene::Collection<Lucene::SpanQueryPtr>::newInstance();
  words.add(newLucene<Lucene::SpanTermQuery>(BodyTerm(query.first)));
  words.add(newLucene<Lucene::SpanTermQuery>(BodyTerm(query.second)));
  return newLucene<Lucene::SpanNearQuery>(words, NearDistance(query.kind) - 1, false);
}

Lucene::QueryPtr ToLucene(const Query& query) {
  const auto first = newLucene<Lucene::TermQuery>(BodyTerm(query.first));
  if (query.kind == QueryKind::kWord) return first;
  if (NearDistance(query.kind) > 0) return NearQuery(query);
  const auto second = newLucene<Lucene::TermQuery>(BodyTerm(query.second));
  const auto both = newLucene<Lucene::BooleanQuery>();
  using Lucene::BooleanClause;
  both->add(first, query.kind == QueryKind::kOr ? BooleanClause::SHOULD : BooleanClause::MUST);
  if (query.kind == QueryKind::kAnd) both->add(second, BooleanClause::MUST);
  if (query.kind == QueryKind::kOr) both->add(second, BooleanClause::SHOULD);
  if (query.kind == QueryKind::kAndNot) both->add(second, BooleanClause::MUST_NOT);
  return both;
}

class LuceneEngine : public Engine {
 public:
  void Open(const std::string& folder, OpenMode mode) override {
    const auto directory =
        newLucene<UnsyncedDirectory>(Lucene::StringUtils::toUnicode(folder + "/lucene"));
    if (mode == OpenMode::kRead) {
      reader_ = Lucene::IndexReader::open(directory, true);
      searcher_ = newLucene<Lucene::IndexSearcher>(reader_);
      names_ = std::make_unique<Names>(reader_);
    } else {
      OpenWriter(directory, mode != OpenMode::kUpdate);
    }
  }

  void Add(const std::string& name, const std::string& text) override {
    name_->setValue(Lucene::StringUtils::toUnicode(name));
    body_->setValue(Lucene::StringUtils::toUnicode(text));
    writer_->addDocument(document_);
  }

  void Commit() override { writer_->commit(); }
  void Optimise() override { writer_->optimize(); }

  void RunQuery(const Query& query, Listing* listing) override {
    if (ran_query_) names_->UseCache();
    ran_query_ = true;
    searcher_->search(ToLucene(query), newLucene<AllMatches>(names_.get(), listing));
  }

  void Close() override {
    if (writer_) writer_->close();
    if (reader_) reader_->close();
    writer_.reset();
    reader_.reset();
  }

  std::string Version() const override { return "Lucene++ " PEER_VERSION; }

 private:
  void OpenWriter(const Lucene::DirectoryPtr& directory, bool create) {
    using Lucene::Field;
    writer_ = newLucene<Lucene::IndexWriter>(directory, newLucene<WordAnalyzer>(), create,
                                             Lucene::IndexWriter::MaxFieldLengthUNLIMITED);
    writer_->setRAMBufferSizeMB(kBufferMebibytes);
    writer_->setUseCompoundFile(false);
    writer_->setMergeScheduler(newLucene<Lucene::SerialMergeScheduler>());
    document_ = newLucene<Lucene::Document>();
    name_ = newLucene<Field>(kName, L"", Field::STORE_YES, Field::INDEX_NOT_ANALYZED_NO_NORMS);
    body_ = newLucene<Field>(kBody, L"", Field::STORE_NO, Field::INDEX_ANALYZED);
    document_->add(name_);
    document_->add(body_);
  }

  Lucene::IndexWriterPtr writer_;
  Lucene::DocumentPtr document_;
  Lucene::FieldPtr name_;
  Lucene::FieldPtr body_;
  Lucene::IndexReaderPtr reader_;
  Lucene::IndexSearcherPtr searcher_;
  std::unique_ptr<Names> names_;
  bool ran_query_ = false;
};

}  // namespace

std::unique_ptr<Engine> MakeEngine() { return std::make_unique<LuceneEngine>(); }

}  // namespace kestan_bench
