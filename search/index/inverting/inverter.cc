// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/index/inverting/inverter.h"

#include <kestan/tokenizer.h>

#include <algorithm>
#include <utility>

#include "search/index/merging/kept_postings.h"

namespace kestan::search {
namespace {

// What it takes to write: a sorted list of terms, their places in the file, the text of the
// dictionary's index.
constexpr std::size_t kBytesToWriteTerm = 48;
constexpr std::size_t kBytesToWriteDocument = 160;  // two records, a row of the table, a name

// NULs end a text for class Kestan, and no word has one.
void SeparateAtNuls(std::string* words) { std::replace(words->begin(), words->end(), '\0', ' '); }

}  // namespace

Inverter::Inverter(bool with_positions)
    : with_positions_(with_positions), postings_(with_positions) {}

void Inverter::Add(Document document, std::uint32_t added) {
  SeparateAtNuls(&document.words);
  const Tokenizer words(document.words);
  StoredDocument stored;
  stored.name = std::move(document.name);
  stored.fields = {std::move(document.title), std::move(document.summary),
                   std::move(document.host_data)};
  stored.words = static_cast<std::uint32_t>(words.CountWords());
  stored.added = added;
  text_bytes_ += stored.name.capacity();
  for (const std::string& field : stored.fields) text_bytes_ += field.capacity();
  documents_.push_back(std::move(stored));
  postings_.Add(static_cast<Code>(documents_.size()), words);
}

void Inverter::Drop(std::size_t index) {
  documents_[index].is_dropped = true;
  has_dropped_ = true;
}

void Inverter::Rename(std::size_t index, std::string_view name, std::uint32_t now) {
  text_bytes_ += name.size();
  documents_[index].name = name;
  documents_[index].added = now;
}

void Inverter::SetField(std::size_t index, DocumentField field, std::string_view value) {
  text_bytes_ += value.size();
  documents_[index].fields[static_cast<std::size_t>(field)] = value;
}

std::size_t Inverter::memory() const {
  return postings_.memory() + text_bytes_ + postings_.terms() * kBytesToWriteTerm +
         documents_.capacity() * sizeof(StoredDocument) + documents_.size() * kBytesToWriteDocument;
}

Result<SegmentInfo> Inverter::Write(const std::string& folder, std::uint64_t number) const {
  const std::size_t living = CountLiving();
  if (living == 0) return SegmentInfo{};
  SegmentWriter writer;
  Status status = writer.Create(folder, number, with_positions_, living, postings_.terms());
  if (!status.ok()) return status;
  WriteDocuments(&writer);
  WriteTerms(&writer);
  return writer.Finish(Syncing::kLater);
}

std::size_t Inverter::CountLiving() const {
  return static_cast<std::size_t>(
      std::count_if(documents_.begin(), documents_.end(),
                    [](const StoredDocument& document) { return !document.is_dropped; }));
}

void Inverter::WriteDocuments(SegmentWriter* writer) const {
  for (const StoredDocument& stored : documents_) {
    if (stored.is_dropped) continue;
    SegmentDocument document;
    document.name = stored.name;
    document.words = stored.words;
    document.added = stored.added;
    for (std::size_t i = 0; i < kDocumentFields; ++i) document.fields[i] = stored.fields[i];
    writer->AddDocument(document);
  }
}

void Inverter::WriteTerms(SegmentWriter* writer) const {
  const std::vector<Code> codes = NewCodes();
  std::string record;
  std::string kept;
  for (const PostingTable::TermAddress term : postings_.SortedTerms()) {
    postings_.CopyRecord(term, &record);
    if (!has_dropped_) {
      writer->AddTerm(postings_.TermAt(term), postings_.DocumentsOf(term), record);
      continue;
    }
    kept.clear();
    const auto documents = AppendKeptPostings(record, with_positions_, codes, &kept);
    if (documents.value_or(0) > 0) writer->AddTerm(postings_.TermAt(term), *documents, kept);
  }
}

// Returns the code that each document is written with, by the one that it has here; 0: none.
std::vector<Code> Inverter::NewCodes() const {
  std::vector<Code> codes(documents_.size() + 1);
  Code next = 1;
  for (std::size_t i = 0; i < documents_.size(); ++i) {
    if (!documents_[i].is_dropped) codes[i + 1] = next++;
  }
  return codes;
}

}  // namespace kestan::search
