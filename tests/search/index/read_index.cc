// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/search/index/read_index.h"

#include <kestan/tokenizer.h>

#include <filesystem>
#include <memory>
#include <stdexcept>

#include "kestan/format/posting_cursor.h"
#include "search/files/output_file.h"
#include "search/index/manifest/manifest.h"
#include "search/segment/segment.h"

namespace kestan_tests {
namespace {

using kestan::Code;
using kestan::search::DocumentField;
using kestan::search::FileSummary;
using kestan::search::Manifest;
using kestan::search::Result;
using kestan::search::Segment;
using kestan::search::SegmentInfo;
using kestan::search::Status;

void Require(bool condition, const std::string& what) {
  if (!condition) throw std::runtime_error(what);
}

template <typename T>
T Value(Result<T> result) {
  Require(result.ok(), result.status().ToString());
  return std::move(*result);
}

void CheckFile(const std::string& path, const FileSummary& expected) {
  Require(Value(kestan::search::SummaryOf(path)) == expected, path + " has changed");
}

void CheckFiles(const std::string& folder, const SegmentInfo& info) {
  CheckFile(folder + "/" + SegmentFile(info), info.segment);
  CheckFile(folder + "/" + TermsFile(info), info.terms);
  CheckFile(folder + "/" + TableFile(info), info.table);
  if (info.edit_number != 0) CheckFile(folder + "/" + EditsFile(info), info.edits);
}

std::map<Code, ReadDocument> ReadTexts(const Segment& segment) {
  std::map<Code, ReadDocument> documents;
  for (std::size_t i = 1; i <= segment.size(); ++i) {
    const auto code = static_cast<Code>(i);
    if (segment.IsRemoved(code)) continue;
    ReadDocument& document = documents[code];
    document.title = Value(segment.FieldOf(code, DocumentField::kTitle));
    document.summary = Value(segment.FieldOf(code, DocumentField::kSummary));
    document.host_data = Value(segment.FieldOf(code, DocumentField::kHostData));
  }
  Require(documents.size() == segment.info().documents - segment.info().removed, "wrong count");
  return documents;
}

void ReadWords(const Segment& segment, std::map<Code, ReadDocument>* documents) {
  const Status status = segment.terms().ForEach("", [&](const auto& entry) {
    const auto postings = Value(segment.PostingsOf(entry));
    unsigned count = 0;
    for (kestan::PostingCursor cursor(postings.record.view(), segment.with_positions());
         cursor.Next(); ++count) {
      const auto document = documents->find(cursor.code());
      if (document == documents->end()) continue;
      const auto positions = cursor.positions();
      document->second.words[std::string(entry.term)] = {positions.begin(), positions.end()};
    }
    Require(count == entry.documents, "wrong document frequency");
    return true;
  });
  Require(status.ok(), status.ToString());
}

}  // namespace

ReadDocuments ReadIndex(const std::string& folder) {
  ReadDocuments all;
  const Manifest manifest = Value(kestan::search::ReadManifest(folder));
  for (const SegmentInfo& info : manifest.segments) {
    CheckFiles(folder, info);
    const auto segment = Value(Segment::Open(folder, info, manifest.with_positions));
    std::map<Code, ReadDocument> documents = ReadTexts(*segment);
    ReadWords(*segment, &documents);
    for (auto& [code, document] : documents) {
      const std::string name(segment->NameOf(code));
      Require(segment->FindDocument(name) == code, name + " is not found");
      Require(all.emplace(name, std::move(document)).second, name + " lives twice");
    }
  }
  return all;
}

std::map<std::string, std::vector<unsigned>> WordsOf(const std::string& text) {
  std::map<std::string, std::vector<unsigned>> words;
  const kestan::Tokenizer tokenizer(text);
  for (const auto& word : tokenizer.words()) {
    words[std::string(word.bytes)] = {word.positions.begin(), word.positions.end()};
  }
  return words;
}

std::set<std::string> FilesIn(const std::string& folder) {
  std::set<std::string> names;
  for (const auto& file : std::filesystem::directory_iterator(folder)) {
    names.insert(file.path().filename().string());
  }
  return names;
}

std::set<std::string> NamedFiles(const std::string& folder) {
  std::set<std::string> names = {"MANIFEST", "writer.lock"};
  for (const SegmentInfo& info : Value(kestan::search::ReadManifest(folder)).segments) {
    names.insert({SegmentFile(info), TermsFile(info), TableFile(info)});
    if (info.edit_number != 0) names.insert(EditsFile(info));
  }
  return names;
}

void MakeOlder(const std::string& folder) {
  auto manifest = kestan::search::ReadManifest(folder);
  if (!manifest.ok()) throw std::runtime_error(manifest.status().ToString());
  manifest->properties.erase("analyzer");
  const auto status = kestan::search::WriteManifest(folder, *manifest);
  if (!status.ok()) throw std::runtime_error(status.ToString());
}

}  // namespace kestan_tests
