// SPDX-License-Identifier: GPL-3.0-or-later
// A segment that is open for reading.
#ifndef KESTAN_SEARCH_SEGMENT_SEGMENT_H_
#define KESTAN_SEARCH_SEGMENT_SEGMENT_H_

#include <kestan/index_file.h>
#include <kestan/search/status.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "search/files/file_bytes.h"
#include "search/segment/document_table.h"
#include "search/segment/edits.h"
#include "search/segment/segment_info.h"
#include "search/segment/term_dictionary.h"

namespace kestan::search {

// The posting record of a term. An empty record where the segment lacks the term.
struct TermPostings {
  Bytes record;
  std::uint32_t documents = 0;  // that hold it, removed ones among them
};

// The files of one segment and their edits. Any number of threads may use it at once; what it says
// never changes.
class Segment {
 public:
  // Opens the segment of `info` in the folder `folder`. `previous`, which may be null, is the same
  // segment with other edits: its files are shared.
  //   Returns  kNotFound, kDamaged, kVersion, kSystem.
  static Result<std::shared_ptr<const Segment>> Open(const std::string& folder,
                                                     const SegmentInfo& info, bool with_positions,
                                                     const Segment* previous = nullptr);

  // Opens the index file of class Kestan at `path` as a segment. See PlainIndex. Nobody can change
  // the file while the segment is there.
  //   Returns  kBusy while another process changes it; kDamaged, kVersion, kSystem.
  static Result<std::shared_ptr<const Segment>> OpenIndexFile(const std::string& path);

  // Compares the bytes of all files but the edits, which were read, with their checksums. Of an
  // index file without other files, nobody knows any.
  //   Returns  kDamaged, kSystem.
  Status Verify() const;

  // Returns the path of the index file.
  const std::string& path() const;

  const SegmentInfo& info() const { return info_; }
  bool with_positions() const { return with_positions_; }
  const DocumentTable& table() const;
  const TermDictionary& terms() const;
  const Edits& edits() const { return edits_; }

  // Returns kDamaged if a part of the document table that was read so far is damaged: names from
  // there were empty, and not found, documents without words. Whoever believes these must ask here
  // afterwards.
  Status status() const { return table().status(); }

  // ---- Documents, edits included ----

  std::size_t size() const { return table().size(); }  // removed documents among them

  // Returns whether there is no living document `code`, which may be any number.
  bool IsRemoved(Code code) const { return edits_.IsRemoved(code); }
  std::string_view NameOf(Code code) const;
  std::uint32_t AddedOf(Code code) const;

  // Finds the living document `name`.
  std::optional<Code> FindDocument(std::string_view name) const;

  // Reads a text of a document; "" for none.
  Result<std::string> FieldOf(Code code, DocumentField field) const;

  // Announces that FieldOf() will read a text; several that are announced together are fetched from
  // the disk at once.
  void WillReadField(Code code, DocumentField field) const;

  // How many documents live, and how many words they have together.
  std::uint64_t living_documents() const { return living_documents_; }
  std::uint64_t living_words() const { return living_words_; }

  // Reads a property of an index file of class Kestan; see PlainIndex. Others keep none themselves.
  //   Returns  kDamaged, kSystem.
  Result<std::string> PropertyOf(std::string_view key) const;

  // ---- Words ----

  // Returns the posting record of `term`, from the mapping where its key is at the place that the
  // dictionary names, else through gdbm.
  Result<TermPostings> FindTerm(std::string_view term) const;
  Result<TermPostings> PostingsOf(const TermEntry& entry) const;

 private:
  struct Files;  // shared by segments that differ in their edits

  Segment() = default;
  static Result<std::shared_ptr<const Files>> OpenFiles(const std::string& folder,
                                                        const SegmentInfo& info);
  static Result<Edits> ReadEdits(const std::string& folder, const SegmentInfo& info);
  bool HasFilesOf(const SegmentInfo& info) const;
  void CountLiving();

  // Reads the value of `key` at `place`; nothing where another key stands there.
  std::optional<Bytes> RecordAt(std::string_view key, const RecordPlace& place) const;
  Result<Bytes> ReadRecord(std::string_view key, const RecordPlace& place) const;

  std::shared_ptr<const Files> files_;
  std::string folder_;  // of the index; of an index file by itself, nothing
  SegmentInfo info_;
  bool with_positions_ = true;
  Edits edits_{0};
  std::uint64_t living_documents_ = 0;
  std::uint64_t living_words_ = 0;
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_SEGMENT_SEGMENT_H_
