// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/query/query_parser.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kestan::search {
namespace {

std::string NameOf(Query::Kind kind) {
  switch (kind) {
    case Query::Kind::kNot:
      return "not";
    case Query::Kind::kNear:
      return "near";
    case Query::Kind::kAnd:
      return "and";
    case Query::Kind::kOr:
      return "or";
    case Query::Kind::kPrefix:
      return "prefix";
    case Query::Kind::kInflections:
      return "inflections";
    case Query::Kind::kFuzzy:
      return "fuzzy";
    case Query::Kind::kPhrase:
      return "phrase";
    case Query::Kind::kOptional:
      return "optional";
    case Query::Kind::kWord:
      break;
  }
  return "";
}

// Writes a tree as (operator operand operand); within NEAR, k: stands before an operand.
std::string Drawn(const Query& query) {
  if (query.kind == Query::Kind::kWord) return query.word;
  std::string text = "(" + NameOf(query.kind);
  if (query.kind == Query::Kind::kFuzzy) text += std::to_string(query.edits);
  if (query.operands.empty()) text += " " + query.word;
  for (std::size_t i = 0; i < query.operands.size(); ++i) {
    text += " ";
    if (query.kind == Query::Kind::kNear && i > 0) {
      text += std::to_string(query.operands[i].distance_words) + ":";
    }
    text += Drawn(query.operands[i]);
  }
  return text + ")";
}

std::string Parsed(const std::string& text,
                   DefaultOperator default_operator = DefaultOperator::kAnd) {
  const auto query = ParseQuery(text, default_operator);
  return query ? Drawn(*query) : "nothing";
}

// The same where quotes ask for words in their order.
std::string InOrder(const std::string& text,
                    DefaultOperator default_operator = DefaultOperator::kAnd) {
  const auto query = ParseQuery(text, default_operator, QuotesMean::kPhrase);
  return query ? Drawn(*query) : "nothing";
}

std::string Question(const std::string& text) { return Parsed(text, DefaultOperator::kOr); }

std::string Nested(unsigned depth) {
  return std::string(depth, '(') + "a" + std::string(depth, ')');
}

std::string Negated(unsigned times) {
  std::string text;
  for (unsigned i = 0; i < times; ++i) text += "NOT ";
  return text + "a";
}

TEST(QueryParserTest, OneWordIsAWord) { EXPECT_EQ(Parsed(" cat "), "cat"); }

TEST(QueryParserTest, CapitalsStay) { EXPECT_EQ(Parsed("CaT"), "CaT"); }

TEST(QueryParserTest, WordsSideBySideMeanAnd) {
  EXPECT_EQ(Parsed("a b\tc"), "(and a b c)");
  EXPECT_EQ(Parsed("a AND b c"), "(and a b c)");
}

TEST(QueryParserTest, OrBindsTheLeast) {
  EXPECT_EQ(Parsed("a b OR c AND d OR e"), "(or (and a b) (and c d) e)");
}

TEST(QueryParserTest, NearIsTighterThanAnd) {
  EXPECT_EQ(Parsed("a b NEAR/3 c AND d"), "(and a (near b 3:c) d)");
}

TEST(QueryParserTest, NearAssociatesToTheLeft) {
  EXPECT_EQ(Parsed("a NEAR/1 b NEAR/20 c"), "(near a 1:b 20:c)");
  EXPECT_EQ(Parsed("a NEAR/1 (b NEAR/2 c)"), "(near a 1:(near b 2:c))");
}

TEST(QueryParserTest, NotIsTheTightest) {
  EXPECT_EQ(Parsed("NOT a b"), "(and (not a) b)");
  EXPECT_EQ(Parsed("NOT a NEAR/2 b"), "(near (not a) 2:b)");
  EXPECT_EQ(Parsed("a NOT NOT b"), "(and a (not (not b)))");
}

TEST(QueryParserTest, ParenthesesGroup) {
  EXPECT_EQ(Parsed("a (b OR c)"), "(and a (or b c))");
  EXPECT_EQ(Parsed("NOT(a b)"), "(not (and a b))");
  EXPECT_EQ(Parsed("a(b)c"), "(and a b c)");
}

TEST(QueryParserTest, OperatorsAreInCapitals) {
  EXPECT_EQ(Parsed("and or Not near NEARBY"), "(and and or Not near NEARBY)");
}

TEST(QueryParserTest, WordsOfOneArgumentStandNextToEachOther) {
  EXPECT_EQ(Parsed("e-mail"), "(near e 1:mail)");
  EXPECT_EQ(Parsed("x /etc/init.d"), "(and x (near etc 1:init 1:d))");
}

TEST(QueryParserTest, WordsAreCleanedAsDocumentsAre) {
  EXPECT_EQ(Parsed("don't"), "dont");
  EXPECT_EQ(Parsed("\"cat\""), "cat");
  EXPECT_EQ(Parsed(std::string(64, 'x')), std::string(64, 'x'));
  EXPECT_EQ(Parsed(std::string(65, 'x')), std::string(64, 'x'));
  // In a document, these would be encoded data if they stood alone on a line.
  EXPECT_EQ(Parsed("M" + std::string(60, 'A')), "M" + std::string(60, 'A'));
  EXPECT_EQ(Parsed(std::string(72, 'x')), std::string(64, 'x'));
}

TEST(QueryParserTest, OtherLettersAreWrittenInAscii) {
  EXPECT_EQ(Parsed("a caf\xc3\xa9"), "(and a cafe)");
  EXPECT_EQ(Parsed("Z\xc3\xbcrich"), "Zurich");
  EXPECT_EQ(Parsed("caf\xe9"), "cafe");
}

TEST(QueryParserTest, QuotesMakeWordsStandNextToEachOther) {
  EXPECT_EQ(Parsed("x \"a b  c\" y"), "(and x (near a 1:b 1:c) y)");
  EXPECT_EQ(Parsed("\"a b\"c"), "(and (near a 1:b) c)");
  EXPECT_EQ(Parsed("\xe2\x80\x9c"
                   "a b\xe2\x80\x9d"),
            "(near a 1:b)");
  EXPECT_EQ(Parsed("x NEAR/4 \"a b\" NEAR/2 y"), "(near x 4:(near a 1:b) 2:y)");
}

TEST(QueryParserTest, NothingIsAnOperatorInQuotes) {
  EXPECT_EQ(Parsed("\"a AND -b (c* OR d~1 NEAR/2\""), "(near a 1:AND 1:b 1:c 1:OR 1:d 1:NEAR)");
  EXPECT_EQ(Parsed("\"NOT\" a"), "(and NOT a)");
}

TEST(QueryParserTest, QuoteLeftOpenIsLeftOut) {
  EXPECT_EQ(Parsed("a \"b OR c"), "(or (and a b) c)");
  EXPECT_EQ(Parsed("a b\" c"), "(and a b c)");
  EXPECT_EQ(Parsed("\"a b\" \""), "(near a 1:b)");
}

TEST(QueryParserTest, MinusIsNot) {
  EXPECT_EQ(Parsed("a -b"), "(and a (not b))");
  EXPECT_EQ(Parsed("a -(b OR c)"), "(and a (not (or b c)))");
  EXPECT_EQ(Parsed("a -\"b c\""), "(and a (not (near b 1:c)))");
  EXPECT_EQ(Parsed("a -b* (-c)"), "(and a (not (prefix b)) (not c))");
  EXPECT_EQ(Parsed("-AND"), "(not AND)");
}

TEST(QueryParserTest, OtherMinusesAreText) {
  EXPECT_EQ(Parsed("a - b"), "(and a b)");
  EXPECT_EQ(Parsed("a --b -"), "(and a b)");
  EXPECT_EQ(Parsed("a-b"), "(near a 1:b)");
  EXPECT_EQ(Parsed("a (-)b"), "(and a b)");
  EXPECT_EQ(Parsed("a -( b"), "(and a b)");
}

TEST(QueryParserTest, StarAsksForBeginnings) {
  EXPECT_EQ(Parsed("cat*"), "(prefix cat)");
  EXPECT_EQ(Parsed("e-mail*"), "(near e 1:(prefix mail))");
  EXPECT_EQ(Parsed("don't*"), "(prefix dont)");
}

TEST(QueryParserTest, TildeAsksForFuzzyMatches) {
  EXPECT_EQ(Parsed("cat~1 dog~2 cow~"), "(and (fuzzy1 cat) (fuzzy2 dog) (fuzzy1 cow))");
}

TEST(QueryParserTest, OtherStarsAndTildesAreText) {
  EXPECT_EQ(Parsed("* ~1 ~"), "nothing");
  EXPECT_EQ(Parsed("*cat c*t"), "(and cat (near c 1:t))");
  EXPECT_EQ(Parsed("cat~3 cat~0"), "(and cat cat)");
  EXPECT_EQ(Parsed("cat.* cat-~1 cat~~"), "(and cat cat cat)");
}

TEST(QueryParserTest, PlainTextIsTakenLiterally) {
  EXPECT_EQ(Parsed("C++"), "C");
  EXPECT_EQ(Parsed("don't"), "dont");
  EXPECT_EQ(Parsed("f(x) = {y}; // z"), "(and f x y z)");
  EXPECT_EQ(Parsed(std::string("a\0b", 3)), "(near a 1:b)");
}

TEST(QueryParserTest, PartWithoutLettersGoesWithItsOperator) {
  EXPECT_EQ(Parsed("a 42"), "a");
  EXPECT_EQ(Parsed("a AND 42"), "a");
  EXPECT_EQ(Parsed("42 OR a"), "a");
  EXPECT_EQ(Parsed("a NOT 42"), "a");
  EXPECT_EQ(Parsed("a -42 -(7)"), "a");
  EXPECT_EQ(Parsed("a NEAR/3 \"1 2\""), "a");
}

TEST(QueryParserTest, PartWithoutLettersLeavesItsPlaceInNear) {
  EXPECT_EQ(Parsed("a NEAR/3 42 NEAR/2 b"), "(near a 5:b)");
  EXPECT_EQ(Parsed("42 NEAR/3 a NEAR/2 b"), "(near a 2:b)");
  EXPECT_EQ(Parsed("a NEAR/2147483647 42 NEAR/2 b"), "(near a 2147483647:b)");
}

TEST(QueryParserTest, TextWithoutLettersIsNoQuery) {
  EXPECT_EQ(Parsed(""), "nothing");
  EXPECT_EQ(Parsed(" \t"), "nothing");
  EXPECT_EQ(Parsed("42 -7 (3) \"5\" () ) ("), "nothing");
  EXPECT_EQ(Parsed("42 AND 43"), "nothing");
}

TEST(QueryParserTest, EmptyParenthesesAreLeftOut) {
  EXPECT_EQ(Parsed("a ()"), "a");
  EXPECT_EQ(Parsed("a AND () AND b -()"), "(and a b)");
}

TEST(QueryParserTest, LostParenthesesAreLeftOut) {
  EXPECT_EQ(Parsed("cat ca)t"), "(and cat ca t)");
  EXPECT_EQ(Parsed("a (b OR (c)"), "(or (and a b) c)");
  EXPECT_EQ(Parsed(")a("), "a");
  EXPECT_EQ(Parsed("a )caf\xc3\xa9"), "(and a cafe)");
  EXPECT_EQ(Parsed("(AND 42 (x"), "(and AND x)");
}

TEST(QueryParserTest, OperatorsWithoutOperandsAreWords) {
  EXPECT_EQ(Parsed("a AND"), "(and a AND)");
  EXPECT_EQ(Parsed("OR a"), "(and OR a)");
  EXPECT_EQ(Parsed("a (b NOT) c"), "(and a (and b NOT) c)");
  EXPECT_EQ(Parsed("a OR OR b"), "(or (and a OR) b)");
  EXPECT_EQ(Parsed("NOT AND NOT"), "(and NOT NOT)");
  EXPECT_EQ(Parsed("AND"), "AND");
  EXPECT_EQ(Parsed("a AND )"), "(and a AND)");
}

TEST(QueryParserTest, LoneNearIsAWordToo) {
  EXPECT_EQ(Parsed("a NEAR/2"), "(and a NEAR)");
  EXPECT_EQ(Parsed("a (NEAR/2 b)"), "(and a (and NEAR b))");
}

TEST(QueryParserTest, NearWithoutADistanceIsAWord) {
  EXPECT_EQ(Parsed("a NEAR b"), "(and a NEAR b)");
  EXPECT_EQ(Parsed("a NEAR/ b"), "(and a NEAR b)");
  EXPECT_EQ(Parsed("a NEAR/0 b"), "(and a NEAR b)");
  EXPECT_EQ(Parsed("a NEAR/-1 b"), "(and a NEAR b)");
  EXPECT_EQ(Parsed("a NEAR/x b"), "(and a (near NEAR 1:x) b)");
  EXPECT_EQ(Parsed("a NEAR/3x b"), "(and a (near NEAR 1:x) b)");
  EXPECT_EQ(Parsed("a NEAR/2147483648 b"), "(and a NEAR b)");
}

TEST(QueryParserTest, LargestDistanceIsThatOfAnInt) {
  EXPECT_EQ(Parsed("a NEAR/1 b"), "(near a 1:b)");
  EXPECT_EQ(Parsed("a NEAR/2147483647 b"), "(near a 2147483647:b)");
}

TEST(QueryParserTest, ParenthesesNestTwoHundredDeep) {
  EXPECT_EQ(Parsed(Nested(200)), "a");
  EXPECT_EQ(Parsed("x OR " + Nested(201)), "(or x a)");
}

TEST(QueryParserTest, DeeperParenthesesAreLeftOut) {
  const std::string open(199, '(');
  const std::string close(199, ')');
  EXPECT_EQ(Parsed("(" + open + "a (b OR c)" + close + ")"), "(or (and a b) c)");
  EXPECT_EQ(Parsed(open + "a (b OR c)" + close), "(and a (or b c))");
  EXPECT_EQ(Parsed("(" + open + "a AND () NEAR/2 b" + close + ")"), "(and a b)");
}

TEST(QueryParserTest, DeeperNotIsAWord) {
  const std::string deepest = Parsed(Negated(200));
  EXPECT_EQ(deepest.find("(not (not (not "), 0u);
  EXPECT_EQ(deepest.find("NOT"), std::string::npos);
  const std::string deeper = Parsed(Negated(201));
  EXPECT_NE(deeper.find(" NOT)"), std::string::npos);
  EXPECT_EQ(deeper.substr(deeper.size() - 3), " a)");
}

TEST(QueryParserTest, DepthCountsWhatIsOpenAndNotWhatWasClosed) {
  std::string text;
  for (int i = 0; i < 300; ++i) text += "(NOT a) ";
  EXPECT_EQ(ParseQuery(text)->operands.size(), 300u);
}

TEST(QueryParserTest, LongChainsAreNotDeep) {
  std::string text = "a";
  for (int i = 0; i < 100000; ++i) text += " OR a";
  EXPECT_EQ(ParseQuery(text)->operands.size(), 100001u);
}

TEST(QueryParserTest, HugeNestingDoesNotOverflow) {
  EXPECT_EQ(Parsed(Nested(1000000)), "a");
  EXPECT_TRUE(ParseQuery(Negated(100000)));
  EXPECT_EQ(Parsed(std::string(1000000, '(')), "nothing");
}

TEST(QuestionTest, WordsSideBySideMeanOr) {
  EXPECT_EQ(Question("wing flow"), "(or (inflections wing) (inflections flow))");
  EXPECT_EQ(Question("wing OR flow tail"),
            "(or (inflections wing) (inflections flow) (inflections tail))");
  EXPECT_EQ(Question("wing"), "(inflections wing)");
}

TEST(QuestionTest, AndAndNearStayWhatTheyAre) {
  EXPECT_EQ(Question("wing tail AND flow"),
            "(or (inflections wing) (and (inflections tail) (inflections flow)))");
  EXPECT_EQ(Question("wing NEAR/3 tail \"a b\""),
            "(or (near (inflections wing) 3:(inflections tail)) (near a 1:b))");
}

TEST(QuestionTest, NotLeavesOut) {
  EXPECT_EQ(Question("wing -tail flow NOT b"),
            "(and (or (inflections wing) (inflections flow)) (not (inflections tail)) (not "
            "(inflections b)))");
  EXPECT_EQ(Question("-tail -wing"), "(and (not (inflections tail)) (not (inflections wing)))");
  EXPECT_EQ(Question("(wing -tail) flow"),
            "(or (and (inflections wing) (not (inflections tail))) (inflections flow))");
}

TEST(QuestionTest, NotAfterOrIsOneOfThem) {
  EXPECT_EQ(Question("wing OR NOT tail"), "(or (inflections wing) (not (inflections tail)))");
}

TEST(QuestionTest, StopWordsAreLeftOut) {
  EXPECT_EQ(Question("What is the wing of an IT"), "(or (inflections wing) IT)");
  EXPECT_EQ(Question("\"to be\" or not"), "(near to 1:be)");
}

TEST(QuestionTest, StopWordsAloneStay) { EXPECT_EQ(Question("To be or not"), "(or To be or not)"); }

TEST(QuestionTest, CapitalsHaveNoInflections) {
  EXPECT_EQ(Question("Dewey flow* wing~1"), "(or Dewey (prefix flow) (fuzzy1 wing))");
}

TEST(PhraseTest, QuotesAskForTheirOrder) {
  EXPECT_EQ(InOrder("x \"a b  c\" y"), "(and x (phrase a b c) y)");
  EXPECT_EQ(InOrder("x NEAR/4 \"a b\" NEAR/2 y"), "(near x 4:(phrase a b) 2:y)");
  EXPECT_EQ(InOrder("-\"a b\""), "(not (phrase a b))");
}

TEST(PhraseTest, WhatPunctuationJoinsIsInOrder) {
  EXPECT_EQ(InOrder("e-mail"), "(phrase e mail)");
  EXPECT_EQ(InOrder("e-mail* e-mail~2"), "(and (phrase e (prefix mail)) (phrase e (fuzzy2 mail)))");
}

TEST(PhraseTest, OneWordInQuotesIsAWord) {
  EXPECT_EQ(InOrder("\"cat\""), "cat");
  EXPECT_EQ(InOrder("\"4 cat 2\""), "cat");
  EXPECT_EQ(InOrder("\" \""), "nothing");
}

TEST(PhraseTest, NearStaysInEitherOrder) { EXPECT_EQ(InOrder("a NEAR/1 b"), "(near a 1:b)"); }

TEST(PhraseTest, OperandsOfAPhraseHaveNoDistances) {
  const Query phrase = *ParseQuery("\"a b\"", DefaultOperator::kAnd, QuotesMean::kPhrase);
  for (const Query& word : phrase.operands) EXPECT_EQ(word.distance_words, 0);
}

TEST(PhraseTest, QuestionsKeepPhrasesWithTheirStopWords) {
  EXPECT_EQ(InOrder("the \"to be\" flow", DefaultOperator::kOr),
            "(or (phrase to be) (inflections flow))");
}

std::string AllOf(const std::string& text) { return Parsed(text, DefaultOperator::kAndOfQuestion); }

TEST(QueryParserTest, AQuestionForAllWordsLeavesStopWordsOut) {
  EXPECT_EQ(AllOf("the flow of air"), "(and (inflections flow) (inflections air))");
  EXPECT_EQ(AllOf("the flow -of"), "(and (inflections flow) (not of))");
  EXPECT_EQ(AllOf("the flow OR air"), "(or (inflections flow) (inflections air))");
}

TEST(QueryParserTest, AQuestionOfStopWordsAloneKeepsThem) {
  EXPECT_EQ(AllOf("to be or not to be"), "(and to be or not to be)");
  EXPECT_EQ(AllOf("the"), "the");
}

TEST(QueryParserTest, WordsInQuotesHaveNoForms) {
  EXPECT_EQ(AllOf("\"flow\" air"), "(and flow (inflections air))");
  EXPECT_EQ(AllOf("\"flow\""), "flow");
  EXPECT_EQ(Question("\"flow\" air"), "(or flow (inflections air))");
}

TEST(QueryParserTest, StopWordsInQuotesAreRequired) {
  EXPECT_EQ(AllOf("\"the\" flow"), "(and the (inflections flow))");
  EXPECT_EQ(Question("\"the\" flow"), "(or the (inflections flow))");
}

TEST(QueryParserTest, WordsBesideOperatorsHaveForms) {
  EXPECT_EQ(AllOf("flow AND air"), "(and (inflections flow) (inflections air))");
  EXPECT_EQ(AllOf("flow NEAR/3 air"), "(near (inflections flow) 3:(inflections air))");
  EXPECT_EQ(AllOf("flow -air"), "(and (inflections flow) (not (inflections air)))");
  EXPECT_EQ(AllOf("flow* air~"), "(and (prefix flow) (fuzzy1 air))");
}

TEST(QueryParserTest, AnOperatorKeepsStopWords) {
  EXPECT_EQ(AllOf("the AND flow"), "(and the (inflections flow))");
  EXPECT_EQ(AllOf("the NEAR/2 flow"), "(near the 2:(inflections flow))");
}

std::string Freely(const std::string& text) { return Parsed(text, DefaultOperator::kOrOfQuestion); }

TEST(QueryParserTest, AFreelyReadQuestionTakesJoinedWordsApart) {
  EXPECT_EQ(Freely("wind-tunnel flow"), Freely("wind tunnel flow"));
  EXPECT_EQ(Freely("flow -wind-tunnel"), "(and (inflections flow) (not (near wind 1:tunnel)))");
  EXPECT_EQ(Freely("a-b AND flow"), "(and (near a 1:b) (inflections flow))");
  EXPECT_EQ(Freely("(wind-tunnel) flow"), Freely("(wind tunnel) flow"));
  EXPECT_EQ(Freely("\"wind tunnel\" flow"), "(or (near wind 1:tunnel) (inflections flow))");
}

TEST(QueryParserTest, AFreelyReadQuestionFoldsACapitalThatBeginsAWord) {
  EXPECT_EQ(Freely("Flow of MEDLARS"), "(or (inflections flow) MEDLARS)");
}

TEST(QueryParserTest, AFreelyReadQuestionLeavesOutWhatIsAskedWith) {
  EXPECT_EQ(Freely("has anyone made flow using air, e.g. etc."),
            "(or (inflections flow) (inflections air))");
  EXPECT_EQ(Freely("using i.e."), "(or (inflections using) (near i 1:e))");
}

TEST(IsQuestionTest, QuestionsHaveStopWordsAndFourOthers) {
  EXPECT_TRUE(IsQuestion("what is the flow in a boundary layer over a wing?"));
  EXPECT_TRUE(IsQuestion("flow (boundary layer) of a \"wing\""));
  EXPECT_FALSE(IsQuestion("flow boundary layer wing"));
  EXPECT_FALSE(IsQuestion("the flow over a wing in the flow"));
  EXPECT_FALSE(IsQuestion("what is the flow over a wing and a wing and a layer"));
  EXPECT_FALSE(IsQuestion(""));
}

bool IsOften(const std::string& word) { return word == "jet" || word == "der"; }

std::string WithCommon(const std::string& text, DefaultOperator default_operator) {
  const auto query =
      ParseQuery(text, default_operator, QuotesMean::kPhrase, TextRules::kAsciiLetters, IsOften);
  return query ? Drawn(*query) : "nothing";
}

TEST(QueryParserTest, CommonWordsAreOptionalWhereTheyStand) {
  EXPECT_EQ(WithCommon("hot jet engine", DefaultOperator::kAndOfQuestion),
            "(and (inflections hot) (optional (inflections jet)) (inflections engine))");
  EXPECT_EQ(WithCommon("hot jet engine", DefaultOperator::kOrOfQuestion),
            "(or (inflections hot) (optional (inflections jet)) (inflections engine))");
  EXPECT_EQ(WithCommon("hot (der jet wing)", DefaultOperator::kAndOfQuestion),
            "(and (inflections hot) (and (optional (inflections der)) (optional (inflections jet)) "
            "(inflections wing)))");
}

TEST(QueryParserTest, OperatorsKeepCommonWords) {
  for (const char* text : {"hot AND jet", "hot OR jet", "hot NEAR/2 jet", "\"hot jet\""}) {
    EXPECT_EQ(WithCommon(text, DefaultOperator::kAndOfQuestion).find("optional"), std::string::npos)
        << text;
  }
}

TEST(QueryParserTest, WordsThatWereNotRequiredAreHandedOut) {
  OptionalWords optional;
  ParseQuery("the jet over the wing", DefaultOperator::kAndOfQuestion, QuotesMean::kPhrase,
             TextRules::kAsciiLetters, IsOften, &optional);
  EXPECT_EQ(optional.stop_words, (std::vector<std::string>{"the", "over"}));
  EXPECT_EQ(optional.common, std::vector<std::string>{"jet"});
}

TEST(IsQuestionTest, CommonWordsAreAsGoodAsStopWords) {
  const char* const text = "der schnelle Vogel fliegt weit";
  EXPECT_FALSE(IsQuestion(text));
  EXPECT_TRUE(IsQuestion(text, TextRules::kAsciiLetters, IsOften));
  EXPECT_FALSE(IsQuestion("der schnelle Vogel fliegt", TextRules::kAsciiLetters, IsOften));
}

TEST(IsQuestionTest, AQuestionMarkAtTheEndMakesAQuestionOfFourWords) {
  EXPECT_TRUE(IsQuestion("flow boundary layer wing? "));
  EXPECT_TRUE(IsQuestion("flow boundary layer wing\xd8\x9f"));
  EXPECT_FALSE(IsQuestion("boundary layer wing?"));
  EXPECT_FALSE(IsQuestion("flow? boundary layer wing"));
}

TEST(IsQuestionTest, EightWordsAreAQuestionInAnyLanguage) {
  EXPECT_FALSE(IsQuestion("flow wing jet sand layer heat cone"));
  EXPECT_TRUE(IsQuestion("flow wing jet sand layer heat cone body"));
  EXPECT_FALSE(IsQuestion("flow wing jet sand layer heat cone cone"));
}

TEST(IsQuestionTest, OperatorsMakeNoQuestion) {
  EXPECT_TRUE(IsQuestion("the a b c flow layer wing"));
  for (const char* text : {"the flow AND sand layer wing", "the flow OR sand layer wing",
                           "the flow NEAR/2 sand layer wing", "the flow sand layer -wing",
                           "the flow sand layer wing*", "the flow sand layer wing~"}) {
    EXPECT_FALSE(IsQuestion(text)) << text;
  }
}

}  // namespace
}  // namespace kestan::search
