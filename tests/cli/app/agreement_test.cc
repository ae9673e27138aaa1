// SPDX-License-Identifier: GPL-3.0-or-later
// All commands agree about a damaged index: where `check` finds no fault, `dump` succeeds, and
// `search`, `list` and `stats` answer as they do on the undamaged file. The one exception is damage
// that leaves no trace: another text (title, summary, user record, word list) or none, another time
// of a document, and other capitals of a word are all valid.
//
// Some hundreds of damaged files by default; for ten times as many:
//   KESTAN_AGREEMENT=10 cli_tests --gtest_filter='AgreementTest.*'
#include <gtest/gtest.h>
#include <kestan/maintenance/salvage/gdbm_layout.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <set>

#include "tests/cli/command_test.h"
#include "tests/support/environment.h"

namespace kestan_tests {
namespace {

namespace gdbm = kestan::gdbm;

// Where something lies in the good file.
struct Span {
  std::size_t at;
  std::size_t bytes;
};

using Spans = std::vector<Span>;

template <typename Structure>
Structure Read(const std::string& file, std::size_t at) {
  Structure structure;
  std::memcpy(&structure, &file.at(at), sizeof structure);
  return structure;
}

// What lies where in an index file.
struct Places {
  explicit Places(const std::string& file) {
    const auto header = Read<gdbm::Header>(file, 0);
    headers = {{0, sizeof header + sizeof(gdbm::FreeList) + 4 * sizeof(gdbm::FreeSpace)}};
    directory = {{Size(header.directory), Size(header.directory_bytes)}};
    std::set<gdbm::Offset> found;
    for (std::size_t at = 0; at < directory[0].bytes; at += sizeof(gdbm::Offset)) {
      found.insert(Read<gdbm::Offset>(file, directory[0].at + at));
    }
    for (const gdbm::Offset bucket : found) AddBucket(file, Size(bucket), header);
  }

  Spans headers;
  Spans directory;
  Spans buckets;
  Spans heads;
  Spans elements;
  Spans postings;  // values of records
  Spans codes;     // those of documents, names, counter and lists of codes, without times
  Spans texts;     // titles, summaries, user records, word lists, times

 private:
  template <typename Number>
  static std::size_t Size(Number number) {
    return static_cast<std::size_t>(number);
  }

  void AddBucket(const std::string& file, std::size_t bucket, const gdbm::Header& header) {
    buckets.push_back({bucket, Size(header.bucket_bytes)});
    heads.push_back({bucket, sizeof(gdbm::BucketHead)});
    for (int i = 0; i < header.bucket_elements; ++i) {
      const auto at = Size(gdbm::ElementAt(bucket, static_cast<std::uint32_t>(i)));
      const auto element = Read<gdbm::Element>(file, at);
      if (element.hash != gdbm::kNoElement) AddRecord(file, at, element);
    }
  }

  void AddRecord(const std::string& file, std::size_t at, const gdbm::Element& element) {
    elements.push_back({at, sizeof element});
    const std::string key = file.substr(Size(element.data), Size(element.key_bytes));
    const Span value{Size(element.data) + key.size(), Size(element.value_bytes)};
    if (value.bytes == 0) return;
    const bool is_system = key.size() > 1 && key[1] == '-';
    if (!is_system) {
      postings.push_back(value);
    } else if (key[0] == 'd') {
      texts.push_back({value.at, 4});
      codes.push_back({value.at + 4, 4});
    } else {
      (key[0] == 'c' || key[0] == 'g' ? codes : texts).push_back(value);
    }
  }
};

class AgreementTest : public CommandTest {
 protected:
  void SetUp() override {
    Kestan engine;
    ASSERT_EQ(engine.OpenIndex(Path("my.index").c_str(), 1), 0);
    for (int i = 0; i < 60; ++i) AddTo(engine, i, TextOf(i));
    older_ = Closed(engine);
    for (int i = 0; i < 60; i += 5) RemoveFrom(engine, i);
    for (int i = 1; i < 60; i += 7) AddTo(engine, i, TextOf(i + 100) + " Later later");
    engine.ShrinkIndex();
    old_ = Closed(engine);
    for (int i = 60; i < 75; ++i) AddTo(engine, i, TextOf(i) + " Newest of all");
    RemoveFrom(engine, 3);
    good_ = Closed(engine);
    engine.CloseIndex();
    const Outcome check = Run({"check", "my.index"});
    ASSERT_EQ(check.status, 0) << check;
    answers_ = Answers("my.index");
    for (const Outcome& answer : answers_) ASSERT_EQ(answer.status, 0) << answer.err;
  }

  void TearDown() override {
    std::printf("%d damaged files: %d with faults, %d without\n", found_ + clean_, found_, clean_);
  }

  // Flips one bit in `count` places.
  void Flip(const Spans& spans, const std::string& what, int count, bool is_text = false) {
    for (int i = 0; i < count * Times(); ++i) {
      const Span& span = spans.at(Below(spans.size()));
      const std::size_t at = span.at + Below(span.bytes);
      std::string bytes = good_;
      bytes.at(at) = static_cast<char>(bytes[at] ^ 1 << Below(8));
      Judge(bytes, what + ", at " + std::to_string(at), is_text);
    }
  }

  // Puts the bytes of an older state of the file in the place of each of `count` of the spans.
  void Stale(const Spans& spans, const std::string& what, int count) {
    for (const std::string* state : {&old_, &older_}) {
      for (int i = 0; i < count * Times(); ++i) {
        const Span& span = spans.at(Below(spans.size()));
        if (span.at + span.bytes > state->size()) continue;
        std::string bytes = good_;
        bytes.replace(span.at, span.bytes, *state, span.at, span.bytes);
        if (bytes == good_) continue;
        Judge(bytes, what + ", at " + std::to_string(span.at), false);
      }
    }
  }

  void Cut(const Spans& spans, const std::string& what, int count) {
    for (int i = 0; i < count * Times(); ++i) {
      const Span& span = spans.at(Below(spans.size()));
      const std::size_t at = span.at + Below(span.bytes);
      Judge(good_.substr(0, at), what + ", at " + std::to_string(at), false);
    }
  }

  // Every piece of 4 KB.
  Spans Pages() const {
    constexpr std::size_t kPageBytes = 4096;
    Spans pages;
    for (std::size_t at = 0; at < good_.size(); at += kPageBytes) {
      pages.push_back({at, std::min(kPageBytes, good_.size() - at)});
    }
    return pages;
  }

  // The same for all files.
  Places GoodPlaces() const { return Places(good_); }

 private:
  static int Times() { return NumberFromEnvironment("KESTAN_AGREEMENT", 1); }

  static void AddTo(Kestan& engine, int number, const std::string& text) {
    const std::string name = NameOf(number);
    engine.AddDocumentWords(name.c_str(), text.c_str());
    ASSERT_EQ(engine.DBPutTitle(name.c_str(), ("About " + std::to_string(number)).c_str()), 0);
    ASSERT_EQ(engine.DBPutSummary(name.c_str(), text.c_str()), 0);
    ASSERT_EQ(engine.DBPutUser(name.c_str(), "mine"), 0);
  }

  static void RemoveFrom(Kestan& engine, int number) {
    const std::string name = NameOf(number);
    ASSERT_EQ(engine.RemoveDocumentWords(name.c_str()), 0);
    for (const auto remove : {&Kestan::DBDelTitle, &Kestan::DBDelSummary, &Kestan::DBDelUser}) {
      ASSERT_EQ((engine.*remove)(name.c_str()), 0);
    }
  }

  // Returns the bytes of the index file after it was closed, and opens it again.
  std::string Closed(Kestan& engine) const {
    engine.CloseIndex();
    std::string bytes = IndexBytes();
    EXPECT_EQ(engine.OpenIndex(Path("my.index").c_str(), 1), 0);
    return bytes;
  }

  static std::string NameOf(int number) { return "docs/text " + std::to_string(number); }

  static std::string TextOf(int number) {
    std::string text = "About text" + std::to_string(number) + "\n\nThe cat Sat on";
    for (int i = 0; i < 30; ++i) {
      const int word = (number * 37 + i * i * 11) % 300;
      const char ending[] = {static_cast<char>('a' + word % 17), static_cast<char>('b' + word % 9)};
      text += (word % 6 == 0 ? " Word" : " word") + std::string(ending, 2);
    }
    return text + (number % 3 == 0 ? " the End" : " and the end");
  }

  std::size_t Below(std::size_t limit) { return dice_() % limit; }

  // The answers of every command that reads; of a dump only whether it succeeds.
  std::vector<Outcome> Answers(const std::string& index) {
    std::vector<Outcome> answers{Run({"dump", index})};
    answers.back().out.clear();
    answers.push_back(Run({"list", index}));
    answers.push_back(Run({"stats", index}));
    const std::vector<std::string> queries{"the cat",        "Wordab OR wordhi OR later",
                                           "\"cat sat on\"", "wordch NOT later",
                                           "w* OR n*",       "Newest OR Later OR End"};
    for (const std::string& query : queries) {
      answers.push_back(Run({"search", "--limit", "1000", index, query}));
    }
    return answers;
  }

  // Words with capitals are also kept in lower case. These give how many words a document has,
  // but not which of them had capitals.
  static bool IsUnconfirmed(const std::string& key) {
    if (key.size() > 1 && key[1] == '-') return std::strchr("tsuw", key[0]) != nullptr;
    return std::any_of(key.begin(), key.end(), [](char byte) { return (byte & 0x20) == 0; });
  }

  // Whether the two files differ, and only in records that no other record confirms.
  bool DiffersOnlyInUnconfirmed() {
    Records good = Dump(Path("my.index"));
    Records damaged = Dump(Path("damaged"));
    if (good == damaged) return false;
    for (Records* records : {&good, &damaged}) {
      for (auto record = records->begin(); record != records->end();) {
        if (record->first == "g-opts") record->second[0] &= 1;  // the others are the host's own
        if (record->first == "g-opts") record->second.resize(1);
        record = IsUnconfirmed(record->first) ? records->erase(record) : std::next(record);
      }
    }
    return good == damaged;
  }

  void Judge(const std::string& bytes, const std::string& what, bool is_text) {
    Write("damaged", bytes);
    const Outcome check = Run({"check", "--quiet", "damaged"});
    ASSERT_TRUE(check.status >= 0 && check.status <= 2) << what << "\n" << check;
    ++(check.status == 0 ? clean_ : found_);
    if (check.status != 0) return;
    if (is_text) {
      EXPECT_EQ(Run({"dump", "damaged"}).status, 0) << what;
      return;
    }
    if (DiffersOnlyInUnconfirmed()) return;
    const std::vector<Outcome> answers = Answers("damaged");
    for (std::size_t i = 0; i < answers.size(); ++i) {
      EXPECT_EQ(answers[i], answers_[i]) << what << ", command " << i;
    }
  }

  std::string older_;
  std::string old_;
  std::string good_;
  std::vector<Outcome> answers_;
  std::mt19937 dice_;
  int found_ = 0;
  int clean_ = 0;
};

TEST_F(AgreementTest, AboutElements) { Flip(GoodPlaces().elements, "element", 100); }

TEST_F(AgreementTest, AboutHeadsOfBuckets) { Flip(GoodPlaces().heads, "head of a bucket", 40); }

TEST_F(AgreementTest, AboutTheDirectory) { Flip(GoodPlaces().directory, "directory", 30); }

TEST_F(AgreementTest, AboutTheHeader) { Flip(GoodPlaces().headers, "header", 40); }

TEST_F(AgreementTest, AboutPostings) { Flip(GoodPlaces().postings, "postings", 60); }

TEST_F(AgreementTest, AboutCodes) { Flip(GoodPlaces().codes, "codes and names", 40); }

TEST_F(AgreementTest, AboutTexts) { Flip(GoodPlaces().texts, "text", 10, true); }

TEST_F(AgreementTest, AboutStaleParts) {
  Stale(GoodPlaces().headers, "older header", 1);
  Stale(GoodPlaces().directory, "older directory", 1);
  Stale(GoodPlaces().buckets, "older bucket", 20);
  Stale(Pages(), "older page", 20);
}

TEST_F(AgreementTest, AboutCutFiles) {
  Cut(GoodPlaces().postings, "cut in postings", 4);
  Cut(GoodPlaces().codes, "cut in codes", 4);
  Cut(GoodPlaces().texts, "cut in a text", 4);
  Cut(GoodPlaces().buckets, "cut in a bucket", 4);
}

}  // namespace
}  // namespace kestan_tests
