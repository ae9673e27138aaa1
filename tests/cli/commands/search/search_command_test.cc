// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/cli/both_kinds_test.h"

namespace kestan_tests {
namespace {

class SearchCommandTest : public BothKindsTest {
 protected:
  void SetUp() override {
    Add("one", "cat dog\n");
    Add("two", "dog x x x cat\n");
    Add("three", "cat cat bird\n");
    Add("four", "Fish\n");
  }

  Outcome Search(std::vector<std::string> query) {
    query.insert(query.begin(), {"search", "my.index"});
    return Run(query);
  }

  // The names of the hits of `query`, in order. `note` is what is said of it.
  std::string Names(const std::string& query, const std::string& note = "") {
    const Outcome outcome = Search({query});
    EXPECT_EQ(outcome.status, outcome.out.empty() ? 1 : 0) << outcome;
    EXPECT_EQ(outcome.err, note.empty() ? "" : "note: " + note + "\n");
    std::string names;
    for (std::string_view lines = outcome.out; !lines.empty();) {
      const std::size_t end = lines.find('\n');
      const std::string_view line = lines.substr(0, end);
      names += std::string(line.substr(line.find(' ') + 1)) + " ";
      lines.remove_prefix(end + 1);
    }
    return names;
  }
};

INSTANTIATE_TEST_SUITE_P(, SearchCommandTest, kBothKinds, NameOfKind);

const Outcome kNoHits{1, "", ""};

TEST_P(SearchCommandTest, BestHitIsFirst) {
  EXPECT_EQ(Search({"cat"}), Success("100 three\n90 one\n54 two\n"));
}

TEST_P(SearchCommandTest, EqualHitsAreInOrderOfNames) {
  Add("also", "cat dog\n");
  EXPECT_EQ(Names("dog"), "also one two ");
}

TEST_P(SearchCommandTest, ManyEqualHitsAreInOrderToo) {
  std::vector<Document> documents;
  std::string expected;
  for (int i = 100; i < 150; ++i) {
    documents.push_back(Named("d/" + std::to_string(i), i % 3 == 0 ? "cow cow\n" : "hen cow\n"));
    if (i % 3 != 0) expected += "d/" + std::to_string(i) + "\n";
  }
  AddTo("my.index", documents);
  const std::string out = Search({"-l", "cow"}).out;
  EXPECT_EQ(out.substr(out.find("d/100")), expected);
}

TEST_P(SearchCommandTest, LowerCaseFindsAnyCase) {
  EXPECT_EQ(Names("fish"), "four ");
  EXPECT_EQ(Names("cat"), "three one two ");
}

TEST_P(SearchCommandTest, CapitalsFindOnlyThemselvesInAnIndexFileOfTheEngine) {
  EXPECT_EQ(Names("Fish"), "four ");
  if (IsFolder()) {
    EXPECT_EQ(Names("FISH"), "four ");
    EXPECT_EQ(Names("Cat"), "three one two ");
    return;
  }
  EXPECT_EQ(Search({"FISH"}), (Outcome{1, "", "did you mean: fish\n"}));
  EXPECT_EQ(Search({"Cat"}), (Outcome{1, "", "did you mean: cat\n"}));
}

TEST_P(SearchCommandTest, NoHitsGiveStatusOne) {
  EXPECT_EQ(Search({"cow"}), kNoHits);
  EXPECT_EQ(Search({"bird", "AND", "dog"}), kNoHits);
}

TEST_P(SearchCommandTest, WhereNoDocumentHasAllWordsSomeAreEnough) {
  const std::string note = "note: no document has all of these words; these have some of them\n";
  EXPECT_EQ(Search({"-l", "bird", "dog"}), (Outcome{0, "three\none\ntwo\n", note}));
  EXPECT_EQ(Search({"--count", "bird", "dog"}), Success("3\n"));
}

TEST_P(SearchCommandTest, AllAsksForAllWords) {
  EXPECT_EQ(Search({"--all", "bird", "dog"}), kNoHits);
  EXPECT_EQ(Search({"--all", "-l", "bird", "cat"}), Success("three\n"));
  EXPECT_EQ(Search({"--all", "--count", "bird", "dog"}), (Outcome{1, "0\n", ""}));
}

TEST_P(SearchCommandTest, AllAndAnyContradictEachOther) {
  EXPECT_EQ(Search({"--all", "--any", "cat"}), Failure("--all and --any contradict each other"));
}

TEST_P(SearchCommandTest, MissingWordIsNamed) {
  EXPECT_EQ(Search({"-l", "bird", "dgo"}).err,
            "note: no document has all of these words; these have some of them\n"
            "note: no document has 'dgo'; did you mean 'dog'?\n");
}

TEST_P(SearchCommandTest, ArgumentsAreJoined) {
  EXPECT_EQ(Search({"cat", "AND", "(dog", "OR", "bird)"}), Search({"cat AND (dog OR bird)"}));
  EXPECT_EQ(Search({"cat", "NOT", "dog"}), Success("100 three\n"));
}

TEST_P(SearchCommandTest, NamesOfCommandsAreWordsOfAQuery) {
  Add("five", "list index\n");
  EXPECT_EQ(Search({"list", "index"}), Success("100 five\n"));
}

TEST_P(SearchCommandTest, AndFindsDocumentsWithBoth) {
  EXPECT_EQ(Names("cat AND dog"), "one two ");
  EXPECT_EQ(Names("cat dog"), "one two ");
  EXPECT_EQ(Names("cat AND cow"), "");
  EXPECT_EQ(Names("cow AND cat"), "");
}

TEST_P(SearchCommandTest, OrFindsDocumentsWithEither) {
  EXPECT_EQ(Names("bird OR fish"), "four three ");
  EXPECT_EQ(Search({"cow OR fish"}), (Outcome{0, "100 four\n", "note: no document has 'cow'\n"}));
  EXPECT_EQ(Search({"fish OR cow"}), (Outcome{0, "100 four\n", "note: no document has 'cow'\n"}));
  EXPECT_EQ(Names("cow OR hen"), "");
}

TEST_P(SearchCommandTest, NotFindsTheOtherDocuments) {
  EXPECT_EQ(Search({"NOT", "cat"}), Success("100 four\n"));
  EXPECT_EQ(Names("NOT cow"), "four one three two ");
  EXPECT_EQ(Names("NOT (cat OR fish)"), "");
  EXPECT_EQ(Names("cat NOT bird"), "one two ");
  EXPECT_EQ(Names("NOT NOT bird"), "three ");
}

TEST_P(SearchCommandTest, NearMeasuresInBothOrders) {
  EXPECT_EQ(Names("cat NEAR/4 dog"), "one two ");
  EXPECT_EQ(Names("cat NEAR/3 dog"), "one ");
  EXPECT_EQ(Names("dog NEAR/4 cat"), "one two ");
  EXPECT_EQ(Names("dog NEAR/3 cat"), "one ");
}

TEST_P(SearchCommandTest, NearMeasuresFromTheWordBefore) {
  Add("chain", "first x second x x third\n");
  EXPECT_EQ(Names("first NEAR/2 second NEAR/3 third"), "chain ");
  EXPECT_EQ(Names("first NEAR/2 second NEAR/2 third"), "");
  EXPECT_EQ(Names("first NEAR/1 second NEAR/3 third"), "");
}

TEST_P(SearchCommandTest, NearOfAMissingWordHasNoHits) {
  EXPECT_EQ(Names("cow NEAR/3 cat"), "");
  EXPECT_EQ(Names("cat NEAR/3 cow"), "");
}

TEST_P(SearchCommandTest, PrecedenceHolds) {
  EXPECT_EQ(Names("fish OR cat bird"), "three four ");
  EXPECT_EQ(Names("(fish OR cat) bird"), "three ");
}

TEST_P(SearchCommandTest, WordsMadeOfOneArgumentMustBeNeighbours) {
  Add("next", "An e-mail came.\n");
  Add("apart", "Mail me at letter e.\n");
  EXPECT_EQ(Names("e-mail"), "next ");
  EXPECT_EQ(Names("e mail"), "next apart ");
}

TEST_P(SearchCommandTest, LongWordsMatchByTheirFirst64Letters) {
  Add("long", std::string(70, 'x') + "\n");
  EXPECT_EQ(Names(std::string(80, 'x'),
                  "'" + std::string(20, 'x') + "...' is too long: its first 64 characters count"),
            "long ");
  EXPECT_EQ(Search({std::string(63, 'x')}),
            (Outcome{1, "", "did you mean: " + std::string(64, 'x') + "\n"}));
}

TEST_P(SearchCommandTest, RemovedDocumentsAreNotFound) {
  Remove("three");
  EXPECT_EQ(Names("cat"), "one two ");
  EXPECT_EQ(Search({"bird"}), kNoHits);
  EXPECT_EQ(Names("NOT cow"), "four one two ");
}

TEST_P(SearchCommandTest, IndexWithoutPositionsReadsNearAsAndWithANote) {
  std::filesystem::remove_all(Path("my.index"));
  MakeEmpty(false);
  Add("one", "cat dog\n");
  Add("two", "dog x x x cat\n");
  const std::string note =
      "note: the index keeps no positions, so NEAR and quotes are taken for AND\n";
  EXPECT_EQ(Search({"-l", "cat NEAR/1 dog"}), (Outcome{0, "one\ntwo\n", note}));
  EXPECT_EQ(Search({"-l", "\"cat dog\" OR \"dog cat\""}), (Outcome{0, "one\ntwo\n", note}));
  EXPECT_EQ(Names("cat dog"), "one two ");
  EXPECT_EQ(Search({"--explain", "cat NEAR/1 dog"}).err.find("NEAR/1 (taken for AND): "), 0u);
}

TEST_P(SearchCommandTest, IndexThatNeverHadADocumentHasNoHits) {
  std::filesystem::remove_all(Path("my.index"));
  MakeEmpty();
  EXPECT_EQ(Search({"cat"}), kNoHits);
  EXPECT_EQ(Search({"NOT", "cat"}), kNoHits);
}

TEST_P(SearchCommandTest, IndexThatLostAllDocumentsHasNoHits) {
  for (const char* name : {"one", "two", "three", "four"}) Remove(name);
  EXPECT_EQ(Search({"NOT cat"}), kNoHits);
}

TEST_P(SearchCommandTest, AnyTextIsAQuery) {
  EXPECT_EQ(Search({"--all", "cat ca)t"}), kNoHits);  // the words ca and t are in no document
  EXPECT_EQ(Names("(cat"), "three one two ");
  EXPECT_EQ(Names("\"cat"), "three one two ");
  EXPECT_EQ(Names("cat+ (((?!"), "three one two ");
}

TEST_P(SearchCommandTest, LoneOperatorsAreWords) {
  Add("five", "Cat AND dog\n");
  // In small letters it is a stop word.
  const std::string note = IsFolder() ? "'and' says little and was not required" : "";
  EXPECT_EQ(Names("cat AND", note), IsFolder() ? "three one five two " : "five ");
  EXPECT_EQ(Names("\"and dog\" AND", note), "five ");
  EXPECT_EQ(Names("AND dog", note), IsFolder() ? "one two five " : "five ");
}

TEST_P(SearchCommandTest, QueryWithoutLettersFindsNothingWithANote) {
  const std::string what = IsFolder() ? "letters or digits" : "letters";
  const Outcome note{1, "", "note: the query holds no " + what + " to search for\n"};
  EXPECT_EQ(Search({"?!"}), note);
  EXPECT_EQ(Search({""}), note);
  EXPECT_EQ(Search({"? -(,) \"\""}), note);
  EXPECT_EQ(Search({"42"}), IsFolder() ? kNoHits : note);
}

TEST_P(SearchCommandTest, QueryWithoutLettersIsANoteInJson) {
  const Outcome outcome = Run({"search", "my.index", "--json", "?!"});
  const std::string what = IsFolder() ? "letters or digits" : "letters";
  EXPECT_EQ(outcome, (Outcome{1,
                              "{\"schema\":1,\"query\":\"?!\",\"total\":0,\"hits\":[],"
                              "\"suggestions\":[],\"notes\":[\"the query holds no " +
                                  what + " to search for\"]}\n",
                              ""}));
}

TEST_P(SearchCommandTest, QueryWithoutLettersStillNeedsAnIndex) {
  EXPECT_EQ(Run({"search", "none", "42"}),
            Failure("cannot open index 'none': no such file or folder; kestan index makes one"));
}

TEST_P(SearchCommandTest, MinusExcludesDocuments) {
  EXPECT_EQ(Names("cat -dog"), "three ");
  EXPECT_EQ(Names("cat -(dog x)"), "three one ");
  EXPECT_EQ(Names("cat -\"cat dog\""), "three two ");
}

TEST_P(SearchCommandTest, QuotedWordsMustBeNeighbours) {
  EXPECT_EQ(Names("\"cat dog\""), "one ");
  EXPECT_EQ(Names("\"dog cat\""), "");
  EXPECT_EQ(Names("\"dog x\""), "two ");
}

TEST_P(SearchCommandTest, PhrasesMatchInTheirOrder) {
  Add("forwards", "red green blue white\n");
  Add("backwards", "white blue green red\n");
  Add("mixed", "green red blue white\n");
  EXPECT_EQ(Names("\"red green blue\""), "forwards ");
  EXPECT_EQ(Names("\"blue green\""), "backwards ");
  EXPECT_EQ(Names("\"green red blue white\""), "mixed ");
}

TEST_P(SearchCommandTest, WordThatComesTwiceInAPhraseIsThereTwice) {
  Add("short", "to be\n");
  EXPECT_EQ(Names("\"to be to\""), "");
  Add("long", "to be to\n");
  EXPECT_EQ(Names("\"to be to\""), "long ");
}

TEST_P(SearchCommandTest, ExpansionsFindSimilarWords) {
  EXPECT_EQ(Names("ca* bi*"), "three ");
  EXPECT_EQ(Names("dgo~ x"), "two ");
}

TEST_P(SearchCommandTest, AccentsMakeNoDifference) {
  Add("five", "Zurich\n");
  EXPECT_EQ(Names("z\xc3\xbcrich"), "five ");
  EXPECT_EQ(Names("Z\xc3\xbcrich"), "five ");
}

TEST_P(SearchCommandTest, AnyFindsTheMostRelevantFirst) {
  // "cat" is in most documents, "bird" and "dogs" in few.
  EXPECT_EQ(Run({"search", "my.index", "--any", "Which is a cat or a bird?"}).out.substr(0, 10),
            "100 three\n");
  EXPECT_EQ(Run({"search", "-l", "--any", "my.index", "fishes fish-x"}), Success("four\n"));
}

TEST_P(SearchCommandTest, AnyCountsRareWordsMore) {
  EXPECT_EQ(Run({"search", "-l", "--any", "my.index", "cat fish"}),
            Success("four\nthree\none\ntwo\n"));
}

TEST_P(SearchCommandTest, DocumentsOfEqualPercentageAreInOrderOfTheirScores) {
  std::vector<Document> documents;
  for (const std::string name : {"a", "b", "c"}) documents.push_back(Named(name, ""));
  for (int i = 0; i < 3000; ++i) documents[0].text += i % 300 == 0 ? "cow " : "x ";
  for (int i = 0; i < 2990; ++i) documents[1].text += i % 299 == 0 ? "cow " : "x ";
  for (int i = 0; i < 3010; ++i) documents[2].text += i % 301 == 0 ? "cow " : "x ";
  AddTo("my.index", documents);
  EXPECT_EQ(Search({"cow"}), Success("100 b\n100 a\n100 c\n"));
}

TEST_P(SearchCommandTest, ShortDocumentsComeFirst) {
  Add("a", "cow x x x x\n");
  Add("b", "cow x\n");
  EXPECT_EQ(Names("cow"), "b a ");
}

TEST_P(SearchCommandTest, SearchDoesNotChangeTheIndex) {
  const std::string sums = "cd '" + Path("") + "' && find my.index -type f | sort | xargs cksum > ";
  ASSERT_EQ(std::system((sums + "before").c_str()), 0);
  Search({"cat OR dog NOT fish"});
  Search({"("});
  ASSERT_EQ(std::system((sums + "after").c_str()), 0);
  EXPECT_EQ(BytesOfFile(Path("before")), BytesOfFile(Path("after")));
}

TEST_P(SearchCommandTest, SeveralIndexesAreSearchedAsOne) {
  AddTo("other.index", {Named("five", "bird bird\n"), Named("three", "a bird\n")});
  EXPECT_EQ(Run({"search", "-i", "my.index", "-i", "other.index", "-l", "bird"}),
            Success("five\nthree\nthree\n"));
  EXPECT_EQ(Run({"search", "--count", "bird", "-i", "my.index", "--index", "other.index"}),
            Success("3\n"));
}

TEST_P(SearchCommandTest, IndexesOfBothKindsAreSearchedAsOne) {
  AddToFolder(Path("a.folder"), {Named("five", "bird bird\n")});
  AddToFile(Path("a.file"), {Named("six", "a bird\n")});
  EXPECT_EQ(Run({"search", "-i", "a.folder", "-i", "a.file", "-l", "bird"}),
            Success("five\nsix\n"));
}

TEST_P(SearchCommandTest, WhereOptionsNameTheIndexAllArgumentsAreTheQuery) {
  EXPECT_EQ(Run({"search", "-i", "my.index", "-l", "cat", "bird"}), Success("three\n"));
  EXPECT_EQ(Run({"search", "-i", "my.index"}), Failure("QUERY is required"));
  EXPECT_EQ(Run({"search", "my.index"}), Failure("QUERY is required"));
}

TEST_P(SearchCommandTest, IndexThatIsMissingIsNamed) {
  EXPECT_EQ(Run({"search", "-i", "my.index", "-i", "none", "cat"}),
            Failure("cannot open index 'none': no such file or folder; kestan index makes one"));
}

TEST_P(SearchCommandTest, DeepestQueryWorksAndDeeperOnesAreFlattened) {
  const auto nested = [](std::size_t depth) {
    return std::string(depth, '(') + "fish" + std::string(depth, ')');
  };
  EXPECT_EQ(Search({nested(200)}), Success("100 four\n"));
  EXPECT_EQ(Search({nested(300)}), Success("100 four\n"));
}

TEST_P(SearchCommandTest, LongChainsWork) {
  std::vector<std::string> query{"fish"};
  for (int i = 0; i < 5000; ++i) query.insert(query.end(), {"OR", "fish"});
  EXPECT_EQ(Search(query), Success("100 four\n"));
}

}  // namespace
}  // namespace kestan_tests
