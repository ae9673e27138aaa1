// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/faults/search/asked_index.h"

#include <functional>
#include <stdexcept>

namespace kestan_faults {
namespace {

using kestan::search::Document;
using kestan::search::DocumentField;
using kestan::search::DocumentInfo;
using kestan::search::IndexReader;
using kestan::search::IndexWriter;
using kestan::search::Result;
using kestan::search::SearchOptions;
using kestan::search::Status;
using kestan::search::StatusCode;
using kestan::search::WriterOptions;

using Question = std::function<Result<std::string>(const IndexReader&)>;

void Require(const Status& status) {
  if (!status.ok()) throw std::runtime_error(status.ToString());
}

Document MakeDocument(const std::string& name, const std::string& text) {
  Document document;
  document.name = name;
  document.text = text;
  document.title = "title of " + name;
  document.host_data = "data of " + name;
  return document;
}

Document TryMakeDocument(const char* name, const char* text) {
  return TryTwice([&] { return MakeDocument(name, text); });
}

std::string TextOf(const DocumentInfo& info) {
  return info.name + "|" + std::to_string(info.words) + "|" + info.title + "|" + info.summary +
         "|" + info.host_data + "\n";
}

Question Searching(const std::string& query) {
  return [query](const IndexReader& reader) -> Result<std::string> {
    const auto results = reader.Search(query);
    if (!results.ok()) return results.status();
    std::string text = std::to_string(results->total) + "\n";
    for (const auto& hit : results->hits) {
      text += hit.name + "|" + hit.title + "|" + std::to_string(hit.score) + "\n";
    }
    for (const auto& suggestion : results->suggestions) text += "suggested " + suggestion + "\n";
    return text;
  };
}

Question Counting(const std::string& query) {
  return [query](const IndexReader& reader) -> Result<std::string> {
    const auto count = reader.Count(query);
    if (!count.ok()) return count.status();
    return std::to_string(*count);
  };
}

Question Finding(const std::string& name) {
  return [name](const IndexReader& reader) -> Result<std::string> {
    const auto info = reader.FindDocument(name);
    if (info.ok()) return TextOf(*info);
    if (info.status().code() == StatusCode::kNotFound) return std::string("none");
    return info.status();
  };
}

Result<std::string> ListTerms(const IndexReader& reader) {
  const auto terms = reader.Terms("");
  if (!terms.ok()) return terms.status();
  std::string text;
  for (const auto& info : *terms) text += info.term + " " + std::to_string(info.documents) + "\n";
  return text;
}

Result<std::string> ListDocuments(const IndexReader& reader) {
  std::string text;
  const Status status = reader.ForEachDocument([&text](const DocumentInfo& info) {
    text += TextOf(info);
    return true;
  });
  if (!status.ok()) return status;
  return text;
}

Result<std::string> ListStatistics(const IndexReader& reader) {
  const auto statistics = reader.Statistics();
  const auto property = reader.Property("key");
  if (!property.ok()) return property.status();
  return std::to_string(statistics.documents) + " " + std::to_string(statistics.words) + " " +
         *property;
}

std::vector<Question> Questions() {
  std::vector<Question> questions = {ListTerms, ListDocuments, ListStatistics};
  for (const char* const query : {"common", "river banks", "\"cold river\"", "ba*", "rivre~",
                                  "common NOT river", "missing"}) {
    questions.push_back(Searching(query));
    questions.push_back(Counting(query));
  }
  for (const char* const name : {"a0", "a1", "a2", "moved", "a4", "b0", "b3", "none of these"}) {
    questions.push_back(Finding(name));
  }
  return questions;
}

}  // namespace

Result<IndexWriter> OpenWriter(const std::string& folder) {
  WriterOptions options;
  options.threads = 1;
  return IndexWriter::Open(folder, options);
}

void MakeIndex(const std::string& folder) {
  auto writer = OpenWriter(folder);
  Require(writer.status());
  for (int i = 0; i < 6; ++i) {
    const std::string number = std::to_string(i);
    Require(writer->Add(MakeDocument("a" + number, "common cold river number" + number)));
  }
  writer->SetProperty("key", "a value that takes memory of its own");
  Require(writer->Commit());
  for (int i = 0; i < 4; ++i) {
    const std::string number = std::to_string(i);
    Require(writer->Add(MakeDocument("b" + number, "common banks of a river bank" + number)));
  }
  Require(writer->Remove("a1"));
  Require(writer->Rename("a3", "moved"));
  Require(writer->SetField("a2", DocumentField::kTitle, "another title"));
  Require(writer->Commit());
}

Status ChangeIndex(IndexWriter* writer) {
  Status first;
  const auto keep = [&first](const Status& status) {
    if (first.ok()) first = status;
  };
  keep(writer->Add(TryMakeDocument("a0", "common words in place of others")));
  keep(writer->Add(TryMakeDocument("c0", "one more river")));
  keep(writer->Add(TryMakeDocument("moved", "moved again")));
  keep(writer->Remove("b1"));
  keep(writer->Rename("b2", "renamed"));
  keep(writer->Commit());
  return first;
}

std::string RefusalOf(const Status& status) {
  const bool is_one_line = !status.message().empty() &&
                           status.ToString().find('\n') == std::string::npos &&
                           !status.file().empty();
  if (is_one_line && status.code() == StatusCode::kDamaged) return "kDamaged";
  if (is_one_line && status.code() == StatusCode::kVersion) return "kVersion";
  return "wrong: " + std::to_string(static_cast<int>(status.code())) + " " + status.ToString();
}

bool IsRefused(const std::string& answer) { return answer == "kDamaged" || answer == "kVersion"; }

std::vector<std::string> Ask(const std::string& folder) {
  std::vector<std::string> answers;
  for (const Question& question : Questions()) {
    const auto reader = IndexReader::Open(folder);
    const auto answer = reader.ok() ? question(*reader) : Result<std::string>(reader.status());
    answers.push_back(answer.ok() ? *answer : RefusalOf(answer.status()));
  }
  return answers;
}

}  // namespace kestan_faults
