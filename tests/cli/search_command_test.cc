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

TEST_F(SearchCommandTest, BestComesFirst) {
  EXPECT_EQ(Search({"cat"}), Success("100 three\n50 one\n50 two\n"));
}

TEST_F(SearchCommandTest, EqualsComeInOrderOfAddition) { EXPECT_EQ(Names("dog"), "one two "); }

TEST_F(SearchCommandTest, ManyEqualsKeepTheirOrderToo) {
  std::string expected;
  for (int i = 100; i < 150; ++i) {
    Write("d/" + std::to_string(i), i % 3 == 0 ? "cow cow\n" : "cow\n");
    if (i % 3 != 0) expected += "50 d/" + std::to_string(i) + "\n";
  }
  ASSERT_EQ(Run({"index", "my.index", "d"}).status, 0);
  const std::string out = Search({"cow"}).out;
  EXPECT_EQ(out.substr(out.find("50 d/")), expected);
}

TEST_F(SearchCommandTest, CaseDoesNotMatter) {
  EXPECT_EQ(Names("fish"), "four ");
  EXPECT_EQ(Names("FISH"), "four ");
  EXPECT_EQ(Names("CAT"), "three one two ");
}

TEST_F(SearchCommandTest, NoHitsGiveStatusOne) {
  EXPECT_EQ(Search({"cow"}), kNoHits);
  EXPECT_EQ(Search({"bird", "dog"}), kNoHits);
}

TEST_F(SearchCommandTest, ArgumentsAreJoined) {
  EXPECT_EQ(Search({"cat", "AND", "(dog", "OR", "bird)"}), Search({"cat AND (dog OR bird)"}));
  EXPECT_EQ(Search({"cat", "NOT", "dog"}), Success("100 three\n"));
}

TEST_F(SearchCommandTest, NamesOfSubcommandsAreWordsHere) {
  Add("five", "list index\n");
  EXPECT_EQ(Search({"list", "index"}), Success("100 five\n"));
}

TEST_F(SearchCommandTest, AndWantsBoth) {
  EXPECT_EQ(Names("cat AND dog"), "one two ");
  EXPECT_EQ(Names("cat dog"), "one two ");
  EXPECT_EQ(Names("cat AND cow"), "");
  EXPECT_EQ(Names("cow AND cat"), "");
}

TEST_F(SearchCommandTest, OrWantsEither) {
  EXPECT_EQ(Names("bird OR fish"), "three four ");
  EXPECT_EQ(Names("cow OR fish"), "four ");
  EXPECT_EQ(Names("fish OR cow"), "four ");
  EXPECT_EQ(Names("cow OR hen"), "");
}

TEST_F(SearchCommandTest, NotWantsTheOthers) {
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

TEST_F(SearchCommandTest, WordsOfOneArgumentStandNextToEachOther) {
  Add("next", "An e-mail came.\n");
  Add("apart", "Mail me at letter e.\n");
  EXPECT_EQ(Names("e-mail"), "next ");
  EXPECT_EQ(Names("e mail"), "next apart ");
}

TEST_F(SearchCommandTest, LongWordsMatchByTheirFirst64Letters) {
  Add("long", std::string(70, 'x') + "\n");
  EXPECT_EQ(Names(std::string(80, 'x')), "long ");
  EXPECT_EQ(Names(std::string(63, 'x')), "");
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

TEST_F(SearchCommandTest, IndexWithoutPositionsTakesNearForAnd) {
  {
    Kestan engine;
    ASSERT_EQ(engine.OpenIndex(Path("my.index").c_str(), 1), 0);
    ASSERT_EQ(engine.SetOptionFlag(1), 0);
  }
  EXPECT_EQ(Names("cat NEAR/1 dog"), "one two ");
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

TEST_F(SearchCommandTest, SyntaxErrorsNameTheColumn) {
  EXPECT_EQ(Search({"cat", "ca)t"}), Failure("query, column 7: \")\" without \"(\""));
  EXPECT_EQ(Search({"(cat"}), Failure("query, column 1: \"(\" without \")\""));
  EXPECT_EQ(Search({""}), Failure("query, column 1: the query is empty"));
  EXPECT_EQ(Search({"cat", "AND"}), Failure("query, column 5: \"AND\" needs a word after it"));
  EXPECT_EQ(Search({"42"}), Failure("query, column 1: \"42\" holds no letters to search for"));
}

TEST_F(SearchCommandTest, SearchingLeavesTheIndexAsItWas) {
  const std::string before = IndexBytes();
  Search({"cat OR dog NOT fish"});
  Search({"("});
  EXPECT_EQ(IndexBytes(), before);
}

TEST_F(SearchCommandTest, DeepestQueryWorksAndDeeperOnesAreRefused) {
  const auto nested = [](std::size_t depth) {
    return std::string(depth, '(') + "fish" + std::string(depth, ')');
  };
  EXPECT_EQ(Search({nested(200)}), Success("100 four\n"));
  EXPECT_EQ(Search({nested(300)}), Failure("query, column 201: nested more than 200 levels deep"));
}

TEST_F(SearchCommandTest, LongChainsWork) {
  std::vector<std::string> query{"fish"};
  for (int i = 0; i < 5000; ++i) query.insert(query.end(), {"OR", "fish"});
  EXPECT_EQ(Search(query), Success("100 four\n"));
}

}  // namespace
}  // namespace kestan_tests
