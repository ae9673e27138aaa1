// SPDX-License-Identifier: GPL-3.0-or-later
// Documents that are in no segment yet, by their names.
#ifndef KESTAN_SEARCH_INDEX_INVERTING_PENDING_DOCUMENTS_H_
#define KESTAN_SEARCH_INDEX_INVERTING_PENDING_DOCUMENTS_H_

#include <kestan/search/document.h>
#include <kestan/search/index_writer.h>
#include <kestan/search/status.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "search/index/inverting/inverter_pool.h"
#include "search/index/inverting/segment_maker.h"

namespace kestan::search {

// Gathers documents into batches, hands these to the threads, and remembers where each is. Use it
// from one thread.
class PendingDocuments {
 public:
  struct Settings {
    std::string folder;
    bool with_positions = true;
    unsigned threads = 1;
    std::size_t memory_budget = 0;
  };

  explicit PendingDocuments(Settings settings);

  // For the segments of an index in `folder`, with the threads and the memory that `options` say.
  PendingDocuments(std::string folder, bool with_positions, const WriterOptions& options);

  // Sets the number of the next segment. Only while nothing is pending.
  void StartAt(std::uint64_t first_number) { first_number_ = first_number; }

  // Keeps no positions of words from now on. Only while nothing is pending.
  void DropPositions() { settings_.with_positions = false; }

  bool empty() const { return next_serial_ == 0; }

  // Returns whether the names alone take so much memory that Finish() should be called.
  bool HasManyNames() const { return names_bytes_ > settings_.memory_budget / 8; }

  // Returns how many bytes the texts have that were added.
  std::uint64_t text_bytes() const { return text_bytes_; }

  bool Has(std::string_view name) const { return Find(name).has_value(); }

  // Adds a document; there must be none of its name.
  //   Returns  errors of writing earlier ones, as all functions below.
  Status Add(Document document, std::uint32_t now);

  // Each changes a document, which must be there.
  Status Remove(std::string_view name);
  Status Rename(std::string_view from, std::string_view to, std::uint32_t now);
  Status SetField(std::string_view name, DocumentField field, std::string_view value);

  // Writes everything as segments, so that nothing is pending. See InverterPool::Finish(). After an
  // error nothing is pending either.
  Result<std::vector<WrittenSegment>> Finish(
      const std::function<bool(std::uint64_t written_bytes)>& goes_on);

  // Forgets everything. Segments that were written stay as files.
  void Clear();

 private:
  std::optional<std::uint64_t> Find(std::string_view name) const;
  PendingDocument* InBatch(std::uint64_t serial);
  unsigned ThreadOfBatch(std::size_t batch) const;
  Status HandOn();
  Status Change(PendingChange change);
  void Forget(std::string_view name);

  Settings settings_;
  const std::size_t batch_bytes_;
  std::uint64_t first_number_ = 1;
  std::uint64_t next_serial_ = 0;
  std::unordered_map<std::string, std::uint64_t> names_;  // to serials
  std::size_t names_bytes_ = 0;
  std::uint64_t text_bytes_ = 0;
  std::vector<std::optional<PendingDocument>> batch_;  // the next one; empty: removed again
  std::size_t batch_size_ = 0;                         // in bytes
  std::vector<std::uint64_t> batch_starts_;  // the first serials of those that were handed on
  std::unique_ptr<InverterPool> pool_;       // while there are such
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_INDEX_INVERTING_PENDING_DOCUMENTS_H_
