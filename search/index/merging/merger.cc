// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/index/merging/merger.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>
#include <utility>

#include "search/index/merging/kept_postings.h"
#include "search/segment/segment_writer.h"

namespace kestan::search {
namespace {

using SegmentPointer = std::shared_ptr<const Segment>;

// One of the segments, on its way through its terms.
struct Source {
  explicit Source(SegmentPointer source_segment)
      : segment(std::move(source_segment)),
        cursor(segment->terms()),
        new_codes(segment->size() + 1) {}

  std::string_view term() const { return cursor.entry().term; }
  bool HasPositions() const { return segment->with_positions(); }

  SegmentPointer segment;
  TermDictionary::Cursor cursor;
  std::vector<Code> new_codes;  // by code; 0: the document was removed
};

class Merger {
 public:
  Merger(const std::vector<SegmentPointer>& segments, std::string folder,
         const std::function<bool(std::uint64_t bytes)>& advance, WordPositions positions)
      : folder_(std::move(folder)), advance_(advance), positions_(positions) {
    for (const SegmentPointer& segment : segments) {
      sources_.push_back(std::make_unique<Source>(segment));
    }
  }

  // Which of the segments could not be read, if that was the error.
  std::optional<std::size_t> unreadable() const { return unreadable_; }

  Result<SegmentInfo> Merge(std::uint64_t number) {
    std::size_t terms = 0;
    for (std::size_t i = 0; i < sources_.size(); ++i) {
      const auto& source = sources_[i];
      // Changed bytes would get a checksum that is right: they are found before that.
      Status status = OfSource(i, source->segment->Verify());
      if (!status.ok()) return status;
      documents_ += source->segment->living_documents();
      terms += static_cast<std::size_t>(source->segment->terms().size());
    }
    if (documents_ == 0) return SegmentInfo{};
    if (documents_ > kMaxCode) {
      return Status(StatusCode::kInvalidArgument, "too many documents for one segment", folder_);
    }
    with_positions_ = positions_ == WordPositions::kKept && sources_.front()->HasPositions();
    Status status = writer_.Create(folder_, number, with_positions_,
                                   static_cast<std::size_t>(documents_), terms);
    if (status.ok()) status = AddDocuments();
    if (status.ok()) status = AddTerms();
    if (!status.ok()) return status;
    return writer_.Finish(Syncing::kLater);
  }

 private:
  // Notes whether reading this source was an error.
  Status OfSource(std::size_t index, Status status) {
    if (!status.ok()) unreadable_ = index;
    return status;
  }

  static constexpr std::uint64_t kStepBytes = 1 << 20;  // between two reports of progress

  Status AddDocuments() {
    Code last = 0;
    for (std::size_t i = 0; i < sources_.size(); ++i) {
      Status status = OfSource(i, AddDocumentsOf(sources_[i].get(), &last));
      if (!status.ok()) return status;
    }
    return {};
  }

  Status AddDocumentsOf(Source* source, Code* last) {
    for (std::size_t i = 1; i <= source->segment->size(); ++i) {
      const auto code = static_cast<Code>(i);
      if (source->segment->IsRemoved(code)) continue;
      Status status = AddDocument(*source->segment, code);
      if (!status.ok()) return status;
      source->new_codes[i] = ++*last;
    }
    return source->segment->status();
  }

  Status AddDocument(const Segment& segment, Code code) {
    std::array<std::string, kDocumentFields> fields;
    SegmentDocument document;
    for (std::size_t i = 0; i < kDocumentFields; ++i) {
      Result<std::string> field = segment.FieldOf(code, static_cast<DocumentField>(i));
      if (!field.ok()) return field.status();
      fields[i] = std::move(*field);
      document.fields[i] = fields[i];
    }
    document.name = segment.NameOf(code);
    document.words = segment.table().WordsOf(code);
    document.added = segment.AddedOf(code);
    writer_.AddDocument(document);
    return {};
  }

  // The sources that have a term left are a heap: the lowest term is on top; of those that have it,
  // the first segment.
  Status AddTerms() {
    for (std::size_t i = 0; i < sources_.size(); ++i) {
      Status status = OfSource(i, Advance(i));
      if (!status.ok()) return status;
    }
    while (!heap_.empty()) {
      Status status = AddLowestTerm();
      if (!status.ok()) return status;
      if (read_bytes_ >= kStepBytes && !Report()) {
        return {StatusCode::kInterrupted, "merging was interrupted", folder_};
      }
    }
    if (!Report()) return {StatusCode::kInterrupted, "merging was interrupted", folder_};
    return {};
  }

  Status AddLowestTerm() {
    term_ = sources_[heap_.front()]->term();
    record_.clear();
    std::uint32_t documents = 0;
    while (!heap_.empty() && sources_[heap_.front()]->term() == term_) {
      const std::size_t index = PopLowest();
      Status status = AppendPostings(*sources_[index], &documents);
      if (status.ok()) status = Advance(index);
      if (!status.ok()) return OfSource(index, std::move(status));
    }
    if (documents > 0) writer_.AddTerm(term_, documents, record_);
    return {};
  }

  Status AppendPostings(const Source& source, std::uint32_t* documents) {
    const Result<TermPostings> postings = source.segment->PostingsOf(source.cursor.entry());
    if (!postings.ok()) return postings.status();
    const std::string_view record = postings->record.view();
    read_bytes_ += record.size();
    const auto kept =
        source.HasPositions() && !with_positions_
            ? AppendKeptCodes(record, source.new_codes, &record_)
            : AppendKeptPostings(record, source.HasPositions(), source.new_codes, &record_);
    if (kept) {
      *documents += *kept;
      return {};
    }
    return {StatusCode::kDamaged, "a posting record is damaged", source.segment->path()};
  }

  // Puts the source on the heap with its next term, if it has one.
  Status Advance(std::size_t index) {
    Result<bool> has_term = sources_[index]->cursor.Next();
    if (!has_term.ok()) return has_term.status();
    if (*has_term) {
      heap_.push_back(index);
      std::push_heap(heap_.begin(), heap_.end(), Later{sources_});
    }
    return {};
  }

  std::size_t PopLowest() {
    std::pop_heap(heap_.begin(), heap_.end(), Later{sources_});
    const std::size_t index = heap_.back();
    heap_.pop_back();
    return index;
  }

  bool Report() {
    const bool goes_on = !advance_ || advance_(read_bytes_);
    read_bytes_ = 0;
    return goes_on;
  }

  struct Later {
    bool operator()(std::size_t left, std::size_t right) const {
      const int order = sources[left]->term().compare(sources[right]->term());
      return order != 0 ? order > 0 : left > right;
    }

    const std::vector<std::unique_ptr<Source>>& sources;
  };

  const std::string folder_;
  const std::function<bool(std::uint64_t bytes)>& advance_;
  const WordPositions positions_;
  std::vector<std::unique_ptr<Source>> sources_;
  std::vector<std::size_t> heap_;
  std::optional<std::size_t> unreadable_;
  bool with_positions_ = true;  // the new segment
  std::uint64_t documents_ = 0;
  std::uint64_t read_bytes_ = 0;  // since the last report
  std::string term_;
  std::string record_;
  SegmentWriter writer_;
};

}  // namespace

Result<SegmentInfo> MergeSegments(const std::vector<SegmentPointer>& segments,
                                  const std::string& folder, std::uint64_t number,
                                  const std::function<bool(std::uint64_t bytes)>& advance,
                                  std::optional<std::size_t>* unreadable, WordPositions positions) {
  Merger merger(segments, folder, advance, positions);
  Result<SegmentInfo> merged = merger.Merge(number);
  if (unreadable != nullptr) *unreadable = merger.unreadable();
  return merged;
}

}  // namespace kestan::search
