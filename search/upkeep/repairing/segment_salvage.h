// SPDX-License-Identifier: GPL-3.0-or-later
// Making a segment of what can be read of a damaged one.
#ifndef KESTAN_SEARCH_UPKEEP_REPAIRING_SEGMENT_SALVAGE_H_
#define KESTAN_SEARCH_UPKEEP_REPAIRING_SEGMENT_SALVAGE_H_

#include <kestan/index_file.h>
#include <kestan/search/status.h>

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "search/files/file_bytes.h"
#include "search/segment/document_table.h"
#include "search/segment/edits.h"
#include "search/segment/segment_info.h"
#include "search/segment/segment_writer.h"
#include "search/segment/term_dictionary.h"
#include "search/upkeep/repairing/repair_items.h"
#include "search/upkeep/repairing/salvaged_terms.h"
#include "search/upkeep/repairing/word_places.h"

namespace kestan::search {

// Writes a damaged segment again, so that its records agree with each other.
//
// Its documents are those of its document table, if that is whole, else those of the index file
// that the engine has salvaged; so they are where most names of that file are not in the table,
// and no MANIFEST confirms it. Its words: see SalvagedTerms and WordPlaces. The new segment has
// the living documents in order, with their edits.
class SegmentSalvage {
 public:
  struct Sources {
    std::string path;                          // of the damaged index file
    std::string salvaged_path;                 // of what the engine has made of it
    std::optional<DocumentTable> table;        // nothing: damaged
    std::optional<TermDictionary> dictionary;  // nothing: damaged
    bool is_confirmed;                         // MANIFEST confirms both
    std::vector<RepairItem> findings;          // of the engine
  };

  SegmentSalvage(Sources sources, RepairItems* items)
      : sources_(std::move(sources)), items_(*items) {}

  // Opens what the engine has salvaged.
  Status Open();

  // Returns how many documents there are, removed ones among them. Known when it is open.
  std::uint32_t documents() const { return highest_; }

  // Returns whether there are positions, going by what the engine has salvaged.
  bool with_positions() { return salvaged_.KeepsPositions(); }

  // Returns whether no words contradict each other, of a file that was sound otherwise. Once, and
  // not before Write().
  Result<bool> WordsAgree();

  // Writes segment `number` of the folder `target`, and reports what it has and lacks. `edits`,
  // those of the damaged one, may be null. Once.
  //   Returns  nothing if no document lives.
  Result<std::optional<SegmentInfo>> Write(const std::string& target, std::uint64_t number,
                                           bool with_positions, const Edits* edits);

 private:
  struct Document {
    std::string stored_name;  // the one that its records have
    std::string name;
    std::optional<std::uint32_t> words;
    std::uint32_t added = 0;
    bool lives = false;
    std::uint64_t folded = 0;  // positions of words without capitals, or such words
    std::uint32_t highest = 0;

    std::uint32_t WordsAtLeast() const;
  };

  bool HasNamesOf(const DocumentTable& table);
  Status ReadDocuments(const Edits* edits);
  Document DocumentOf(Code code);
  void ApplyEdit(const DocumentEdit* edit, Document* document) const;
  bool IsOther(std::string_view key) const;
  Status ResolveWords(const Edits* edits);
  Status CountWords();
  void ReportWords();
  void ReportFindings(const Edits* edits);
  void ReportDocuments();
  void ReportDocument(const Document& document, bool is_whole);
  void Note(const std::string& what, std::uint64_t count);
  Result<std::optional<SegmentInfo>> WriteSegment(const std::string& target, std::uint64_t number,
                                                  const Edits* edits);
  Status WriteDocument(Code code, const DocumentEdit* edit, SegmentWriter* writer);
  Status WriteWords(const std::vector<Code>& new_codes, SegmentWriter* writer);
  Result<std::string> TextOf(Code code, std::size_t field);
  Status StatusOf(int error) const;

  Sources sources_;
  RepairItems& items_;
  IndexFile salvaged_;
  std::shared_ptr<const FileBytes> damaged_;  // may be null
  std::uint32_t highest_ = 0;                 // code
  bool with_positions_ = true;
  std::vector<Document> documents_;                        // by code
  std::map<std::string, Code, std::less<>> stored_names_;  // of all documents
  std::optional<SalvagedTerms> terms_;
  std::optional<WordPlaces> places_;
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_UPKEEP_REPAIRING_SEGMENT_SALVAGE_H_
