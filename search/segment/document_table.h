// The documents of a segment: all that ranking and listing need of them, without opening the
// segment itself. docs/index-folder.md has every byte.
#ifndef KESTAN_SEARCH_SEGMENT_DOCUMENT_TABLE_H_
#define KESTAN_SEARCH_SEGMENT_DOCUMENT_TABLE_H_

#include <kestan/format/posting.h>
#include <kestan/index_builder.h>
#include <kestan/search/index_writer.h>
#include <kestan/search/status.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "search/files/file_bytes.h"
#include "search/files/output_file.h"

namespace kestan::search {

constexpr std::size_t kDocumentFields = 3;  // see DocumentField

// A document of a segment, as it was when the segment was written.
struct DocumentEntry {
  std::string_view name;
  std::uint32_t words = 0;  // how many words it has, as positions count them
  std::uint32_t added = 0;  // in seconds since 1970
  std::array<RecordPlace, kDocumentFields> fields;  // by DocumentField
};

class DocumentTableWriter {
 public:
  Status Create(const std::string& path);

  // Adds the document of the next code; the first has code 1. Copies the name.
  void Add(const DocumentEntry& entry);

  Result<FileSummary> Finish();

 private:
  struct Row;
  // (the implementation decides what it keeps)
};

// Reads a document table. Any number of threads may use it at once.
class DocumentTable {
 public:
  // Opens the table in `file`, and checks its checksums: it is small beside the segment.
  //   Returns  kDamaged or kVersion.
  static Result<DocumentTable> Open(std::shared_ptr<const FileBytes> file);

  // How many documents the segment was written with; their codes are 1 to size().
  std::size_t size() const;

  // Returns the sum of the words of all documents.
  std::uint64_t words() const;

  // Returns how many words the document has. `code` must be 1 to size().
  std::uint32_t WordsOf(Code code) const;
  std::string_view NameOf(Code code) const;
  DocumentEntry EntryOf(Code code) const;

  // Finds a document by its name, by halving.
  std::optional<Code> Find(std::string_view name) const;

 private:
  DocumentTable() = default;
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_SEGMENT_DOCUMENT_TABLE_H_
