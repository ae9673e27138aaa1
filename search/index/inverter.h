// Documents to postings, in memory.
#ifndef KESTAN_SEARCH_INDEX_INVERTER_H_
#define KESTAN_SEARCH_INDEX_INVERTER_H_

#include <kestan/search/document.h>
#include <kestan/search/status.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "search/segment/segment_writer.h"

namespace kestan::search {

// Gathers documents with their postings, until they are written as a segment. One thread at a time.
class Inverter {
 public:
  explicit Inverter(bool with_positions);
  ~Inverter();
  Inverter(const Inverter&) = delete;
  Inverter& operator=(const Inverter&) = delete;

  // Adds a document, whose words are `words` alone, separated by white space. It gets the next
  // code; the first has code 1. There must be fewer than kMaxCode documents.
  void Add(Document document, std::uint32_t added);

  std::size_t documents() const;
  std::size_t memory() const;  // about how many bytes it holds

  // Renames or changes a document that is still here.
  void Rename(Code code, std::string name, std::uint32_t now);
  void SetField(Code code, DocumentField field, std::string value);

  // Writes all documents as segment `number` in `folder`, and forgets them.
  Result<SegmentInfo> Write(const std::string& folder, std::uint64_t number);

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_INDEX_INVERTER_H_
