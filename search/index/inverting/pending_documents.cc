// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/index/inverting/pending_documents.h"

#include <algorithm>
#include <thread>
#include <utility>

namespace kestan::search {
namespace {

constexpr unsigned kMostThreads = 64;

unsigned ThreadsOf(const WriterOptions& options) {
  if (options.threads != 0) return std::min(options.threads, kMostThreads);
  return std::clamp(std::thread::hardware_concurrency(), 1U, 4U);
}

// A batch is large enough to be worth a thread of its own, and small enough that all threads soon
// have one. A commit of fewer bytes makes one segment.
constexpr std::size_t kMostBatchBytes = std::size_t{1} << 20;
constexpr std::size_t kLeastBatchBytes = std::size_t{1} << 16;
constexpr std::size_t kDocumentBytes = 256;     // of memory, beside its texts
constexpr std::size_t kNameBytes = 96;          // of memory, beside the name itself
constexpr std::size_t kBatchesOfThread = 4;     // waiting, being cleaned, and copies of it
constexpr std::size_t kLeastMemory = 1U << 20;  // of a thread
constexpr std::size_t kThreadBytes = 3U
                                     << 18;  // of buffers and tables, however little it has to do

std::size_t BatchBytes(const PendingDocuments::Settings& settings) {
  return std::clamp(settings.memory_budget / (std::size_t{16} * settings.threads), kLeastBatchBytes,
                    kMostBatchBytes);
}

// Returns what remains for a thread's postings when names and batches have their share.
std::size_t ThreadMemory(const PendingDocuments::Settings& settings, std::size_t batch_bytes) {
  constexpr std::size_t kMost = std::size_t{1} << 30;  // no segment is to have more postings
  const std::size_t share = settings.memory_budget / 8 * 7 / settings.threads;
  const std::size_t others = kBatchesOfThread * batch_bytes + kThreadBytes;
  return std::clamp(share > others ? share - others : 0, kLeastMemory, kMost);
}

}  // namespace

PendingDocuments::PendingDocuments(std::string folder, bool with_positions,
                                   const WriterOptions& options)
    : PendingDocuments(
          {std::move(folder), with_positions, ThreadsOf(options), options.memory_budget}) {}

PendingDocuments::PendingDocuments(Settings settings)
    : settings_(std::move(settings)), batch_bytes_(BatchBytes(settings_)) {}

std::optional<std::uint64_t> PendingDocuments::Find(std::string_view name) const {
  if (names_.empty()) return std::nullopt;
  const auto found = names_.find(std::string(name));
  if (found == names_.end()) return std::nullopt;
  return found->second;
}

Status PendingDocuments::Add(Document document, std::uint32_t now) {
  const std::size_t bytes = BytesOf(document);
  names_.emplace(document.name, next_serial_);
  names_bytes_ += document.name.size() + kNameBytes;
  batch_.emplace_back(PendingDocument{next_serial_++, std::move(document), now});
  batch_size_ += bytes + kDocumentBytes;
  text_bytes_ += bytes;
  return batch_size_ >= batch_bytes_ ? HandOn() : Status();
}

// Hands the batch to the next thread.
Status PendingDocuments::HandOn() {
  if (batch_.empty()) return {};
  if (pool_ == nullptr) {
    InverterPool::Settings settings;
    settings.folder = settings_.folder;
    settings.with_positions = settings_.with_positions;
    settings.threads = settings_.threads;
    settings.thread_memory = ThreadMemory(settings_, batch_bytes_);
    settings.first_number = first_number_;
    pool_ = std::make_unique<InverterPool>(std::move(settings));
  }
  std::vector<PendingDocument> documents;
  documents.reserve(batch_.size());
  for (std::optional<PendingDocument>& document : batch_) {
    if (document) documents.push_back(std::move(*document));
  }
  const unsigned thread = ThreadOfBatch(batch_starts_.size());
  batch_starts_.push_back(next_serial_ - batch_.size());
  batch_.clear();
  batch_size_ = 0;
  return pool_->Add(std::move(documents), thread);
}

unsigned PendingDocuments::ThreadOfBatch(std::size_t batch) const {
  return static_cast<unsigned>(batch % settings_.threads);
}

// Returns the document if it was not handed on yet, else null.
PendingDocument* PendingDocuments::InBatch(std::uint64_t serial) {
  const std::uint64_t first = next_serial_ - batch_.size();
  return serial >= first ? &*batch_[static_cast<std::size_t>(serial - first)] : nullptr;
}

Status PendingDocuments::Change(PendingChange change) {
  const auto next = std::upper_bound(batch_starts_.begin(), batch_starts_.end(), change.serial);
  const auto batch = static_cast<std::size_t>(next - batch_starts_.begin()) - 1;
  return pool_->Change(std::move(change), ThreadOfBatch(batch));
}

void PendingDocuments::Forget(std::string_view name) {
  names_.erase(std::string(name));
  names_bytes_ -= name.size() + kNameBytes;
}

Status PendingDocuments::Remove(std::string_view name) {
  const std::uint64_t serial = *Find(name);
  Forget(name);
  if (InBatch(serial) != nullptr) {
    batch_[batch_.size() - static_cast<std::size_t>(next_serial_ - serial)].reset();
    return {};
  }
  PendingChange change;
  change.serial = serial;
  return Change(std::move(change));
}

Status PendingDocuments::Rename(std::string_view from, std::string_view to, std::uint32_t now) {
  const std::uint64_t serial = *Find(from);
  Forget(from);
  names_.emplace(to, serial);
  names_bytes_ += to.size() + kNameBytes;
  if (PendingDocument* const pending = InBatch(serial)) {
    pending->document.name = to;
    pending->added = now;
    return {};
  }
  PendingChange change;
  change.serial = serial;
  change.kind = PendingChange::Kind::kRename;
  change.value = to;
  change.now = now;
  return Change(std::move(change));
}

Status PendingDocuments::SetField(std::string_view name, DocumentField field,
                                  std::string_view value) {
  const std::uint64_t serial = *Find(name);
  if (PendingDocument* const pending = InBatch(serial)) {
    Document& document = pending->document;
    (field == DocumentField::kTitle     ? document.title
     : field == DocumentField::kSummary ? document.summary
                                        : document.host_data) = value;
    return {};
  }
  PendingChange change;
  change.serial = serial;
  change.kind = PendingChange::Kind::kSetField;
  change.field = field;
  change.value = value;
  return Change(std::move(change));
}

Result<std::vector<WrittenSegment>> PendingDocuments::Finish(
    const std::function<bool(std::uint64_t written_bytes)>& goes_on) {
  Status status = HandOn();
  if (!status.ok()) {
    Clear();
    return status;
  }
  Result<std::vector<WrittenSegment>> written = std::vector<WrittenSegment>();
  if (pool_ != nullptr) written = pool_->Finish(goes_on);
  Clear();
  return written;
}

void PendingDocuments::Clear() {
  pool_.reset();
  batch_.clear();
  batch_starts_.clear();
  batch_size_ = 0;
  names_.clear();
  names_bytes_ = 0;
  text_bytes_ = 0;
  next_serial_ = 0;
}

}  // namespace kestan::search
