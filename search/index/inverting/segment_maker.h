// SPDX-License-Identifier: GPL-3.0-or-later
// One thread's way from documents to segments.
#ifndef KESTAN_SEARCH_INDEX_INVERTING_SEGMENT_MAKER_H_
#define KESTAN_SEARCH_INDEX_INVERTING_SEGMENT_MAKER_H_

#include <kestan/search/document.h>
#include <kestan/search/index_writer.h>
#include <kestan/search/status.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "search/index/inverting/inverter.h"
#include "search/segment/edits.h"
#include "search/segment/segment_info.h"

namespace kestan::search {

// A document before it has a code. The writer counts all that it is given.
struct PendingDocument {
  std::uint64_t serial = 0;
  Document document;
  std::uint32_t added = 0;
};

// What becomes of a document that was handed on before.
struct PendingChange {
  enum class Kind : std::uint8_t { kDrop, kRename, kSetField };

  std::uint64_t serial = 0;
  Kind kind = Kind::kDrop;
  DocumentField field = DocumentField::kTitle;
  std::string value;      // the name, or the text
  std::uint32_t now = 0;  // in seconds since 1970
};

// A segment that no manifest names yet, and what has changed in it since.
struct WrittenSegment {
  SegmentInfo info;
  std::vector<std::uint64_t> serials;  // of its documents, in order of their codes; ascending
  Edits edits{0};
};

// Inverts documents and writes a segment whenever there are enough. One thread at a time.
class SegmentMaker {
 public:
  struct Settings {
    std::string folder;
    bool with_positions = true;
    std::size_t memory = 0;                               // of documents, before they are written
    std::uint64_t first_number = 1;                       // of the first segment
    std::uint64_t number_step = 1;                        // from one segment to the next
    std::atomic<std::uint64_t>* written_bytes = nullptr;  // counts up texts that are written
  };

  explicit SegmentMaker(Settings settings);

  // Adds documents, with serials that ascend from call to call.
  //   Returns  errors of writing a segment, after which it is of no more use; kSystem where texts
  //            cannot be analyzed.
  Status Add(std::vector<PendingDocument> documents);

  // Changes one of the documents that were added.
  void Change(const PendingChange& change);

  // Writes what is in memory as a segment.
  Status Flush();

  // Gives away what was written.
  std::vector<WrittenSegment> TakeWritten() { return std::move(written_); }

 private:
  bool ChangeInMemory(const PendingChange& change);

  const Settings settings_;
  std::unique_ptr<Inverter> inverter_;
  std::vector<std::uint64_t> serials_;  // of the documents in memory
  std::uint64_t bytes_ = 0;             // of their texts
  std::uint64_t next_number_;
  std::vector<WrittenSegment> written_;
};

// Returns how many bytes the texts of a document have together.
std::size_t BytesOf(const Document& document);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_INDEX_INVERTING_SEGMENT_MAKER_H_
