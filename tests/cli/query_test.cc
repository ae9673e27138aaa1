#include "cli/query.h"

#include <gtest/gtest.h>

#include <string>

#include "cli/message.h"

namespace kestan_cli {
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
    case Query::Kind::kWord:
      break;
  }
  return "";
}

// Writes a tree as (operator operand operand); within NEAR, k: stands before an operand.
std::string Spelled(const Query& query) {
  if (query.kind == Query::Kind::kWord) return query.word;
  std::string text = "(" + NameOf(query.kind);
  for (std::size_t i = 0; i < query.operands.size(); ++i) {
    text += " ";
    if (query.kind == Query::Kind::kNear && i > 0) {
      text += std::to_string(query.operands[i].distance_words) + ":";
    }
    text += Spelled(query.operands[i]);
  }
  return text + ")";
}

std::string Parsed(const std::string& text) { return Spelled(ParseQuery(text)); }

std::string Complaint(const std::string& text) {
  try {
    return "no complaint about " + Parsed(text);
  } catch (const CommandError& error) {
    return error.what();
  }
}

std::string Nested(unsigned depth) {
  return std::string(depth, '(') + "a" + std::string(depth, ')');
}

std::string Negated(unsigned times) {
  std::string text;
  for (unsigned i = 0; i < times; ++i) text += "NOT ";
  return text + "a";
}

TEST(QueryTest, OneWordIsAWord) { EXPECT_EQ(Parsed(" cat "), "cat"); }

TEST(QueryTest, WordsAreFoldedToLowerCase) { EXPECT_EQ(Parsed("CaT"), "cat"); }

TEST(QueryTest, WordsSideBySideMeanAnd) {
  EXPECT_EQ(Parsed("a b\tc"), "(and a b c)");
  EXPECT_EQ(Parsed("a AND b c"), "(and a b c)");
}

TEST(QueryTest, OrIsTheLoosest) {
  EXPECT_EQ(Parsed("a b OR c AND d OR e"), "(or (and a b) (and c d) e)");
}

TEST(QueryTest, NearIsTighterThanAnd) {
  EXPECT_EQ(Parsed("a b NEAR/3 c AND d"), "(and a (near b 3:c) d)");
}

TEST(QueryTest, NearAssociatesToTheLeft) {
  EXPECT_EQ(Parsed("a NEAR/1 b NEAR/20 c"), "(near a 1:b 20:c)");
  EXPECT_EQ(Parsed("a NEAR/1 (b NEAR/2 c)"), "(near a 1:(near b 2:c))");
}

TEST(QueryTest, NotIsTheTightest) {
  EXPECT_EQ(Parsed("NOT a b"), "(and (not a) b)");
  EXPECT_EQ(Parsed("NOT a NEAR/2 b"), "(near (not a) 2:b)");
  EXPECT_EQ(Parsed("a NOT NOT b"), "(and a (not (not b)))");
}

TEST(QueryTest, ParenthesesGroup) {
  EXPECT_EQ(Parsed("a (b OR c)"), "(and a (or b c))");
  EXPECT_EQ(Parsed("NOT(a b)"), "(not (and a b))");
  EXPECT_EQ(Parsed("a(b)c"), "(and a b c)");
}

TEST(QueryTest, OperatorsAreInCapitals) {
  EXPECT_EQ(Parsed("and or Not near NEARBY"), "(and and or not near nearby)");
}

TEST(QueryTest, WordsOfOneArgumentStandNextToEachOther) {
  EXPECT_EQ(Parsed("e-mail"), "(near e 1:mail)");
  EXPECT_EQ(Parsed("x /etc/init.d"), "(and x (near etc 1:init 1:d))");
}

TEST(QueryTest, WordsAreCleanedAsDocumentsAre) {
  EXPECT_EQ(Parsed("don't"), "dont");
  EXPECT_EQ(Parsed("\"cat\""), "cat");
  EXPECT_EQ(Parsed(std::string(64, 'x')), std::string(64, 'x'));
  EXPECT_EQ(Parsed(std::string(65, 'x')), std::string(64, 'x'));
  // In a document, these would be encoded data if they stood alone on a line.
  EXPECT_EQ(Parsed("M" + std::string(60, 'A')), "m" + std::string(60, 'a'));
  EXPECT_EQ(Parsed(std::string(72, 'x')), std::string(64, 'x'));
}

TEST(QueryTest, WordWithoutLettersIsNamedWithItsColumn) {
  EXPECT_EQ(Complaint("a 42"), "query, column 3: \"42\" holds no letters to search for");
}

TEST(QueryTest, OtherLettersThanAToZAreRefused) {
  EXPECT_EQ(
      Complaint("a caf\xc3\xa9"),
      "query, column 3: \"caf\xc3\xa9\" has letters other than A to Z, which are not indexed");
}

TEST(QueryTest, ColumnsCountCharacters) {
  EXPECT_EQ(Complaint("a )caf\xc3\xa9"), "query, column 3: \")\" without \"(\"");
  EXPECT_EQ(Complaint("caf\xc3\xa9 )"), "query, column 6: \")\" without \"(\"");
}

TEST(QueryTest, EmptyQueryIsRefused) {
  EXPECT_EQ(Complaint(""), "query, column 1: the query is empty");
  EXPECT_EQ(Complaint(" \t"), "query, column 1: the query is empty");
  EXPECT_EQ(Complaint("a ()"), "query, column 4: nothing between \"(\" and \")\"");
}

TEST(QueryTest, ParenthesesMustMatch) {
  EXPECT_EQ(Complaint("cat ca)t"), "query, column 7: \")\" without \"(\"");
  EXPECT_EQ(Complaint("a (b OR (c)"), "query, column 3: \"(\" without \")\"");
  EXPECT_EQ(Complaint(")("), "query, column 1: \")\" without \"(\"");
}

TEST(QueryTest, LostParenthesisIsToldBeforeAnythingElse) {
  EXPECT_EQ(Complaint("AND 42 ("), "query, column 8: \"(\" without \")\"");
}

TEST(QueryTest, OperatorsNeedOperands) {
  EXPECT_EQ(Complaint("a AND"), "query, column 3: \"AND\" needs a word after it");
  EXPECT_EQ(Complaint("a OR OR b"), "query, column 3: \"OR\" needs a word after it");
  EXPECT_EQ(Complaint("a (b NOT) c"), "query, column 6: \"NOT\" needs a word after it");
  EXPECT_EQ(Complaint("a NEAR/2"), "query, column 3: \"NEAR/2\" needs a word after it");
  EXPECT_EQ(Complaint("OR a"), "query, column 1: \"OR\" needs a word before it");
  EXPECT_EQ(Complaint("a (NEAR/2 b)"), "query, column 4: \"NEAR/2\" needs a word before it");
}

TEST(QueryTest, NearNeedsADistance) {
  const std::string end = " needs a distance of 1 or more, as in NEAR/3";
  EXPECT_EQ(Complaint("a NEAR b"), "query, column 3: \"NEAR\"" + end);
  EXPECT_EQ(Complaint("a NEAR/ b"), "query, column 3: \"NEAR/\"" + end);
  EXPECT_EQ(Complaint("a NEAR/0 b"), "query, column 3: \"NEAR/0\"" + end);
  EXPECT_EQ(Complaint("a NEAR/-1 b"), "query, column 3: \"NEAR/-1\"" + end);
  EXPECT_EQ(Complaint("a NEAR/3x b"), "query, column 3: \"NEAR/3x\"" + end);
  EXPECT_EQ(Complaint("a NEAR/2147483648 b"), "query, column 3: \"NEAR/2147483648\"" + end);
}

TEST(QueryTest, LargestDistanceIsThatOfAnInt) {
  EXPECT_EQ(Parsed("a NEAR/1 b"), "(near a 1:b)");
  EXPECT_EQ(Parsed("a NEAR/2147483647 b"), "(near a 2147483647:b)");
}

TEST(QueryTest, ParenthesesNestTwoHundredDeep) {
  EXPECT_EQ(Parsed(Nested(200)), "a");
  EXPECT_EQ(Complaint(Nested(201)), "query, column 201: nested more than 200 levels deep");
}

TEST(QueryTest, NotsNestTwoHundredDeep) {
  EXPECT_EQ(Complaint(Negated(200)).substr(0, 16), "no complaint abo");
  EXPECT_EQ(Complaint(Negated(201)), "query, column 801: nested more than 200 levels deep");
}

TEST(QueryTest, DepthCountsWhatIsOpenAndNotWhatWasClosed) {
  std::string text;
  for (int i = 0; i < 300; ++i) text += "(NOT a) ";
  EXPECT_EQ(ParseQuery(text).operands.size(), 300u);
}

TEST(QueryTest, LongChainsAreNotDeep) {
  std::string text = "a";
  for (int i = 0; i < 100000; ++i) text += " OR a";
  EXPECT_EQ(ParseQuery(text).operands.size(), 100001u);
}

TEST(QueryTest, HugeNestingIsRefusedWithoutOverflow) {
  EXPECT_EQ(Complaint(Nested(1000000)), "query, column 201: nested more than 200 levels deep");
}

}  // namespace
}  // namespace kestan_cli
