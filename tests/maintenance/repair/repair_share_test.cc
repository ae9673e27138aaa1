// SPDX-License-Identifier: GPL-3.0-or-later
// How many documents a repair saves whose own records the damage did not touch.
//
// A document's own records are its document and name records and its postings,
// each with the key and the element of a bucket that lead there. It is saved if the new index lists
// it under its code and has every one of its postings. At least 99 of 100 are.
//
// Each index is damaged five times: blocks anywhere, and only blocks with bytes of the header, of
// the directory, of buckets, of records. To see the figures for more indexes than the default:
//   KESTAN_REPAIR_INDEXES=500 repair_tests --gtest_filter='RepairShareTest.*'
#include <gtest/gtest.h>
#include <kestan/format/document_record.h>
#include <kestan/format/posting_list.h>
#include <kestan/format/units.h>
#include <kestan/maintenance.h>

#include <cstdio>
#include <filesystem>
#include <set>

#include "tests/maintenance/index_files.h"
#include "tests/maintenance/maintenance_test.h"
#include "tests/support/environment.h"

namespace kestan_maintenance {
namespace {

using kestan_tests::Dump;
using kestan_tests::Records;

constexpr int kDefaultIndexes = 30;
constexpr double kAim = 0.99;
constexpr std::size_t kElementBytes = 24;

int Indexes() {
  return kestan_tests::NumberFromEnvironment("KESTAN_REPAIR_INDEXES", kDefaultIndexes);
}

// Where the records of a document are in the good file.
struct Own {
  struct Span {
    std::size_t at;
    std::size_t bytes;
    bool is_element;
  };
  std::string name;
  std::vector<Span> spans;
  std::map<std::string, std::string> postings;  // by word
};

bool IsWord(const std::string& key) { return key.size() < 2 || key[1] != '-'; }

// Calls `visit(code, first byte, bytes)` for each posting.
template <typename Visit>
void ForEachPosting(const std::string& value, Visit visit) {
  const DBDatum record = kestan_tests::Datum(value);
  kestan::PostingReader reader(record, true);
  kestan::Posting posting{};
  while (reader.Next(&posting)) visit(posting.code, posting.first_unit * 2, posting.units * 2);
}

void AddSpan(Own* own, const Record& record, std::size_t at, std::size_t bytes) {
  own->spans.push_back({record.element, kElementBytes, true});
  own->spans.push_back({record.data, record.key.size(), false});
  own->spans.push_back({at, bytes, false});
}

std::map<unsigned, Own> DocumentsOf(const FileMap& map) {
  std::map<unsigned, Own> documents;
  for (const Record& record : map.records) {
    const std::size_t value_at = record.data + record.key.size();
    if (record.key.substr(0, 2) == "d-") {
      const unsigned code = kestan::DocumentCode(kestan_tests::Datum(record.value));
      documents[code].name = record.key.substr(2);
      AddSpan(&documents[code], record, value_at, record.value.size());
    } else if (record.key.substr(0, 2) == "c-") {
      const unsigned code = kestan::CodeOfNameKey(kestan_tests::Datum(record.key));
      AddSpan(&documents[code], record, value_at, record.value.size());
    }
  }
  for (const Record& record : map.records) {
    if (!IsWord(record.key)) continue;
    ForEachPosting(record.value, [&](unsigned code, std::size_t at, std::size_t bytes) {
      const auto found = documents.find(code);
      if (found == documents.end()) return;
      AddSpan(&found->second, record, record.data + record.key.size() + at, bytes);
      found->second.postings[record.key] += record.value.substr(at, bytes);
    });
  }
  return documents;
}

struct Damage {
  std::string bytes;             // of the damaged file
  std::set<std::size_t> blocks;  // that are damaged
};

// Returns whether the damage left a document's records alone; with `elements` also where they lie.
bool IsUntouched(const Own& own, const Damage& damage, bool elements) {
  for (const Own::Span& span : own.spans) {
    if (span.bytes == 0 || (span.is_element && !elements)) continue;
    const auto hit = damage.blocks.lower_bound(span.at / kBlockBytes);
    if (hit != damage.blocks.end() && *hit <= (span.at + span.bytes - 1) / kBlockBytes)
      return false;
  }
  return true;
}

Damage Inflict(const std::string& good, const std::vector<std::size_t>& candidates,
               std::size_t count, bool with_noise, Dice* dice) {
  Damage damage{good, {}};
  count = std::min(count, candidates.size());
  while (damage.blocks.size() < count) {
    damage.blocks.insert(candidates[dice->Below(candidates.size())]);
  }
  for (const std::size_t block : damage.blocks) {
    for (std::size_t i = block * kBlockBytes; i < std::min(good.size(), (block + 1) * kBlockBytes);
         ++i) {
      damage.bytes[i] = with_noise ? dice->Byte() : '\0';
    }
  }
  return damage;
}

struct Figures {
  std::uint64_t documents = 0;
  std::uint64_t listed = 0;
  std::uint64_t untouched = 0;  // elements and all
  std::uint64_t saved = 0;      // of these, in full
  std::uint64_t readable = 0;   // untouched except for elements
  std::uint64_t kept = 0;       // of these, listed
  std::uint64_t foreign = 0;    // documents of new indexes that the good ones do not have
  std::uint64_t wrong = 0;      // postings of new indexes that the good ones do not have
  std::uint64_t postings = 0;   // of new indexes
  std::uint64_t faults = 0;     // that a check finds in new indexes

  double Share() const {
    return untouched == 0 ? 1 : static_cast<double>(saved) / static_cast<double>(untouched);
  }
};

bool IsListed(const Records& found, unsigned code, const Own& own) {
  const auto record = found.find("d-" + own.name);
  return record != found.end() && record->second.substr(4) == kestan_tests::Units({code, 0});
}

bool IsSaved(const std::map<unsigned, Own>& found, unsigned code, const Own& own) {
  const auto document = found.find(code);
  if (document == found.end() || document->second.name != own.name) return false;
  for (const auto& [word, posting] : own.postings) {
    const auto kept = document->second.postings.find(word);
    if (kept == document->second.postings.end() || kept->second != posting) return false;
  }
  return true;
}

// Counts what the good index did not have.
void CountForeign(const std::map<unsigned, Own>& documents, const std::map<unsigned, Own>& found,
                  Figures* figures) {
  for (const auto& [code, own] : found) {
    const auto good = documents.find(code);
    if (good == documents.end() || good->second.name != own.name) {
      ++figures->foreign;
      continue;
    }
    figures->postings += own.postings.size();
    for (const auto& [word, posting] : own.postings) {
      const auto kept = good->second.postings.find(word);
      figures->wrong += kept == good->second.postings.end() || kept->second != posting ? 1 : 0;
    }
  }
}

// Repairs the damaged file and counts.
void Measure(const std::map<unsigned, Own>& documents, const Damage& damage, Figures* figures) {
  const kestan_tests::TempDir folder;
  const std::string repaired = folder / "repaired";
  WriteFile(folder / "damaged", damage.bytes);
  kestan::RepairResult result;
  const bool has_any = std::any_of(documents.begin(), documents.end(), [&](const auto& document) {
    return IsUntouched(document.second, damage, true);
  });
  const int error =
      kestan::RepairIndex((folder / "damaged").c_str(), repaired.c_str(), {}, &result);
  if (error != 0 && !has_any) return;  // nothing is left of the file
  ASSERT_EQ(error, 0);
  figures->faults += kestan_tests::FaultsOf(repaired).size();
  const Records records = Dump(repaired);
  const auto found = DocumentsOf(MapOf(ReadFile(repaired)));
  CountForeign(documents, found, figures);
  for (const auto& [code, own] : documents) {
    const bool is_listed = IsListed(records, code, own);
    const bool is_untouched = IsUntouched(own, damage, true);
    const bool is_readable = IsUntouched(own, damage, false);
    ++figures->documents;
    figures->listed += is_listed ? 1 : 0;
    figures->untouched += is_untouched ? 1 : 0;
    figures->saved += is_untouched && IsSaved(found, code, own) ? 1 : 0;
    figures->readable += is_readable ? 1 : 0;
    figures->kept += is_readable && is_listed ? 1 : 0;
  }
}

std::vector<std::size_t> BlocksWith(const FileMap& map, Place place) {
  std::set<std::size_t> blocks;
  for (std::size_t i = 0; i < map.places.size(); ++i) {
    if (map.places[i] == place) blocks.insert(i / kBlockBytes);
  }
  return {blocks.begin(), blocks.end()};
}

std::vector<std::size_t> AllBlocks(const std::string& file) {
  std::vector<std::size_t> blocks((file.size() + kBlockBytes - 1) / kBlockBytes);
  for (std::size_t i = 0; i < blocks.size(); ++i) blocks[i] = i;
  return blocks;
}

std::string RowName(std::size_t count, const char* where, bool with_noise) {
  const std::string blocks = (count < 10 ? " " : "") + std::to_string(count);
  return blocks + " " + where + (with_noise ? ", noise" : ", zeros");
}

void Print(const std::map<std::string, Figures>& figures) {
  std::printf("%-24s %9s %9s %9s %9s %9s %9s %9s %8s %9s %6s %6s\n", "damaged blocks", "documents",
              "listed", "untouched", "saved", "share", "readable", "listed", "foreign", "postings",
              "wrong", "faults");
  for (const auto& [what, of] : figures) {
    std::printf("%-24s", what.c_str());
    for (const std::uint64_t number : {of.documents, of.listed, of.untouched, of.saved}) {
      std::printf(" %9llu", static_cast<unsigned long long>(number));
    }
    std::printf(" %8.3f%%", 100 * of.Share());
    std::printf(
        " %9llu %9llu %8llu %9llu %6llu %6llu\n", static_cast<unsigned long long>(of.readable),
        static_cast<unsigned long long>(of.kept), static_cast<unsigned long long>(of.foreign),
        static_cast<unsigned long long>(of.postings), static_cast<unsigned long long>(of.wrong),
        static_cast<unsigned long long>(of.faults));
  }
}

// Puts `bytes` bytes of the older state of a file in the place of those at `at`.
void MakeStale(const std::string& older, std::size_t at, std::size_t bytes, Damage* damage) {
  for (std::size_t i = at; i < std::min({at + bytes, older.size(), damage->bytes.size()}); ++i) {
    if (damage->bytes[i] != older[i]) damage->blocks.insert(i / kBlockBytes);
    damage->bytes[i] = older[i];
  }
}

// The file as it is where the disk has kept the new state of all but header and directory.
Damage WithStaleHeader(const std::string& good, const std::string& older) {
  Damage damage{good, {}};
  const FileMap map = MapOf(good);
  for (const Place place : {Place::kHeader, Place::kDirectory}) {
    for (const std::size_t block : BlocksWith(map, place)) {
      MakeStale(older, block * kBlockBytes, kBlockBytes, &damage);
    }
  }
  return damage;
}

Damage WithStalePages(const std::string& good, const std::string& older, std::size_t count,
                      Dice* dice) {
  constexpr std::size_t kPageBytes = 4096;
  Damage damage{good, {}};
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t page = dice->Below(older.size() / kPageBytes);
    MakeStale(older, page * kPageBytes, kPageBytes, &damage);
  }
  return damage;
}

// The file cut inside the value of a record whose key has, or has not, a hyphen after its first
// byte; of `family` there.
Damage CutIn(const std::string& good, const FileMap& map, char family, Dice* dice) {
  std::vector<const Record*> candidates;
  for (const Record& record : map.records) {
    const char found = record.key.size() > 1 && record.key[1] == '-' ? record.key[0] : '\0';
    if (found == family && record.value.size() > 1) candidates.push_back(&record);
  }
  Damage damage{good, {}};
  if (candidates.empty()) return damage;
  const Record& record = *candidates[dice->Below(candidates.size())];
  const std::size_t end =
      record.data + record.key.size() + 1 + dice->Below(record.value.size() - 1);
  damage.bytes.resize(end);
  for (std::size_t at = end; at < good.size(); at += kBlockBytes) {
    damage.blocks.insert(at / kBlockBytes);
  }
  damage.blocks.insert(good.size() / kBlockBytes);
  return damage;
}

void ExpectTheAim(const std::map<std::string, Figures>& figures) {
  Print(figures);
  for (const auto& [what, of] : figures) {
    EXPECT_GE(of.Share(), kAim) << what;
    EXPECT_EQ(of.faults, 0U) << what;
  }
}

TEST(RepairShareTest, DocumentsWhoseRecordsAreUntouchedByStalePartsAreSaved) {
  std::map<std::string, Figures> figures;
  for (int i = 0; i < Indexes(); ++i) {
    const kestan_tests::TempDir folder;
    const auto seed = static_cast<unsigned>(i);
    const int documents = 20 + i * 37 % 400;
    MakeIndex(folder / "index", documents, seed);
    const std::string older = ReadFile(folder / "index");
    ChangeIndex(folder / "index", documents, documents + 10 + documents / 4, seed);
    const std::string good = ReadFile(folder / "index");
    const auto known = DocumentsOf(MapOf(good));
    Dice dice(seed);
    Measure(known, WithStaleHeader(good, older), &figures["stale header, directory"]);
    Measure(known, WithStalePages(good, older, 1, &dice), &figures["stale page"]);
    Measure(known, WithStalePages(good, older, 4, &dice), &figures["4 stale pages"]);
  }
  ExpectTheAim(figures);
}

TEST(RepairShareTest, DocumentsWhoseRecordsLieBeforeACutAreSaved) {
  std::map<std::string, Figures> figures;
  for (int i = 0; i < Indexes(); ++i) {
    const kestan_tests::TempDir folder;
    const auto seed = static_cast<unsigned>(i);
    MakeIndex(folder / "index", 20 + i * 37 % 400, seed);
    const std::string good = ReadFile(folder / "index");
    const FileMap map = MapOf(good);
    const auto known = DocumentsOf(map);
    Dice dice(seed);
    Measure(known, CutIn(good, map, '\0', &dice), &figures["cut in postings"]);
    Measure(known, CutIn(good, map, 'd', &dice), &figures["cut in a document"]);
    Measure(known, CutIn(good, map, 'c', &dice), &figures["cut in a name"]);
    Measure(known, CutIn(good, map, 't', &dice), &figures["cut in a title"]);
  }
  ExpectTheAim(figures);
}

TEST(RepairShareTest, DocumentsWhoseRecordsAreUntouchedAreSaved) {
  constexpr std::array<std::size_t, 3> kCounts = {1, 4, 16};
  std::map<std::string, Figures> figures;
  for (int i = 0; i < Indexes(); ++i) {
    const kestan_tests::TempDir folder;
    const auto seed = static_cast<unsigned>(i);
    MakeIndex(folder / "index", 20 + i * 37 % 400, seed);
    const std::string good = ReadFile(folder / "index");
    const FileMap map = MapOf(good);
    const auto documents = DocumentsOf(map);
    const std::size_t count = kCounts[seed % 3];
    const bool with_noise = seed / 3 % 2 == 1;
    Dice dice(seed);
    const auto measure = [&](const char* where, const std::vector<std::size_t>& candidates) {
      const Damage damage = Inflict(good, candidates, count, with_noise, &dice);
      Measure(documents, damage, &figures[RowName(count, where, with_noise)]);
    };
    measure("anywhere", AllBlocks(good));
    measure("header", BlocksWith(map, Place::kHeader));
    measure("directory", BlocksWith(map, Place::kDirectory));
    measure("buckets", BlocksWith(map, Place::kBucket));
    measure("data", BlocksWith(map, Place::kData));
  }
  ExpectTheAim(figures);
}

}  // namespace
}  // namespace kestan_maintenance
