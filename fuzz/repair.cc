// SPDX-License-Identifier: GPL-3.0-or-later
// A small valid index, damaged in its file and records by any bytes, and repaired. There is a new
// index or one line that says why not; the new one has no fault but words that the damage took,
// repairing it changes nothing, and the damaged file stays as it was.
//
// Input: a byte that chooses the index (mod 4) and whether the new one is repaired too (a quarter
// of all bytes), records that are put into it first, and damage to its file. Records: how many (mod
// 8), and for each a byte that chooses the key, or its length if it is to be made of the bytes that
// follow; how long the value is (a byte); the value. Damage: for each change a place (2 bytes,
// counted round the file) and a byte, which takes the place of the one there. A place of 65535 cuts
// the file at 64 times the byte.
#include <kestan/maintenance.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <iterator>

#include "fuzz/support/input.h"
#include "fuzz/support/reporting.h"
#include "fuzz/support/scratch_index.h"
#include "tests/maintenance/maintenance_test.h"

namespace {

using kestan_fuzz::Input;
using kestan_fuzz::RecordList;
using kestan_fuzz::Require;
using kestan_tests::Records;
using kestan_tests::Units;
using namespace std::string_literals;

constexpr unsigned kIndexes = 4;
constexpr unsigned kMostRecords = 8;
constexpr unsigned kCutPlace = 65535;
constexpr std::size_t kCutUnit = 64;

std::string PathOf(const char* name) { return kestan_fuzz::Folder() / name; }

const std::string& DamagedPath() {
  static const std::string path = PathOf("damaged");
  return path;
}

const std::string& RepairedPath() {
  static const std::string path = PathOf("repaired");
  return path;
}

// ---- The valid indexes ----

// Of three documents; 4 is a removed code, 5 and 6 are reusable.
RecordList Small() {
  return {{"g-code", Units({6})},
          {"g-avail", Units({5, 6})},
          {"g-deleted", Units({4})},
          {"g-opts", Units({4, 0})},
          {"d-a", Units({7, 9, 1, 0})},
          {"c-\1\0"s, "a"},
          {"d-bb", Units({8, 9, 2, 0})},
          {"c-\2\0"s, "bb"},
          {"d-", Units({9, 9, 3, 0})},
          {"c-\3\0"s, ""},
          {"cat", Units({1, 2, 1, 3, 2, 1, 1, 4, 1, 2})},
          {"Cat", Units({1, 1, 3})},
          {"dog", Units({1, 1, 2, 3, 1, 1})},
          {"x", Units({5, 1, 1, 2, 1, 2})},
          {"e-mail", Units({1, 1, 4})},
          {"d-day", Units({2, 1, 3})},
          {"t-a", "A title"},
          {"u-bb", std::string("\0user", 5)},
          {"w-stop",
           "\x80"
           "red\x83"
           "dish"}};
}

RecordList WithoutPositions() {
  RecordList records = Small();
  for (auto& [key, value] : records) {
    if (key == "g-opts") value = Units({5, 0});
    if (key == "cat") value = Units({1, 2, 4});
    if (key == "Cat" || key == "e-mail") value = Units({1});
    if (key == "dog" || key == "d-day") value = Units({1, 3});
    if (key == "x") value = Units({5, 2});
  }
  return records;
}

// Of as many documents as fill several buckets, so that there is a directory, and buckets that were
// split lie about.
RecordList Large() {
  constexpr unsigned kDocuments = 40;
  RecordList records{{"g-code", Units({kDocuments})}, {"g-opts", Units({0, 0})}};
  for (unsigned code = 1; code <= kDocuments; ++code) {
    const std::string name = "name" + std::to_string(code);
    records.emplace_back("d-" + name, Units({code, 9, code, 0}));
    records.emplace_back("c-" + Units({code}), name);
    records.emplace_back("word" + std::to_string(code), Units({code, 2, 1, 2}));
  }
  return records;
}

RecordList BaseRecords(unsigned choice) {
  switch (choice) {
    case 0:
      return Small();
    case 1:
      return WithoutPositions();
    case 2:
      return Large();
    default:
      return {{"g-opts", Units({0, 0})}};
  }
}

// ---- Damage ----

std::string KeyFrom(Input& input) {
  const std::array keys = {"cat"s,    "dog"s,    "x"s,       "d-a"s,       "d-bb"s,   "c-\1\0"s,
                           "c-\2\0"s, "g-code"s, "g-avail"s, "g-deleted"s, "g-opts"s, "w-stop"s,
                           "c-\7\0"s, "d-new"s,  "d-day"s,   "c-section"s, "c-ab"s,   "t-shirt"s,
                           "d-"s,     "t-"s,     "w-"s,      "q-x"s,       "e-mail"s, "word7"s};
  const unsigned choice = input.Byte();
  return choice < keys.size() ? keys.at(choice) : input.Bytes(choice % 8);
}

std::string ReadFile(const std::string& path) {
  std::ifstream stream(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

// Makes the file of an index, which is the same as the last one made unless records are put in.
std::string MakeFile(unsigned choice, Input& input) {
  static std::array<std::string, kIndexes> valid;
  const unsigned planted = input.Below(kMostRecords);
  if (planted == 0 && !valid.at(choice).empty()) return valid.at(choice);
  RecordList records = BaseRecords(choice);
  for (unsigned i = 0; i < planted; ++i) {
    std::string key = KeyFrom(input);
    const unsigned length = input.Byte();
    records.emplace_back(std::move(key), input.Bytes(length));
  }
  kestan_fuzz::MakeIndex(DamagedPath(), records);
  std::string bytes = ReadFile(DamagedPath());
  if (planted == 0) valid.at(choice) = bytes;
  return bytes;
}

void Damage(Input& input, std::string* bytes) {
  while (!input.IsEmpty() && !bytes->empty()) {
    const unsigned place = input.Unit();
    const unsigned byte = input.Byte();
    if (place == kCutPlace) {
      bytes->resize(std::min(bytes->size(), byte * kCutUnit));
    } else {
      bytes->at(place % bytes->size()) = static_cast<char>(byte);
    }
  }
}

// ---- Repair ----

bool IsLine(std::string_view line) {
  return !line.empty() && std::all_of(line.begin(), line.end(),
                                      [](char byte) { return byte >= ' ' && byte <= '~'; });
}

struct Repaired {
  int error = 0;
  kestan::RepairResult result;
  std::size_t notes = 0;
  std::size_t documents = 0;  // findings about them, or about files
};

Repaired Repair(const std::string& from, const std::string& to) {
  Repaired repaired;
  const auto take = [&](const kestan::Finding& finding) {
    kestan::ReportAsLine(finding,
                         [](std::string_view line) { Require(IsLine(line), "a line is none"); });
    ++(finding.severity == kestan::Severity::kNote ? repaired.notes : repaired.documents);
  };
  repaired.error =
      kestan::RepairIndexWithFindings(from.c_str(), to.c_str(), take, &repaired.result);
  return repaired;
}

void RequireValid(const std::string& path) {
  Database store;
  Require(store.Open(path.c_str(), 0) == 0, "the new index cannot be opened");
  std::string fault;
  const auto take = [&](const kestan::Finding& finding) {
    if (finding.severity == kestan::Severity::kNote) return;
    kestan::ReportAsLine(finding, [&](std::string_view line) {
      if (!kestan_tests::IsAboutMissingWords(line)) fault = line;
    });
  };
  const kestan::CheckResult check = kestan::CheckIndexWithFindings(store, take);
  if (!fault.empty()) kestan_fuzz::Fail("the new index is at fault: " + fault);
  Require(check.file_error == kestan::StoreError::kNone, "the new index cannot be read");
}

void RequireCounted(const Repaired& repaired, const Records& records) {
  const kestan::RepairResult& result = repaired.result;
  Require(result.records == records.size(), "the new index has another number of records");
  Require(
      result.saved + result.words_missing + result.half_written + result.lost == repaired.documents,
      "a document has no line, or more than one");
}

// A valid index stays as it is.
void RequireKept(const Records& records) {
  static const std::string path = PathOf("again");
  unlink(path.c_str());
  const Repaired again = Repair(RepairedPath(), path);
  Require(again.error == 0, "the new index cannot be repaired");
  Require(again.result.lost == 0 && again.result.dropped == 0, "a second repair loses something");
  Require(kestan_tests::Dump(path) == records, "a second repair changes something");
}

void RepairAndJudge(bool twice) {
  unlink(RepairedPath().c_str());
  const Repaired repaired = Repair(DamagedPath(), RepairedPath());
  const bool exists = access(RepairedPath().c_str(), F_OK) == 0;
  Require(exists == (repaired.error == 0), "there is a new file, or there is none");
  if (!exists) return Require(repaired.documents == 1, "no reason, or more than one");
  RequireValid(RepairedPath());
  const Records records = kestan_tests::Dump(RepairedPath());
  RequireCounted(repaired, records);
  if (twice) RequireKept(records);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input(data, size);
  const unsigned choice = input.Byte();
  std::string bytes = MakeFile(choice % kIndexes, input);
  Damage(input, &bytes);
  std::ofstream(DamagedPath(), std::ios::binary | std::ios::trunc) << bytes;
  {
    const kestan_fuzz::Quiet quiet;
    RepairAndJudge(choice / kIndexes % 4 == 0);
  }
  Require(ReadFile(DamagedPath()) == bytes, "the damaged file was changed");
  return 0;
}
