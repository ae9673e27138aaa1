// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/building/plain_documents.h"

#include <kestan/format/document_record.h>
#include <kestan/tokenizer.h>

#include <ostream>

namespace kestan_tests {
namespace {

using kestan::Code;
using kestan::SideRecord;

// The posting records of the documents, by word.
std::map<std::string, std::string> Invert(const PlainDocuments& documents, bool with_positions) {
  std::map<std::string, std::string> records;
  Code code = 0;
  for (const PlainDocument& document : documents) {
    ++code;
    const kestan::Tokenizer words(document.text);
    for (const kestan::Tokenizer::Word& word : words.words()) {
      std::string* const record = &records[std::string(word.bytes)];
      if (with_positions) {
        kestan::AppendPosting(code, word.positions, record);
      } else {
        kestan::AppendPosting(code, record);
      }
    }
  }
  return records;
}

void AddDocuments(kestan::IndexBuilder* builder, const PlainDocuments& documents,
                  const std::vector<std::uint32_t>& times) {
  Code code = 0;
  for (const PlainDocument& document : documents) {
    ++code;
    builder->AddDocument(code, document.name, times[code - 1u]);
    for (const auto& [kind, text] : document.side_records) {
      builder->AddSideRecord(kind, document.name, text);
    }
  }
}

}  // namespace

void showValue(const PlainDocument& document, std::ostream& out) {
  out << "'" << document.name << "': '" << document.text << "'";
  for (const auto& [kind, text] : document.side_records) {
    out << ", side record " << static_cast<int>(kind) << " '" << text << "'";
  }
}

void AddTo(Kestan* engine, const PlainDocuments& documents) {
  for (const PlainDocument& document : documents) {
    const char* const name = document.name.c_str();
    engine->AddDocumentWords(name, document.text.c_str());
    for (const auto& [kind, text] : document.side_records) {
      if (kind == SideRecord::kTitle) engine->DBPutTitle(name, text.c_str());
      if (kind == SideRecord::kSummary) engine->DBPutSummary(name, text.c_str());
      if (kind == SideRecord::kUser) engine->DBPutUser(name, text.c_str());
    }
  }
}

kestan::StoreError BuildIndex(const std::string& path, const PlainDocuments& documents,
                              const std::vector<std::uint32_t>& times, std::uint32_t option_flags,
                              std::size_t expected_records) {
  kestan::IndexBuilder builder;
  const kestan::StoreError error = builder.Open(path.c_str(), {option_flags, expected_records});
  if (error != kestan::StoreError::kNone) return error;
  AddDocuments(&builder, documents, times);
  for (const auto& [word, record] : Invert(documents, kestan::KeepsPositions(option_flags))) {
    builder.AddWord(word, record);
  }
  return builder.Finish();
}

std::vector<std::uint32_t> TimesIn(const Records& records, const PlainDocuments& documents) {
  std::vector<std::uint32_t> times;
  for (const PlainDocument& document : documents) {
    const std::string& value = records.at("d-" + document.name);
    times.push_back(kestan::DocumentTimestamp({value.data(), kestan::kDocumentRecordBytes}));
  }
  return times;
}

Records WithoutTimes(Records records) {
  for (auto& [key, value] : records) {
    const bool is_document = key.compare(0, 2, "d-") == 0;
    if (is_document && value.size() == kestan::kDocumentRecordBytes) {
      value.replace(0, kestan::kTimestampBytes, kestan::kTimestampBytes, '\0');
    }
  }
  return records;
}

}  // namespace kestan_tests
