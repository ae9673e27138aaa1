// SPDX-License-Identifier: GPL-3.0-or-later
// Small segments for tests.
#ifndef KESTAN_TESTS_SEARCH_SEGMENT_SEGMENT_FILES_H_
#define KESTAN_TESTS_SEARCH_SEGMENT_SEGMENT_FILES_H_

#include <kestan/index_builder.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "search/segment/document_table.h"
#include "search/segment/segment.h"
#include "search/segment/segment_writer.h"
#include "search/segment/term_dictionary.h"

namespace kestan::search {

struct WrittenDocument {
  std::string name;
  std::string words;  // separated by blanks
  std::array<std::string, kDocumentFields> fields;
};

// What a posting record of each word holds: codes with positions.
using PlainPostings = std::map<std::string, std::map<Code, std::vector<Position>>>;

inline PlainPostings InvertPlainly(const std::vector<WrittenDocument>& documents) {
  PlainPostings postings;
  Code code = 0;
  for (const WrittenDocument& document : documents) {
    ++code;
    std::istringstream words(document.words);
    Position position = 0;
    for (std::string word; words >> word;) postings[word][code].push_back(++position);
  }
  return postings;
}

inline std::string RecordOf(const std::map<Code, std::vector<Position>>& postings,
                            bool with_positions) {
  std::string record;
  for (const auto& [code, positions] : postings) {
    if (with_positions) {
      AppendPosting(code, Positions{positions.data(), positions.size()}, &record);
    } else {
      AppendPosting(code, &record);
    }
  }
  return record;
}

// Hands all documents and words to the writer. Document i (from 1) was added in second 1000 + i.
inline void FillSegment(const std::vector<WrittenDocument>& documents, bool with_positions,
                        SegmentWriter* writer) {
  std::uint32_t added = 1000;
  for (const WrittenDocument& plain : documents) {
    SegmentDocument document;
    document.name = plain.name;
    document.added = ++added;
    std::istringstream words(plain.words);
    for (std::string word; words >> word;) ++document.words;
    for (std::size_t i = 0; i < kDocumentFields; ++i) document.fields[i] = plain.fields[i];
    writer->AddDocument(document);
  }
  for (const auto& [word, postings] : InvertPlainly(documents)) {
    const auto count = static_cast<std::uint32_t>(postings.size());
    writer->AddTerm(word, count, RecordOf(postings, with_positions));
  }
}

inline Result<SegmentInfo> WriteSegment(const std::string& folder, std::uint64_t number,
                                        const std::vector<WrittenDocument>& documents,
                                        bool with_positions = true) {
  SegmentWriter writer;
  Status status = writer.Create(folder, number, with_positions, documents.size(), 100);
  if (!status.ok()) return status;
  FillSegment(documents, with_positions, &writer);
  return writer.Finish();
}

// Makes the files beside an index file say that they belong to the one of checksum `checksum`, and
// says so in `info`.
inline void Rebind(const std::string& folder, std::uint64_t checksum, SegmentInfo* info) {
  const std::string terms_path = folder + "/" + TermsFile(*info);
  const std::string table_path = folder + "/" + TableFile(*info);
  const auto terms = TermDictionary::Open(*FileBytes::Open(terms_path, info->terms.bytes));
  const auto table = DocumentTable::Open(*FileBytes::Open(table_path, info->table.bytes));
  unlink(terms_path.c_str());  // what is open stays readable
  unlink(table_path.c_str());
  TermDictionaryWriter terms_writer;
  DocumentTableWriter table_writer;
  static_cast<void>(terms_writer.Create(terms_path));
  static_cast<void>(table_writer.Create(table_path));
  terms_writer.SetSegment(checksum);
  table_writer.SetSegment(checksum);
  static_cast<void>(terms->ForEach("", [&](const TermEntry& entry) {
    terms_writer.Add(entry);
    return true;
  }));
  for (std::size_t code = 1; code <= table->size(); ++code) {
    table_writer.Add(table->EntryOf(static_cast<Code>(code)));
  }
  info->terms = *terms_writer.Finish();
  info->table = *table_writer.Finish();
}

// Writes the edits as those number `edit_number` of the segment, and says so in `info`.
inline void WriteEdits(const std::string& folder, const Edits& edits, std::uint64_t edit_number,
                       SegmentInfo* info) {
  info->edit_number = edit_number;
  info->removed = static_cast<std::uint32_t>(edits.removed_count());
  OutputFile file;
  if (!file.Create(folder + "/" + EditsFile(*info)).ok()) return;
  file.Write(edits.Encode());
  info->edits = *file.Finish();
}

}  // namespace kestan::search

#endif  // KESTAN_TESTS_SEARCH_SEGMENT_SEGMENT_FILES_H_
