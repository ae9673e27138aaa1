// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/faults/maintenance_session.h"

#include <kestan/maintenance.h>
#include <kestan/storage/database.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string_view>

#include "tests/maintenance/index_files.h"

namespace kestan_faults {
namespace {

// What was given, as one number.
class Digest {
 public:
  void Add(std::string_view bytes) {
    for (const char byte : bytes) Mix(static_cast<unsigned char>(byte));
    Mix(256);
  }

  void Add(std::uint64_t number) {
    for (int shift = 0; shift < 64; shift += 16)
      Mix(static_cast<unsigned>(number >> shift) & 0xffff);
  }

  kestan::TakeLine Taker() {
    return [this](std::string_view line) { Add(line); };
  }

  // Notes "WHAT: RESULT, given NUMBER" of a step that succeeded, else "WHAT: RESULT".
  void Note(Transcript* transcript, std::string_view what, long result, bool succeeded) const {
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), succeeded ? "%ld, given %016llx" : "%ld", result,
                  static_cast<unsigned long long>(value_));
    transcript->Add(what, std::string_view(text.data()));
  }
  void Note(Transcript* transcript, std::string_view what, kestan::StoreError error) const {
    Note(transcript, what, static_cast<int>(error), error == kestan::StoreError::kNone);
  }

 private:
  void Mix(unsigned value) { value_ = (value_ ^ value) * 0x100000001b3U; }

  std::uint64_t value_ = 0xcbf29ce484222325U;
};

void AddNumbers(const kestan::IndexStatistics& numbers, Digest* digest) {
  for (const std::uint64_t number :
       {numbers.documents, numbers.removed_codes, numbers.reusable_codes, numbers.highest_code,
        numbers.option_flags, numbers.words, numbers.unused, numbers.postings, numbers.positions,
        numbers.record_bytes, numbers.removed_posting_bytes, numbers.smallest_file_bytes}) {
    digest->Add(number);
  }
}

void AddDocument(const kestan::StoredDocument& document, Digest* digest) {
  digest->Add(document.name);
  digest->Add(document.timestamp);
  digest->Add(document.title.value_or("(none)"));
  digest->Add(document.summary.value_or("(none)"));
  digest->Add(document.user.value_or("(none)"));
  for (std::size_t i = 0; i < document.word_count; ++i) {
    digest->Add(document.words[i].bytes);
    digest->Add(document.words[i].position);
  }
}

// Returns the first line of `text` and takes it away.
std::string_view NextLine(std::string_view* text) {
  const std::string_view line = text->substr(0, text->find('\n'));
  text->remove_prefix(line.size() + (line.size() < text->size() ? 1 : 0));
  return line;
}

bool HasSucceeded(std::string_view line) { return line.find(", given ") != std::string_view::npos; }

}  // namespace

MaintenanceFiles::MaintenanceFiles() {
  constexpr int kDocuments = 5;
  constexpr unsigned kSeed = 3;  // an index that was shrunk
  kestan_maintenance::MakeIndex(index_, kDocuments, kSeed);
  std::string bytes = kestan_maintenance::ReadFile(index_);
  bytes.replace(bytes.size() / 2, kestan_maintenance::kBlockBytes, kestan_maintenance::kBlockBytes,
                '\0');
  kestan_maintenance::WriteFile(damaged_, bytes);

  Database store;
  EXPECT_EQ(store.Open(index_.c_str(), 0), 0);
  EXPECT_EQ(kestan::DumpIndex(store, [&](std::string_view line) { dump_.emplace_back(line); }),
            kestan::StoreError::kNone);
  store.Close();

  const auto transcript = std::make_unique<Transcript>();
  Run(transcript.get());
  undisturbed_ = transcript->text();
  loaded_records_ = kestan_tests::Dump(loaded_);
  repaired_records_ = kestan_tests::Dump(repaired_);
  EXPECT_EQ(loaded_records_, kestan_tests::Dump(index_));
  Clean();
}

void MaintenanceFiles::Run(Transcript* transcript) const {
  ReadIndex(transcript);
  LoadDump(transcript);
  Repair(transcript);
}

void MaintenanceFiles::ReadIndex(Transcript* transcript) const {
  Database store;
  transcript->Add("open", store.Open(index_.c_str(), 0));

  Digest lines;
  const kestan::CheckResult check = kestan::CheckIndex(store, lines.Taker());
  lines.Note(transcript, "check", check.file_error);

  Digest numbers;
  const kestan::IndexStatistics statistics = kestan::ReadStatistics(store);
  AddNumbers(statistics, &numbers);
  numbers.Note(transcript, "statistics", statistics.file_error);

  Digest documents;
  const auto error = kestan::ReadDocuments(
      store, [&](const kestan::StoredDocument& document) { AddDocument(document, &documents); });
  documents.Note(transcript, "documents", error);

  Digest dump;
  dump.Note(transcript, "dump", kestan::DumpIndex(store, dump.Taker()));
  transcript->Add("close", store.Close());
}

void MaintenanceFiles::LoadDump(Transcript* transcript) const {
  Database target;
  transcript->Add("open a new one", target.Open(loaded_.c_str(), 1));
  auto next = dump_.begin();
  const auto give = [&](std::string_view* line) {
    if (next == dump_.end()) return false;
    *line = *next++;
    return true;
  };
  Digest complaints;
  const bool is_loaded = kestan::LoadIndex(give, target, complaints.Taker());
  complaints.Note(transcript, "load", is_loaded ? 1 : 0, is_loaded);
  transcript->Add("close the new one", target.Close());
}

void MaintenanceFiles::Repair(Transcript* transcript) const {
  Digest lines;
  kestan::RepairResult result;
  const int error =
      kestan::RepairIndex(damaged_.c_str(), repaired_.c_str(), lines.Taker(), &result);
  for (const std::uint64_t number : {result.saved, result.words_missing, result.half_written,
                                     result.lost, result.records, result.dropped}) {
    lines.Add(number);
  }
  lines.Note(transcript, "repair", error, error == 0);
}

void MaintenanceFiles::Check(const std::string& transcript) const {
  std::string_view expected = undisturbed_;
  std::string_view rest = transcript;
  while (!expected.empty()) {
    const std::string_view wanted = NextLine(&expected);
    const std::string_view line = NextLine(&rest);
    EXPECT_EQ(line.substr(0, line.find(':')), wanted.substr(0, wanted.find(':')));
    if (HasSucceeded(line)) {
      EXPECT_EQ(line, wanted);
    }
  }
  if (transcript.find("\nload: 1,") != std::string::npos) {
    EXPECT_EQ(kestan_tests::Dump(loaded_), loaded_records_);
  }
  if (transcript.find("\nrepair: 0,") != std::string::npos) {
    EXPECT_EQ(kestan_tests::Dump(repaired_), repaired_records_);
  } else {
    EXPECT_FALSE(std::filesystem::exists(repaired_));
  }
}

void MaintenanceFiles::Clean() const {
  std::filesystem::remove(loaded_);
  std::filesystem::remove(repaired_);
}

}  // namespace kestan_faults
