// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/sync/roots.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "cli/console/message.h"

namespace kestan_cli {
namespace {

Roots Example() {
  Roots roots;
  roots["/a"];
  RootOptions& options = roots["/b/Z\xc3\xbcrich"];
  options.reading = {{"*.txt"}, {".git", "a\"b\\"}, {"x=cat {}"}, "/stop", true, true, true};
  options.prune = true;
  options.given_in = "12 34.5";
  roots["/c/\xff\xfe"].reading.exclude = {"\xff", ""};
  return roots;
}

void ExpectSame(const Roots& left, const Roots& right) {
  ASSERT_EQ(left.size(), right.size());
  for (const auto& [path, options] : left) {
    ASSERT_EQ(right.count(path), 1u) << path;
    const RootOptions& other = right.at(path);
    EXPECT_TRUE(options.reading == other.reading) << path;
    EXPECT_EQ(options.prune, other.prune) << path;
    EXPECT_EQ(options.given_in, other.given_in) << path;
    EXPECT_FALSE(other.is_given_now) << path;
  }
}

std::string Complaint(const std::string& property) {
  try {
    DecodeRoots(property, "my.index");
  } catch (const CommandError& error) {
    return error.what();
  }
  return "";
}

TEST(RootsTest, ComeBackAsTheyWere) {
  ExpectSame(Example(), DecodeRoots(EncodeRoots(Example()), "my.index"));
}

TEST(RootsTest, NoneTakeNoProperty) {
  EXPECT_EQ(EncodeRoots({}), "");
  EXPECT_TRUE(DecodeRoots("", "my.index").empty());
}

TEST(RootsTest, OptionsThatAreNotSetTakeNoRoom) {
  Roots roots;
  roots["/a"];
  EXPECT_EQ(EncodeRoots(roots), R"({"version":1,"roots":[{"path":"/a"}]})");
}

TEST(RootsTest, OptionsOfThisRunAreNotStored) {
  Roots roots;
  roots["/a"].is_given_now = true;
  EXPECT_EQ(EncodeRoots(roots), R"({"version":1,"roots":[{"path":"/a"}]})");
}

TEST(RootsTest, OtherVersionsAreNamed) {
  EXPECT_NE(Complaint(R"({"version":2,"roots":[]})").find("written by another version"),
            std::string::npos);
}

TEST(RootsTest, WhatIsNoListOfRootsIsDamage) {
  for (const char* property :
       {"x", "[]", "{}", "1", "null", R"({"version":1})", R"({"version":1,"roots":{}})",
        R"({"version":1,"roots":[[]]})", R"({"version":1,"roots":[{}]})",
        R"({"version":1,"roots":[{"path":"a"}]})", R"({"version":1,"roots":[{"path":[300]}]})",
        R"({"version":1,"roots":[{"path":[-1]}]})", R"({"version":1,"roots":[{"path":["/"]}]})",
        R"({"version":1,"roots":[{"path":"/a\u0000b"}]})",
        R"({"version":1,"roots":[{"path":[47,0]}]})",
        R"({"version":1,"roots":[{"path":"/a","include":"x"}]})",
        R"({"version":1,"roots":[{"path":"/a","include":[1]}]})",
        R"({"version":1,"roots":[{"path":"/a","stop_words":true}]})",
        R"({"version":1,"roots":[{"path":"/a","prune":"yes"}]})"}) {
    EXPECT_NE(Complaint(property).find("index 'my.index': what it remembers"), std::string::npos)
        << property;
  }
}

TEST(RootsTest, DeepNestingIsDamage) {
  EXPECT_NE(Complaint(std::string(100000, '[')), "");
  EXPECT_NE(Complaint(std::string(100000, '[') + std::string(100000, ']')), "");
}

// Whatever the bytes, they are roots or an error.
TEST(RootsTest, ChangedBytesAreRootsOrAnError) {
  const std::string good = EncodeRoots(Example());
  std::mt19937 random(7);  // NOLINT(cert-msc32-c,cert-msc51-cpp): the same bytes every time
  for (std::size_t at = 0; at < good.size(); ++at) {
    Complaint(good.substr(0, at));
    for (int i = 0; i < 8; ++i) {
      std::string changed = good;
      changed[at] = static_cast<char>(random());
      const std::string complaint = Complaint(changed);
      if (complaint.empty()) {
        for (const auto& [path, options] : DecodeRoots(changed, "")) EXPECT_EQ(path[0], '/');
      }
    }
  }
}

}  // namespace
}  // namespace kestan_cli
