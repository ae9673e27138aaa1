// SPDX-License-Identifier: GPL-3.0-or-later
// Documents to postings, in memory.
#ifndef KESTAN_SEARCH_INDEX_INVERTING_INVERTER_H_
#define KESTAN_SEARCH_INDEX_INVERTING_INVERTER_H_

#include <kestan/search/document.h>
#include <kestan/search/index_writer.h>
#include <kestan/search/status.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "search/index/inverting/posting_table.h"
#include "search/segment/segment_writer.h"

namespace kestan::search {

// Gathers documents with their postings, until they are written as a segment. One thread at a time.
class Inverter {
 public:
  explicit Inverter(bool with_positions);

  // Adds a document, whose words are `words` alone, separated by white space or NULs. Copies all.
  // There must be fewer than kMaxCode documents, and none of that name. Documents are counted
  // from 0: the first is 0 until it is written, whatever is dropped.
  void Add(Document document, std::uint32_t added);

  // Drops a document. It is not written, and those after it get lower codes.
  void Drop(std::size_t index);

  // Renames or changes a document.
  void Rename(std::size_t index, std::string_view name, std::uint32_t now);
  void SetField(std::size_t index, DocumentField field, std::string_view value);

  // Returns how many documents were added, those dropped among them.
  std::size_t documents() const { return documents_.size(); }
  bool IsDropped(std::size_t index) const { return documents_[index].is_dropped; }

  // Returns about how many bytes it takes, what Write() needs included.
  std::size_t memory() const;

  // Writes all documents as segment `number` in `folder`.
  //   Returns  what was written: no documents and no files, if all were dropped; kSystem.
  Result<SegmentInfo> Write(const std::string& folder, std::uint64_t number) const;

 private:
  struct StoredDocument {
    std::string name;
    std::array<std::string, kDocumentFields> fields;
    std::uint32_t words = 0;
    std::uint32_t added = 0;
    bool is_dropped = false;
  };

  std::size_t CountLiving() const;
  std::vector<Code> NewCodes() const;
  void WriteDocuments(SegmentWriter* writer) const;
  void WriteTerms(SegmentWriter* writer) const;

  const bool with_positions_;
  std::vector<StoredDocument> documents_;
  std::size_t text_bytes_ = 0;  // of names and fields
  bool has_dropped_ = false;
  PostingTable postings_;
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_INDEX_INVERTING_INVERTER_H_
