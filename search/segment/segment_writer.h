// SPDX-License-Identifier: GPL-3.0-or-later
// Writing a segment: the index file and what is derived from it.
#ifndef KESTAN_SEARCH_SEGMENT_SEGMENT_WRITER_H_
#define KESTAN_SEARCH_SEGMENT_SEGMENT_WRITER_H_

#include <kestan/index_builder.h>
#include <kestan/search/status.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "search/segment/document_table.h"
#include "search/segment/segment_info.h"
#include "search/segment/term_dictionary.h"

namespace kestan::search {

// A document on its way into a segment.
struct SegmentDocument {
  std::string_view name;
  std::uint32_t words = 0;
  std::uint32_t added = 0;
  std::array<std::string_view, kDocumentFields> fields;  // by DocumentField; "": none
};

// Writes the files of one segment: first its documents, in order of their codes, then its terms, in
// order of their bytes.
class SegmentWriter {
 public:
  SegmentWriter() = default;
  SegmentWriter(const SegmentWriter&) = delete;
  SegmentWriter& operator=(const SegmentWriter&) = delete;

  // Creates the files of segment `number` in the folder `folder`. `expected_terms` and
  // `expected_documents` decide how the index file is laid out. Once for each writer.
  Status Create(const std::string& folder, std::uint64_t number, bool with_positions,
                std::size_t expected_documents, std::size_t expected_terms);
  ~SegmentWriter();  // without Finish(), the files are removed

  // Adds the document of the next code; the first has code 1.
  void AddDocument(const SegmentDocument& document);

  // Adds a term that `documents` documents hold, with its posting record (AppendPosting), in
  // ascending order of codes. A term whose key belongs to another record is left out.
  void AddTerm(std::string_view term, std::uint32_t documents, std::string_view record);

  // Finishes and sums up the files, and syncs them unless that is left to the caller. The folder is
  // the caller's to sync.
  //   Returns  the first error; the destructor then removes the files.
  Result<SegmentInfo> Finish(Syncing syncing = Syncing::kNow);

 private:
  std::string Path(const std::string& file) const { return folder_ + "/" + file; }
  void ShareIndexFile() const;
  Status FinishIndexFile(Syncing syncing);

  std::string folder_;
  SegmentInfo info_;
  bool is_open_ = false;  // there are files to remove
  IndexBuilder builder_;
  TermDictionaryWriter terms_;
  DocumentTableWriter table_;
  Status status_;
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_SEGMENT_SEGMENT_WRITER_H_
