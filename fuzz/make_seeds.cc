// SPDX-License-Identifier: GPL-3.0-or-later
// Writes the hand-made seeds: make_seeds fuzz/seeds. Those that fuzzing found stay as they are.
#include <kestan/kestan.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "tests/indexing/planting.h"

namespace {

using kestan_tests::EncodedPosting;
using kestan_tests::From;
using kestan_tests::Times;
using kestan_tests::Units;
using namespace std::string_literals;

std::filesystem::path folder;

void Write(const std::string& target, const std::string& name, const std::string& bytes) {
  std::filesystem::create_directories(folder / target);
  std::ofstream(folder / target / name, std::ios::binary) << bytes;
}

// ---- Texts to strip ----

const std::string kProse =
    "Don't panic, the Cat said to O'Neill.\n\nIt's 7 o'clock -- the 'quoted' word's end'\n"s;

std::string EncodedLine(std::size_t length, char first) {
  return first + std::string(length - 1, 'x') + "\n";
}

void WriteStripSeeds() {
  Write("strip_non_words", "empty", "");
  Write("strip_non_words", "prose", kProse);
  Write("strip_non_words", "one_letter", "x");  // the last blank lands after the text
  Write("strip_non_words", "line_feeds", "\n\na\n\n b\n");
  Write("strip_non_words", "apostrophes", "'a' b'' 'c d'e'f '");
  Write("strip_non_words", "high_bytes", "caf\xc3\xa9 \xff\x80 a\0b"s);

  const std::string lists = "\x02the and\0panic\0Cat\0"s;
  Write("strip_words", "empty", "");
  Write("strip_words", "prose", lists + kProse);
  Write("strip_words", "no_stop_text", "\x01\0panic\0"s + kProse);
  for (const std::size_t length : {63u, 64u, 65u, 130u}) {
    Write("strip_words", "word_of_" + std::to_string(length),
          lists + "a' " + std::string(length, 'w') + "'s w");
  }

  Write("strip_bad_lines", "prose", kProse);
  Write("strip_bad_lines", "high_byte", "a\nb\x80 c\nd\n");
  Write("strip_bad_lines", "uuencode",
        "begin\n" + EncodedLine(61, 'M') + EncodedLine(61, 'M') + "M short\nend\n");
  Write("strip_bad_lines", "base64",
        EncodedLine(72, 'x') + EncodedLine(72, 'x') + "rest=\n-\ntext again\n");
  Write("strip_bad_lines", "carriage_returns", std::string(72, 'y') + "\r\nshort\r\n\r\nM");
}

// ---- Word lists ----

void WriteWordListSeeds() {
  Write("word_lists", "shared_beginnings", "alpha alphabet alps beta  bet\nbetter");
  Write("word_lists", "long_words",
        std::string(126, 'w') + " " + std::string(127, 'w') + "x " + std::string(128, 'w') + "y");
  Write("word_lists", "high_bytes", "caf\xc3\xa9 caf\xff \x80 \x81\x82");
  Write("word_lists", "longer_than_the_buffer", Times(450, "wordwordX "));

  Write("word_list_records", "good", "\x80"s + "alpha\x85" + "bet\x83s");
  Write("word_list_records", "shares_at_the_start", "\xff\xff"s + "abc");
  Write("word_list_records", "shares_more_than_there_is", "\x80"s + "a\xff\xff\xff\xff");
  Write("word_list_records", "no_mark", "abc");
  Write("word_list_records", "zeros", "\x80"s + "a\0b\0\x82"s);
  Write("word_list_records", "grows", "\x80"s + Times(127, "w") + Times(60, "\xff"));
}

// ---- Records ----

// The keys as the target `postings` numbers them.
enum Key { kCat, kDog, kA, kD, kDeleted, kAvail, kCode, kOpts, kDocA, kDocB, kName1, kName2 };

std::string Planted(Key key, const std::string& value) {
  return static_cast<char>(key) + Units({static_cast<unsigned>(value.size())}) + value;
}

// The methods as that target numbers them.
enum Method {
  kWord,
  kAnd,
  kOr,
  kNot,
  kList,
  kCommon,
  kDocuments,
  kDropPositions,
  kShrink,
  kAdd,
  kRemove,
  kMove,
  kFlush,
  kTimestamp,
  kReopen
};

std::string Steps(const std::vector<Method>& methods) {
  std::string steps(1, static_cast<char>(methods.size()));
  for (std::size_t i = 0; i < methods.size(); ++i) {
    steps += static_cast<char>(methods[i]);
    steps += static_cast<char>(i);
    steps += "\x01\x05";
  }
  return steps;
}

const std::vector<Method> kEveryMethod = {
    kWord,   kWord, kAnd,       kOr,     kNot, kList,      kAdd,
    kCommon, kMove, kRemove,    kShrink, kAdd, kDocuments, kDropPositions,
    kFlush,  kWord, kTimestamp, kReopen, kList};

std::string TwoDocuments() {
  return Planted(kCode, Units({2})) + Planted(kDocA, kestan_tests::DocumentRecord(1000, 1)) +
         Planted(kName1, "a") + Planted(kDocB, kestan_tests::DocumentRecord(1000, 2)) +
         Planted(kName2, "b");
}

std::string Good() {
  return TwoDocuments() + Planted(kCat, EncodedPosting(1, {1, 3, 9}) + EncodedPosting(2, {2})) +
         Planted(kDog, EncodedPosting(1, {2, 30}) + EncodedPosting(2, {4}));
}

void WritePostingSeeds() {
  const std::string steps = Steps(kEveryMethod);
  Write("postings", "no_steps", "");
  Write("postings", "good", steps + Good());
  Write("postings", "count_past_the_end",
        steps + TwoDocuments() + Planted(kCat, Units({1, 65535, 1, 2})) +
            Planted(kDog, Units({2, 3, 1}) + "x"));
  Write("postings", "ends_after_a_code",
        steps + TwoDocuments() + Planted(kCat, EncodedPosting(1, {1}) + Units({2})) +
            Planted(kDog, "x"));
  Write("postings", "descending_positions",
        steps + TwoDocuments() +
            Planted(kCat, EncodedPosting(1, {9, 9, 0, 3}) + EncodedPosting(1, {1})) +
            Planted(kDog, EncodedPosting(2, {1}) + EncodedPosting(1, {65535, 1, 0, 12, 10})));
  Write("postings", "no_positions",
        steps + Good() + Planted(kOpts, Units({1, 0})) + Planted(kA, Units({2, 1, 1, 0})));
  Write("postings", "code_zero",
        steps + Good() + Planted(kAvail, Units({7, 0})) + Planted(kDeleted, Units({0, 1}) + "x"));
  Write("postings", "short_records",
        steps + Planted(kCode, "\x03") + Planted(kDocA, "\x01\x02\x03\x04\x05") +
            Planted(kDocB, "") + Planted(kDeleted, "\x01") + Planted(kAvail, "\x01") +
            Planted(kOpts, "\x02"));
  Write("postings", "highest_counter",
        Steps({kNot, kWord, kNot, kAnd, kAdd, kAdd}) + Good() + Planted(kCode, Units({65535})));
  Write("postings", "many_positions",
        steps + TwoDocuments() + Planted(kCat, EncodedPosting(1, From(1, 120))) +
            Planted(kDog, EncodedPosting(1, From(60, 180))));
}

// ---- Sequences of operations: the bytes that choose them, as the target numbers them ----

const std::string kFill(1, 32);     // plants many words
const std::string kCompare(1, 33);  // compares the files

void WriteOperationSeeds() {
  const std::string add_a = "\0\0\x03\0\0\x02\0\x01\0"s;  // "a": cat dog Cat
  const std::string add_b = "\0\x01\x02\x01\0\x03\0"s;    // "b": Cat a
  const std::string queries = "\x02\0\x02\x02\x0b\x02\x01\x03\x0c\x02\x01\x0d\x01\x0e\x01"s;
  const std::string lists = "\x10\0\x0d\x11"s;
  Write("operations", "add_and_query", add_a + add_b + queries + lists);
  Write("operations", "remove_and_shrink",
        add_a + add_b + "\x06\0\x11\x0a\x0a"s + add_b + queries + kCompare);
  Write("operations", "move_and_copy", add_a + "\x07\0\x01\x08\x01\x1a\x1b\x02\x21"s + lists);
  Write("operations", "no_positions", add_a + "\x1c\0"s + add_b + queries + "\x1d\0\x1e\x1f"s);
  Write("operations", "side_records",
        "\x12\0\0\x01\0\0\x13\0\0\x14\0\0\x15\0\x02\0\0\x01\0\x16\0"s + add_a);
  Write("operations", "reopen", add_a + "\x19\0\x01"s + queries + "\x18\x17\0\x02"s + queries);
  Write("operations", "damaged_postings",
        add_a + "\x04\0\x06\x01\0\xff\xff\x02\0"s + queries + "\x04\x05\x02\x05\0"s + add_b);
  Write("operations", "flushing_walks", add_a + kFill + lists + "\x0a\x1b\x02\x21"s);
}

// ---- Dumps ----

// The first byte asks for the right last line, and half of it is the number of records.
void WriteDumpSeeds() {
  const std::string first = "kestan-dump 1\n";
  Write("dump_text", "empty", "");
  Write("dump_text", "no_records", "\x01"s + first);
  Write("dump_text", "three",
        "\x07" + first + "Cat\t\\x01\\x00\\x01\\x00\\x02\\x00\nd-a.txt\t\\x5c\ng-opts\t\n");
  Write("dump_text", "empty_key", "\x05" + first + "\t\na\t\n");
  Write("dump_text", "goes_on", "\x03" + first + "ke\\\ny\tva\\\n\\\nlue\\x0a\n");
  Write("dump_text", "wrong_count", "\x05" + first + "a\tb\n");
  Write("dump_text", "two_tabs", "\x03" + first + "a\tb\tc\n");
  Write("dump_text", "broken_escape", "\x03" + first + "a\t\\x0\\\n0\n");
  Write("dump_text", "needless_escape", "\x03" + first + "a\t\\x41\n");
  Write("dump_text", "not_in_order", "\x05" + first + "b\t1\na\t2\n");
  Write("dump_text", "other_version", "\x01kestan-dump 2\n");
  Write("dump_text", "own_last_line", "\0"s + first + "a\tb\nend 1 0000000000000000\n");
}

// ---- Damaged indexes ----

// One of the records that the target puts into an index, its key given by number or in full.
std::string Put(unsigned key, const std::string& value) {
  return static_cast<char>(key) + std::string(1, static_cast<char>(value.size())) + value;
}

std::string PutKey(const std::string& key, const std::string& value) {
  return static_cast<char>(64 + key.size()) + key +
         std::string(1, static_cast<char>(value.size())) + value;
}

std::string Change(unsigned place, unsigned byte) {
  return Units({place}) + static_cast<char>(byte);
}

void WriteRepairSeeds() {
  const std::string none(1, '\0');
  for (const char index : {'\0', '\1', '\2', '\3'}) {
    Write("repair", "valid_"s + static_cast<char>('0' + index), index + none);
  }
  Write("repair", "no_header", "\2"s + none + Change(0, 0) + Change(8, 255) + Change(16, 255));
  Write("repair", "directory", "\2"s + none + Change(512, 0) + Change(513, 99) + Change(521, 7));
  Write("repair", "cut", "\2"s + none + Change(65535, 70));
  Write("repair", "bucket", "\0"s + none + Change(1024 + 104, 40) + Change(1024 + 140, 9));
  // Keys by their numbers: 0 cat, 3 d-a, 5 and 6 names, 7 to 10 g-*, 11 a word list, 14 d-day.
  Write("repair", "postings",
        "\0\2"s + Put(0, Units({1, 9, 2, 2, 1, 1, 0, 1, 3}) + "x") +
            Put(2, Units({1, 1, 0, 7, 1, 1})));
  Write("repair", "documents",
        "\0\3"s + Put(3, Units({1, 2, 2, 0})) + Put(5, "bb") + Put(13, Units({1, 1})));
  Write("repair", "codes",
        "\0\3"s + Put(7, Units({1})) + Put(8, Units({1, 5, 5, 0, 9})) +
            Put(9, Units({4, 5, 2}) + "x"));
  Write("repair", "options", "\1\1"s + Put(10, Units({4, 0, 1})));
  Write("repair", "word_list",
        "\0\1"s + Put(11,
                      "red\x85"
                      "dish\xc3\xa9"));
  Write("repair", "hyphens",
        "\1\4"s + Put(14, Units({1, 1, 9, 2})) + Put(15, Units({1, 2})) +
            Put(16, Units({7, 1, 1})) + Put(17, "shirts"));
  Write("repair", "names",
        "\0\3"s + PutKey("d-n\n\xff", Units({1, 1, 7, 0})) + Put(12, "n\n\xff") +
            PutKey("c-\1", "x"));
  Write("repair", "last_position",
        "\0\2"s + Put(0, Units({1, 2, 65535, 3})) + Put(1, Units({1, 3, 9, 2, 1})));
}

// ---- Index files ----

std::string FileOf(const kestan_tests::TempDir& place) {
  std::ifstream stream(place / "index", std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

// The file that `fill` makes of a new index.
template <typename Fill>
std::string IndexFile(Fill fill) {
  const kestan_tests::TempDir place;
  Kestan engine;
  engine.OpenIndex((place / "index").c_str(), 1);
  fill(engine);
  engine.CloseIndex();
  return FileOf(place);
}

void AddThree(Kestan& engine) {
  engine.AddDocumentWords("a.txt", "the Cat sat");
  engine.AddDocumentWords("b.txt", "a cat and the dog");
  engine.AddDocumentWords("c.txt", "the cat");
  engine.DBPutTitle("b.txt", "A cat");
  engine.DBPutWords("stop", "the then");
}

// gdbm's own numbers differ between machines, so those of each kind are named for it.
void WriteFileSeeds() {
  const std::string bits = std::to_string(sizeof(void*) * 8) + "bit_";
  Write("files", "empty", "");
  Write("files", bits + "new", IndexFile([](Kestan&) {}));
  Write("files", bits + "three", IndexFile(AddThree));
  Write("files", bits + "removed", IndexFile([](Kestan& engine) {
          AddThree(engine);
          engine.RemoveDocumentWords("b.txt");
        }));
  Write("files", bits + "shrunk", IndexFile([](Kestan& engine) {
          AddThree(engine);
          engine.RemoveDocumentWords("b.txt");
          engine.ShrinkIndex();
        }));
  Write("files", bits + "no_positions", IndexFile([](Kestan& engine) {
          AddThree(engine);
          engine.SetOptionFlag(1);
        }));
  Write("files", bits + "two_buckets", IndexFile([](Kestan& engine) {
          AddThree(engine);
          engine.AddDocumentWords("new", "one two three four five six seven eight nine ten eleven");
        }));
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: make_seeds FOLDER\n");
    return 1;
  }
  folder = argv[1];
  WriteStripSeeds();
  WriteWordListSeeds();
  WritePostingSeeds();
  WriteOperationSeeds();
  WriteDumpSeeds();
  WriteRepairSeeds();
  WriteFileSeeds();
  return 0;
}
