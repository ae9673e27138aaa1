// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/search/index_writer.h>

#include <kestan/search/analyzer.h>

#include <algorithm>
#include <ctime>
#include <exception>
#include <utility>
#include <vector>

#include "search/index/caught.h"
#include "search/index/committed_index.h"
#include "search/index/inverting/document_limits.h"
#include "search/index/inverting/pending_documents.h"
#include "search/index/manifest/analyzer_version.h"
#include "search/index/manifest/index_language.h"
#include "search/index/merging/merge_policy.h"
#include "search/process/owning_process.h"
#include "search/text/utf8.h"

namespace kestan::search {
namespace {

std::uint32_t Now() { return static_cast<std::uint32_t>(std::time(nullptr)); }

Status WasForked() {
  return {StatusCode::kForked,
          "the writer was opened by the process that forked this one; open the index again here"};
}

Status NoSuchDocument(std::string_view name) {
  return {StatusCode::kNotFound, "there is no document " + Quoted(name)};
}

}  // namespace

class IndexWriter::Impl {
 public:
  Impl(std::unique_ptr<CommittedIndex> index, WriterOptions options)
      : options_(std::move(options)),
        index_(std::move(index)),
        properties_(index_->manifest().properties),
        pending_(index_->folder(), index_->manifest().with_positions, options_),
        language_(options_.language) {
    policy_.factor = options_.merge_factor;
    language_.Start(&properties_);
  }

  ~Impl() { RemoveChanges(); }

  // Calls `action`, unless an earlier error stands in the way. An exception is such an error.
  template <typename Action>
  Status Guarded(const Action& action) {
    return Caught([this, &action] { return failed_.ok() ? action() : failed_; });
  }

  // Calls `action`, whatever happened before.
  template <typename Action>
  Status Caught(const Action& action) {
    if (IsInChild()) return kestan::search::Caught("", WasForked);
    try {
      return action();
    } catch (const std::exception& error) {
      failed_ = StatusOfException(error, index_->folder());
    }
    RemoveChanges();
    // There may be no memory for a copy.
    return kestan::search::Caught("", [this] { return failed_; });
  }

  Status Add(Document document) {
    Status status = CheckDocument(document);
    if (status.ok() && !document.text.empty()) status = PrepareForText();
    if (!status.ok()) return status;
    status = RemoveIfThere(document.name);
    if (status.code() == StatusCode::kNotFound) status = {};
    if (status.ok() && pending_.HasManyNames()) status = WritePending();
    if (status.ok() && pending_.empty()) pending_.StartAt(index_->NextSegment());
    if (status.ok() && !index_->segments().HasDocuments()) language_.Add(document);
    if (status.ok()) status = pending_.Add(std::move(document), Now());
    return status.ok() ? status : Fail(status);
  }

  Status Remove(std::string_view name) {
    Status status = RemoveIfThere(name);
    return status.ok() || status.code() == StatusCode::kNotFound ? status : Fail(status);
  }

  Status Rename(std::string_view from, std::string_view to) {
    Status status = CheckName(to);
    if (!status.ok()) return status;
    const bool is_pending = pending_.Has(from);
    const auto place = index_->segments().Find(from);
    if (!place.ok()) return Fail(place.status());
    if (!*place && !is_pending) return NoSuchDocument(from);
    const auto taken = index_->segments().Find(to);
    if (!taken.ok()) return Fail(taken.status());
    if (pending_.Has(to) || *taken) {
      return {StatusCode::kAlreadyExists, "there is a document " + Quoted(to) + " already"};
    }
    if (is_pending) {
      status = pending_.Rename(from, to, Now());
    } else {
      index_->segments().Rename(**place, to, Now());
    }
    return status.ok() ? status : Fail(status);
  }

  Status SetField(std::string_view name, DocumentField field, std::string_view value) {
    if (value.size() > kMaxDocumentBytes) {
      return {StatusCode::kInvalidArgument, "the text has more than 1 GB"};
    }
    if (pending_.Has(name)) {
      Status status = pending_.SetField(name, field, value);
      return status.ok() ? status : Fail(status);
    }
    const auto place = index_->segments().Find(name);
    if (!place.ok()) return Fail(place.status());
    if (!*place) return NoSuchDocument(name);
    index_->segments().SetField(**place, field, value);
    return {};
  }

  void SetProperty(std::string_view key, std::string_view value) {
    if (key == kAnalyzerProperty) return;
    if (value.empty()) {
      const auto found = properties_.find(key);
      if (found != properties_.end()) properties_.erase(found);
    } else {
      properties_.insert_or_assign(std::string(key), std::string(value));
    }
  }

  Status Commit() {
    Status status = CommitChanges();
    return status.ok() ? MergeWhatIsDue() : status;
  }

  Status Compact() {
    Status status = CommitChanges();
    Status unreadable;
    policy_.left_out.clear();  // what cannot be read is to be reported
    MergeProgress progress;
    // The groups are others after a segment was left out.
    for (bool is_done = false; status.ok() && !is_done;) {
      const auto groups = ChooseCompaction(index_->manifest().segments, policy_.left_out);
      for (const auto& group : groups) progress.all_bytes += index_->BytesOf(group);
      is_done = true;
      // From the last to the first, so that the positions of the others stay as they are.
      for (auto group = groups.rbegin(); status.ok() && is_done && group != groups.rend();
           ++group) {
        Status left_out;
        status = Merge(*group, &progress, &left_out);
        is_done = left_out.ok();
        if (unreadable.ok()) unreadable = std::move(left_out);
      }
    }
    return status.ok() ? unreadable : status;
  }

  Status DropPositions() {
    const bool has_changes = !pending_.empty() || index_->segments().HasChanges();
    Status status = has_changes || !index_->manifest().with_positions ? CommitChanges() : Status();
    if (!status.ok() || !index_->manifest().with_positions) return status;
    MergeProgress progress;
    for (const auto& group : GroupNeighbours(index_->manifest().segments)) {
      progress.all_bytes += index_->BytesOf(group);
    }
    status = index_->DropPositions(properties_, [&](std::uint64_t bytes) {
      progress.done_bytes += bytes;
      return Report(WriterProgress::Phase::kMerging, progress.done_bytes, progress.all_bytes);
    });
    if (!status.ok()) return Fail(status);
    pending_.DropPositions();
    return status;
  }

  Status Rollback() {
    pending_.Clear();
    failed_ = index_->Reload();
    properties_ = index_->manifest().properties;
    language_.Start(&properties_);
    return failed_;
  }

  std::vector<Status> TakeWarnings() noexcept { return std::exchange(warnings_, {}); }

  // Returns whether this is a copy in a child process, and then closes the lock's file there.
  bool IsInChild() noexcept {
    if (process_.IsThisOne()) return false;
    index_->CloseInChild();
    return true;
  }

 private:
  // How far all merges of a call have come.
  struct MergeProgress {
    std::uint64_t done_bytes = 0;
    std::uint64_t all_bytes = 0;
  };

  // Keeps the error: what is pending is lost, and nothing else can be done before Rollback().
  Status Fail(Status status) {
    failed_ = std::move(status);
    RemoveChanges();
    return failed_;
  }

  // Removes what is not committed. What stays for lack of memory is removed when the index is
  // opened the next time.
  void RemoveChanges() noexcept {
    pending_.Clear();
    try {
      index_->RemoveFilesOfChanges();
    } catch (const std::exception&) {
      return;
    }
  }

  Status PrepareForText() {  // words of all documents are made by the same rules
    if (properties_.count(kAnalyzerProperty) != 0) return {};
    if (!pending_.empty() || index_->segments().HasDocuments()) {
      return {StatusCode::kVersion,
              "its words were made by an older version; text needs all documents removed",
              index_->folder()};
    }
    properties_.emplace(kAnalyzerProperty, Analyzer::kVersion);
    return {};
  }

  Status RemoveIfThere(std::string_view name) {
    if (pending_.Has(name)) return pending_.Remove(name);
    const auto place = index_->segments().Find(name);
    if (!place.ok()) return place.status();
    if (!*place) return NoSuchDocument(name);
    index_->segments().Remove(**place);
    return {};
  }

  bool Report(WriterProgress::Phase phase, std::uint64_t done_bytes, std::uint64_t all_bytes) {
    WriterProgress progress;
    progress.phase = phase;
    progress.done_bytes = std::min(done_bytes, all_bytes);
    progress.all_bytes = all_bytes;
    return GoesOn(options_.progress, progress);
  }

  void WarnOfWordsLeftOut(const SegmentInfo& info) {
    if (info.words_left_out == 0) return;
    warnings_.emplace_back(
        StatusCode::kInvalidArgument,
        std::to_string(info.words_left_out) + " words are left out: too many words have their hash",
        index_->folder() + "/" + SegmentFile(info));
  }

  // Writes all documents into segments, which are not committed.
  Status WritePending() {
    const std::uint64_t all_bytes = pending_.text_bytes();
    Result<std::vector<WrittenSegment>> written =
        pending_.Finish([this, all_bytes](std::uint64_t written_bytes) {
          return Report(WriterProgress::Phase::kWriting, written_bytes, all_bytes);
        });
    if (!written.ok()) return written.status();
    for (WrittenSegment& segment : *written) {
      WarnOfWordsLeftOut(segment.info);
      Status status = index_->segments().Add(std::move(segment));
      if (!status.ok()) return status;
    }
    return {};
  }

  Status CommitChanges() {
    language_.Settle(&properties_);
    Status status = WritePending();
    if (status.ok()) status = index_->Commit(properties_);
    return status.ok() ? status : Fail(status);
  }

  Status MergeWhatIsDue() {
    MergeProgress progress;
    for (;;) {
      const auto positions = ChooseMerge(index_->manifest().segments, policy_);
      if (positions.empty()) return {};
      progress.all_bytes += index_->BytesOf(positions);
      Status left_out;
      Status status = Merge(positions, &progress, &left_out);
      if (!status.ok()) return status;
      if (!left_out.ok()) warnings_.push_back(std::move(left_out));
    }
  }

  // Merges these segments. An error of merging takes nothing away from what is committed. One of
  // reading a segment is put into `*left_out`: that segment stays out of merging from now on.
  Status Merge(const std::vector<std::size_t>& positions, MergeProgress* progress,
               Status* left_out) {
    const std::uint64_t end = progress->done_bytes + index_->BytesOf(positions);
    const std::uint64_t number = index_->manifest().next_segment;
    std::uint64_t unreadable = 0;
    Status status = index_->Merge(
        positions,
        [this, progress, end](std::uint64_t bytes) {
          progress->done_bytes = std::min(progress->done_bytes + bytes, end);
          return Report(WriterProgress::Phase::kMerging, progress->done_bytes, progress->all_bytes);
        },
        &unreadable);
    progress->done_bytes = end;
    for (const SegmentInfo& info : index_->manifest().segments) {
      if (status.ok() && info.number == number) WarnOfWordsLeftOut(info);
    }
    if (status.ok()) return {};
    failed_ = index_->Reload();
    if (unreadable == 0 || !failed_.ok()) return status;
    policy_.left_out.insert(unreadable);
    *left_out = std::move(status);
    return {};
  }

  const OwningProcess process_;
  const WriterOptions options_;
  MergePolicy policy_;
  const std::unique_ptr<CommittedIndex> index_;
  CommittedIndex::Properties properties_;
  PendingDocuments pending_;
  IndexLanguage language_;
  Status failed_;                 // what stands in the way until Rollback()
  std::vector<Status> warnings_;  // that nobody has taken
};

Result<IndexWriter> IndexWriter::Open(const std::string& path, WriterOptions options) {
  if (options.merge_factor < 2) {
    return Status(StatusCode::kInvalidArgument, "fewer than two segments cannot be merged");
  }
  return kestan::search::Caught(path, [&]() -> Result<IndexWriter> {
    Status status = CheckLanguage(options.language);
    if (!status.ok()) return status;
    auto index = CommittedIndex::Open(path, options);
    if (!index.ok()) return index.status();
    return IndexWriter(std::make_unique<Impl>(std::move(*index), std::move(options)));
  });
}

IndexWriter::IndexWriter(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
IndexWriter::IndexWriter(IndexWriter&& other) noexcept = default;
IndexWriter::~IndexWriter() { LeaveToParent(); }

IndexWriter& IndexWriter::operator=(IndexWriter&& other) noexcept {
  LeaveToParent();
  impl_ = std::move(other.impl_);
  return *this;
}

// To destroy what a child has would be to wait for threads that it has not, and to remove files of
// its parent's. Its memory is lost.
void IndexWriter::LeaveToParent() noexcept {
  if (impl_ != nullptr && impl_->IsInChild()) static_cast<void>(impl_.release());
}

Status IndexWriter::Add(Document document) {
  return impl_->Guarded([&] { return impl_->Add(std::move(document)); });
}

Status IndexWriter::Remove(std::string_view name) {
  return impl_->Guarded([&] { return impl_->Remove(name); });
}

Status IndexWriter::Rename(std::string_view from, std::string_view to) {
  return impl_->Guarded([&] { return impl_->Rename(from, to); });
}

Status IndexWriter::SetField(std::string_view name, DocumentField field, std::string_view value) {
  return impl_->Guarded([&] { return impl_->SetField(name, field, value); });
}

void IndexWriter::SetProperty(std::string_view key, std::string_view value) {
  // An error comes back from Commit().
  static_cast<void>(impl_->Guarded([&] {
    impl_->SetProperty(key, value);
    return Status();
  }));
}

Status IndexWriter::Commit() {
  return impl_->Guarded([&] { return impl_->Commit(); });
}

Status IndexWriter::Rollback() {
  return impl_->Caught([&] { return impl_->Rollback(); });
}

Status IndexWriter::Compact() {
  return impl_->Guarded([&] { return impl_->Compact(); });
}

std::vector<Status> IndexWriter::TakeWarnings() noexcept { return impl_->TakeWarnings(); }

Status IndexWriter::DropPositions() {
  return impl_->Guarded([&] { return impl_->DropPositions(); });
}

}  // namespace kestan::search
