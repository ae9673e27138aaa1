#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/cli/command_test.h"

namespace kestan_tests {
namespace {

class SearchCommandTest : public CommandTest {
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

  // The names of the hits of `query`, in order.
  std::string Names(const std::string& query) {
    const Outcome outcome = Search({query});
    EXPECT_EQ(outcome.status, outcome.out.empty() ? 1 : 0) << outcome;
    EXPECT_EQ(outcome.err, "");
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

const Outcome kNoHits{1, "", ""};

TEST_F(SearchCommandTest, BestHitIsFirst) {
  EXPECT_EQ(Search({"cat"}), Success("100 three\n50 one\n50 two\n"));
}

TEST_F(SearchCommandTest, EqualHitsAreInOrderOfAddition) { EXPECT_EQ(Names("dog"), "one two "); }

TEST_F(SearchCommandTest, ManyEqualHitsAreInOrderToo) {
  std::string expected;
  for (int i = 100; i < 150; ++i) {
    Write("d/" + std::to_string(i), i % 3 == 0 ? "cow cow\n" : "cow\n");
    if (i % 3 != 0) expected += "50 d/" + std::to_string(i) + "\n";
  }
  ASSERT_EQ(Run({"index", "my.index", "d"}).status, 0);
  const std::string out = Search({"cow"}).out;
  EXPECT_EQ(out.substr(out.find("50 d/")), expected);
}

TEST_F(SearchCommandTest, LowerCaseFindsAnyCase) {
  EXPECT_EQ(Names("fish"), "four ");
  EXPECT_EQ(Names("cat"), "three one two ");
}

TEST_F(SearchCommandTest, CapitalsFindOnlyThemselves) {
  EXPECT_EQ(Names("Fish"), "four ");
  EXPECT_EQ(Search({"FISH"}), (Outcome{1, "", "did you mean: fish\n"}));
  EXPECT_EQ(Search({"Cat"}), (Outcome{1, "", "did you mean: cat\n"}));
}

TEST_F(SearchCommandTest, NoHitsGiveStatusOne) {
  EXPECT_EQ(Search({"cow"}), kNoHits);
  EXPECT_EQ(Search({"bird", "dog"}), kNoHits);
}

TEST_F(SearchCommandTest, ArgumentsAreJoined) {
  EXPECT_EQ(Search({"cat", "AND", "(dog", "OR", "bird)"}), Search({"cat AND (dog OR bird)"}));
  EXPECT_EQ(Search({"cat", "NOT", "dog"}), Success("100 three\n"));
}

TEST_F(SearchCommandTest, NamesOfCommandsAreWordsOfAQuery) {
  Add("five", "list index\n");
  EXPECT_EQ(Search({"list", "index"}), Success("100 five\n"));
}

TEST_F(SearchCommandTest, AndFindsDocumentsWithBoth) {
  EXPECT_EQ(Names("cat AND dog"), "one two ");
  EXPECT_EQ(Names("cat dog"), "one two ");
  EXPECT_EQ(Names("cat AND cow"), "");
  EXPECT_EQ(Names("cow AND cat"), "");
}

TEST_F(SearchCommandTest, OrFindsDocumentsWithEither) {
  EXPECT_EQ(Names("bird OR fish"), "three four ");
  EXPECT_EQ(Names("cow OR fish"), "four ");
  EXPECT_EQ(Names("fish OR cow"), "four ");
  EXPECT_EQ(Names("cow OR hen"), "");
}

TEST_F(SearchCommandTest, NotFindsTheOtherDocuments) {
  EXPECT_EQ(Search({"NOT", "cat"}), Success("0 four\n"));
  EXPECT_EQ(Names("NOT cow"), "one two three four ");
  EXPECT_EQ(Names("NOT (cat OR fish)"), "");
  EXPECT_EQ(Names("cat NOT bird"), "one two ");
  EXPECT_EQ(Names("NOT NOT bird"), "three ");
}

TEST_F(SearchCommandTest, NearMeasuresInBothOrders) {
  EXPECT_EQ(Names("cat NEAR/4 dog"), "one two ");
  EXPECT_EQ(Names("cat NEAR/3 dog"), "one ");
  EXPECT_EQ(Names("dog NEAR/4 cat"), "one two ");
  EXPECT_EQ(Names("dog NEAR/3 cat"), "one ");
}

TEST_F(SearchCommandTest, NearMeasuresFromTheWordBefore) {
  Add("chain", "first x second x x third\n");
  EXPECT_EQ(Names("first NEAR/2 second NEAR/3 third"), "chain ");
  EXPECT_EQ(Names("first NEAR/2 second NEAR/2 third"), "");
  EXPECT_EQ(Names("first NEAR/1 second NEAR/3 third"), "");
}

TEST_F(SearchCommandTest, NearOfAMissingWordHasNoHits) {
  EXPECT_EQ(Names("cow NEAR/3 cat"), "");
  EXPECT_EQ(Names("cat NEAR/3 cow"), "");
}

TEST_F(SearchCommandTest, PrecedenceHolds) {
  EXPECT_EQ(Names("fish OR cat bird"), "three four ");
  EXPECT_EQ(Names("(fish OR cat) bird"), "three ");
}

TEST_F(SearchCommandTest, WordsMadeOfOneArgumentMustBeNeighbours) {
  Add("next", "An e-mail came.\n");
  Add("apart", "Mail me at letter e.\n");
  EXPECT_EQ(Names("e-mail"), "next ");
  EXPECT_EQ(Names("e mail"), "next apart ");
}

TEST_F(SearchCommandTest, LongWordsMatchByTheirFirst64Letters) {
  Add("long", std::string(70, 'x') + "\n");
  EXPECT_EQ(Names(std::string(80, 'x')), "long ");
  EXPECT_EQ(Search({std::string(63, 'x')}),
            (Outcome{1, "", "did you mean: " + std::string(64, 'x') + "\n"}));
}

TEST_F(SearchCommandTest, RemovedDocumentsAreNotFound) {
  ASSERT_EQ(Run({"remove", "my.index", "three"}).status, 0);
  EXPECT_EQ(Search({"cat"}), Success("100 one\n100 two\n"));
  EXPECT_EQ(Search({"bird"}), kNoHits);
  EXPECT_EQ(Names("NOT cow"), "one two four ");
}

TEST_F(SearchCommandTest, ShrinkingChangesNoAnswer) {
  ASSERT_EQ(Run({"remove", "my.index", "three"}).status, 0);
  ASSERT_EQ(Run({"shrink", "my.index"}).status, 0);
  EXPECT_EQ(Search({"cat"}), Success("100 one\n100 two\n"));
  EXPECT_EQ(Search({"bird"}), kNoHits);
  EXPECT_EQ(Names("NOT cow"), "one two four ");
}

TEST_F(SearchCommandTest, IndexWithoutPositionsReadsNearAsAndWithANote) {
  {
    Kestan engine;
    ASSERT_EQ(engine.OpenIndex(Path("my.index").c_str(), 1), 0);
    ASSERT_EQ(engine.SetOptionFlag(1), 0);
  }
  const std::string note =
      "note: the index keeps no positions, so NEAR and quotes are taken for AND\n";
  EXPECT_EQ(Search({"-l", "cat NEAR/1 dog"}), (Outcome{0, "one\ntwo\n", note}));
  EXPECT_EQ(Search({"-l", "\"cat dog\" OR \"dog cat\""}), (Outcome{0, "one\ntwo\n", note}));
  EXPECT_EQ(Names("cat dog"), "one two ");
  EXPECT_EQ(Search({"--explain", "cat NEAR/1 dog"}).err.find("NEAR/1 (taken for AND): "), 0u);
}

TEST_F(SearchCommandTest, IndexThatNeverHadADocumentHasNoHits) {
  { Kestan().OpenIndex(Path("fresh").c_str(), 1); }
  EXPECT_EQ(Run({"search", "fresh", "cat"}), kNoHits);
  EXPECT_EQ(Run({"search", "fresh", "NOT", "cat"}), kNoHits);
}

TEST_F(SearchCommandTest, IndexThatLostAllDocumentsHasNoHits) {
  ASSERT_EQ(Run({"remove", "my.index", "one", "two", "three", "four"}).status, 0);
  EXPECT_EQ(Search({"NOT cat"}), kNoHits);
  ASSERT_EQ(Run({"shrink", "my.index"}).status, 0);
  EXPECT_EQ(Search({"NOT cat"}), kNoHits);
}

TEST_F(SearchCommandTest, AnyTextIsAQuery) {
  EXPECT_EQ(Names("cat ca)t"), "");  // the words ca and t are in no document
  EXPECT_EQ(Names("(cat"), "three one two ");
  EXPECT_EQ(Names("\"cat"), "three one two ");
  EXPECT_EQ(Names("cat++ (((42"), "three one two ");
}

TEST_F(SearchCommandTest, LoneOperatorsAreWords) {
  Add("five", "Cat AND dog\n");
  EXPECT_EQ(Names("cat AND"), "five ");
  EXPECT_EQ(Names("AND dog"), "five ");
}

TEST_F(SearchCommandTest, QueryWithoutLettersFindsNothingWithANote) {
  const Outcome note{1, "", "the query holds no letters to search for\n"};
  EXPECT_EQ(Search({"42"}), note);
  EXPECT_EQ(Search({""}), note);
  EXPECT_EQ(Search({"? -(7) \"\""}), note);
}

TEST_F(SearchCommandTest, QueryWithoutLettersIsANoteInJson) {
  const Outcome outcome = Run({"search", "my.index", "--json", "42"});
  EXPECT_EQ(outcome, (Outcome{1,
                              "{\"schema\":1,\"query\":\"42\",\"total\":0,\"hits\":[],"
                              "\"suggestions\":[],\"notes\":[\"the query holds no letters to "
                              "search for\"]}\n",
                              ""}));
}

TEST_F(SearchCommandTest, QueryWithoutLettersStillNeedsAnIndex) {
  EXPECT_EQ(Run({"search", "none", "42"}),
            Failure("cannot open index 'none': no such file; kestan index makes one"));
}

TEST_F(SearchCommandTest, MinusExcludesDocuments) {
  EXPECT_EQ(Names("cat -dog"), "three ");
  EXPECT_EQ(Names("cat -(dog x)"), "three one ");
  EXPECT_EQ(Names("cat -\"cat dog\""), "three two ");
}

TEST_F(SearchCommandTest, QuotedWordsMustBeNeighbours) {
  EXPECT_EQ(Names("\"cat dog\""), "one ");
  EXPECT_EQ(Names("\"dog cat\""), "one ");
  EXPECT_EQ(Names("\"dog x\""), "two ");
}

TEST_F(SearchCommandTest, LongerPhrasesMatchForwardsAndBackwards) {
  Add("forwards", "red green blue white\n");
  Add("backwards", "white blue green red\n");
  Add("mixed", "green red blue white\n");
  EXPECT_EQ(Names("\"red green blue\""), "forwards backwards ");
  EXPECT_EQ(Names("\"red green blue white\""), "forwards backwards ");
  EXPECT_EQ(Names("\"green red blue\""), "mixed ");
}

TEST_F(SearchCommandTest, WordThatComesTwiceInAPhraseMayMatchInOnePlace) {
  Add("short", "to be\n");
  EXPECT_EQ(Names("\"to be to\""), "short ");
}

TEST_F(SearchCommandTest, ExpansionsFindSimilarWords) {
  EXPECT_EQ(Names("ca* bi*"), "three ");
  EXPECT_EQ(Names("dgo~ x"), "two ");
}

TEST_F(SearchCommandTest, AccentsMakeNoDifference) {
  Add("five", "Zurich\n");
  EXPECT_EQ(Names("z\xc3\xbcrich"), "five ");
  EXPECT_EQ(Names("Z\xc3\xbcrich"), "five ");
}

TEST_F(SearchCommandTest, AnyFindsTheMostRelevantFirst) {
  // "cat" is in most documents, "bird" and "dogs" in few.
  EXPECT_EQ(Run({"search", "my.index", "--any", "Which is a cat or a bird?"}).out.substr(0, 10),
            "100 three\n");
  EXPECT_EQ(Run({"search", "-l", "--any", "my.index", "fishes fish-x cow"}), Success("four\n"));
}

TEST_F(SearchCommandTest, AnyCountsRareWordsMore) {
  EXPECT_EQ(Run({"search", "-l", "--any", "my.index", "cat fish"}),
            Success("four\nthree\none\ntwo\n"));
  EXPECT_EQ(Run({"search", "--any", "--order", "score", "my.index", "cat fish"}),
            Success("100 three\n50 one\n50 two\n50 four\n"));
}

TEST_F(SearchCommandTest, AnyCountsOccurrencesThatPercentagesRoundAway) {
  std::string often;
  for (int i = 0; i < 300; ++i) often += "cow ";
  {
    Kestan engine;
    ASSERT_EQ(engine.OpenIndex(Path("my.index").c_str(), 1), 0);
    engine.AddDocumentWords("once", "cow");
    engine.AddDocumentWords("thrice", "cow cow cow");
    engine.AddDocumentWords("often", often.c_str());
  }
  EXPECT_EQ(Run({"search", "my.index", "cow"}), Success("100 often\n1 thrice\n0 once\n"));
  EXPECT_EQ(Run({"search", "-l", "--any", "my.index", "cow"}), Success("often\nthrice\nonce\n"));
}

TEST_F(SearchCommandTest, AnyPrefersShortFilesWhereSizesAreKnown) {
  {
    Kestan engine;
    ASSERT_EQ(engine.OpenIndex(Path("my.index").c_str(), 1), 0);
    engine.DBPutUser("one", "size=900 mtime=1.1");
    engine.DBPutUser("two", "size=100 mtime=1.1");
  }
  EXPECT_EQ(Run({"search", "-l", "--any", "my.index", "dog"}), Success("two\none\n"));
}

TEST_F(SearchCommandTest, SearchDoesNotChangeTheIndex) {
  const std::string before = IndexBytes();
  Search({"cat OR dog NOT fish"});
  Search({"("});
  EXPECT_EQ(IndexBytes(), before);
}

TEST_F(SearchCommandTest, DeepestQueryWorksAndDeeperOnesAreFlattened) {
  const auto nested = [](std::size_t depth) {
    return std::string(depth, '(') + "fish" + std::string(depth, ')');
  };
  EXPECT_EQ(Search({nested(200)}), Success("100 four\n"));
  EXPECT_EQ(Search({nested(300)}), Success("100 four\n"));
}

TEST_F(SearchCommandTest, LongChainsWork) {
  std::vector<std::string> query{"fish"};
  for (int i = 0; i < 5000; ++i) query.insert(query.end(), {"OR", "fish"});
  EXPECT_EQ(Search(query), Success("100 four\n"));
}

}  // namespace
}  // namespace kestan_tests
