// Lucene++ with positions and the name as a stored field.
#include <LuceneHeaders.h>
#include <lucene++/FieldCache.h>
#include <lucene++/LowerCaseFilter.h>
#include <lucene++/MMapDirectory.h>
#include <lucene++/SerialMergeScheduler.h>
#include <lucene++/WhitespaceTokenizer.h>

#include <memory>
#include <string>

#include "bench/peers/engine.h"

namespace kestan_bench {
namespace {

using Lucene::newLucene;

constexpr double kBufferMebibytes = 256;

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

class AllMatches : public Lucene::Collector {
 public:
  AllMatches(Lucene::IndexReaderPtr reader, Lucene::Collection<Lucene::String> names,
             Listing* listing)
      : reader_(std::move(reader)), names_(std::move(names)), listing_(listing) {}

  void setScorer(const Lucene::ScorerPtr& scorer) override { scorer_ = scorer; }
  void setNextReader(const Lucene::IndexReaderPtr& /*reader*/, int32_t first) override {
    first_ = first;
  }
  bool acceptsDocsOutOfOrder() override { return true; }

  void collect(int32_t document) override {
    listing_->Add(Lucene::StringUtils::toUTF8(names_[first_ + document]), scorer_->score());
  }

 private:
  Lucene::IndexReaderPtr reader_;
  Lucene::Collection<Lucene::String> names_;
  Listing* listing_;
  Lucene::ScorerPtr scorer_;
  int32_t first_ = 0;
};

}  // namespace
}  // namespace kestan_bench
