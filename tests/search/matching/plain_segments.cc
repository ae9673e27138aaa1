// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/search/matching/plain_segments.h"

#include <kestan/index_builder.h>

#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <stdexcept>

#include "search/files/output_file.h"
#include "search/segment/segment_writer.h"
#include "search/text/letters.h"

namespace kestan_tests {
namespace {

using kestan::Code;
using kestan::Position;
using namespace kestan::search;

constexpr std::uint32_t kAdded = 1700000000;

// By term and code: the positions.
using Postings = std::map<std::string, std::map<Code, std::vector<Position>>>;

Postings PostingsOf(const std::vector<DocumentOfWords>& documents) {
  Postings postings;
  Code code = 0;
  for (const DocumentOfWords& document : documents) {
    ++code;
    for (std::size_t i = 0; i < document.words.size(); ++i) {
      for (const std::string& term : TermsOfWord(document.words[i])) {
        postings[term][code].push_back(PositionOfWord(i));
      }
    }
  }
  return postings;
}

template <typename T>
T Required(kestan::search::Result<T> result) {
  if (!result.ok()) throw std::runtime_error(result.status().ToString());
  return std::move(*result);
}

void Require(const Status& status) {
  if (!status.ok()) throw std::runtime_error(status.ToString());
}

SegmentDocument DocumentOf(const std::string& name, std::size_t words) {
  SegmentDocument document;
  document.name = name;
  document.words = static_cast<std::uint32_t>(words);
  document.added = kAdded;
  return document;
}

std::string RecordOf(const std::map<Code, std::vector<Position>>& postings, bool with_positions) {
  std::string record;
  for (const auto& [code, positions] : postings) {
    if (with_positions) {
      kestan::AppendPosting(code, kestan::Positions{positions.data(), positions.size()}, &record);
    } else {
      kestan::AppendPosting(code, &record);
    }
  }
  return record;
}

Edits EditsOf(const std::vector<DocumentOfWords>& documents) {
  Edits edits(documents.size());
  for (std::size_t i = 0; i < documents.size(); ++i) {
    const auto code = static_cast<Code>(i + 1);
    if (!documents[i].new_name.empty()) edits.Rename(code, documents[i].new_name, kAdded);
    if (documents[i].is_removed) edits.Remove(code);
  }
  return edits;
}

}  // namespace

DocumentOfWords Plain(const std::string& name, const std::string& text) {
  std::istringstream stream(text);
  DocumentOfWords document;
  document.name = name;
  for (std::string word; stream >> word;) document.words.push_back(word);
  return document;
}

std::vector<std::string> TermsOfWord(const std::string& word) {
  if (!HasCapital(word)) return {word};
  return {word, LowerCase(word)};
}

Position PositionOfWord(std::size_t index) {
  return static_cast<Position>(index % kestan::kMaxPosition + 1);
}

std::shared_ptr<const Segment> PlainSegments::Add(const std::vector<DocumentOfWords>& documents,
                                                  bool with_positions) {
  const Postings postings = PostingsOf(documents);
  SegmentWriter writer;
  Require(writer.Create(directory_ / "", next_number_++, with_positions, documents.size(),
                        postings.size()));
  for (const DocumentOfWords& document : documents) {
    writer.AddDocument(DocumentOf(document.name, document.words.size()));
  }
  for (const auto& [term, of_term] : postings) {
    writer.AddTerm(term, static_cast<std::uint32_t>(of_term.size()),
                   RecordOf(of_term, with_positions));
  }
  return Opened(Required(writer.Finish()), documents, with_positions);
}

std::shared_ptr<const Segment> PlainSegments::AddRecords(std::size_t documents,
                                                         const std::vector<Record>& records) {
  SegmentWriter writer;
  Require(writer.Create(directory_ / "", next_number_++, true, documents, records.size()));
  for (std::size_t i = 1; i <= documents; ++i) {
    const std::string name = std::to_string(i);
    writer.AddDocument(DocumentOf(name, 10));
  }
  for (const Record& record : records) {
    writer.AddTerm(record.term, record.documents, record.bytes);
  }
  return Opened(Required(writer.Finish()), {}, true);
}

std::shared_ptr<const Segment> PlainSegments::Opened(const SegmentInfo& written,
                                                     const std::vector<DocumentOfWords>& documents,
                                                     bool with_positions) {
  SegmentInfo info = written;
  const Edits edits = EditsOf(documents);
  if (!edits.empty()) {
    info.edit_number = 1;
    info.removed = static_cast<std::uint32_t>(edits.removed_count());
    OutputFile file;
    Require(file.Create(directory_ / EditsFile(info)));
    file.Write(edits.Encode());
    info.edits = Required(file.Finish());
  }
  auto segment = Required(Segment::Open(directory_ / "", info, with_positions));
  snapshot_.segments.push_back(segment);
  snapshot_.index_of_segment.push_back(0);
  return segment;
}

}  // namespace kestan_tests
