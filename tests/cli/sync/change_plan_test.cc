// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/sync/change_plan.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kestan_cli {
namespace {

using Names = std::vector<std::string>;

Fingerprint Of(std::uint64_t bytes, std::int64_t mtime, const std::string& hash) {
  return {{bytes, mtime, 0}, hash};
}

ChangePlan Plan(const std::vector<FoundFile>& files, const std::vector<KnownDocument>& documents,
                bool all = false) {
  return PlanChanges(
      files, documents, [](const std::string& name) { return name != "d/still"; }, all);
}

Names ToRead(const ChangePlan& plan) {
  Names names;
  for (const Candidate& candidate : plan.to_read) names.push_back(candidate.file.name);
  return names;
}

TEST(ChangePlanTest, NewFilesAreRead) {
  const ChangePlan plan = Plan({{"d/a", {7, 1, 0}}, {"d/b", {5, 1, 0}}}, {});
  EXPECT_EQ(ToRead(plan), (Names{"d/a", "d/b"}));
  EXPECT_EQ(plan.bytes_to_read, 12u);
  EXPECT_FALSE(plan.to_read[0].is_indexed);
}

TEST(ChangePlanTest, FilesOfTheSameSizeAndTimeAreNot) {
  const std::vector<KnownDocument> documents{{"d/a", Of(7, 1, "h")}};
  EXPECT_EQ(Plan({{"d/a", {7, 1, 0}}}, documents).unchanged, 1u);
  EXPECT_EQ(ToRead(Plan({{"d/a", {8, 1, 0}}}, documents)), Names{"d/a"});
  EXPECT_EQ(ToRead(Plan({{"d/a", {7, 2, 0}}}, documents)), Names{"d/a"});
  EXPECT_EQ(ToRead(Plan({{"d/a", {7, 1, 1}}}, documents)), Names{"d/a"});
}

TEST(ChangePlanTest, DocumentsWithoutAFingerprintAreRead) {
  const ChangePlan plan = Plan({{"d/a", {7, 1, 0}}}, {{"d/a", std::nullopt}});
  ASSERT_EQ(ToRead(plan), Names{"d/a"});
  EXPECT_TRUE(plan.to_read[0].is_indexed);
}

// A document that is a part of the file `container`.
KnownDocument PartOf(const std::string& container, const std::string& name) {
  Fingerprint fingerprint = Of(3, 0, "m");
  fingerprint.container_bytes = container.size();
  fingerprint.container = FileState{7, 1, 0};
  return {name, fingerprint};
}

TEST(ChangePlanTest, PartGivesWayToAFileOfItsName) {
  const std::vector<KnownDocument> documents{
      PartOf("d/box", "d/box##!"), PartOf("d/box", "d/box#!"), {"d/box#\"", Of(5, 1, "h")}};
  const ChangePlan plan =
      Plan({{"d/box", {7, 1, 0}}, {"d/box#!", {5, 1, 0}}, {"d/box#\"", {5, 1, 0}}}, documents);
  ASSERT_EQ(plan.renames.size(), 1u);
  EXPECT_EQ(plan.renames[0].from, "d/box#!");
  EXPECT_EQ(plan.renames[0].to, "d/box###!");
  EXPECT_EQ(ToRead(plan), Names{"d/box#!"});
  EXPECT_FALSE(plan.to_read[0].is_indexed);
  EXPECT_EQ(plan.unchanged, 3u);
}

TEST(ChangePlanTest, AllFilesAreReadWhereAskedFor) {
  EXPECT_EQ(ToRead(Plan({{"d/a", {7, 1, 0}}}, {{"d/a", Of(7, 1, "h")}}, true)), Names{"d/a"});
}

TEST(ChangePlanTest, DocumentsWithoutAFileVanishIfItIsGone) {
  const ChangePlan plan =
      Plan({{"d/b", {7, 1, 0}}, {"d/new", {7, 1, 0}}}, {{"d/a", Of(7, 1, "h")},
                                                        {"d/b", Of(7, 1, "h")},
                                                        {"d/old", std::nullopt},
                                                        {"d/still", Of(7, 1, "h")},
                                                        {"z", Of(7, 1, "h")}});
  EXPECT_EQ(plan.vanished.names(), (std::set<std::string>{"d/a", "d/old", "z"}));
  EXPECT_EQ(plan.unchanged, 1u);
  EXPECT_EQ(ToRead(plan), Names{"d/new"});
}

// Returns the name of a document with the content of `fingerprint`, taken out of `vanished`.
std::string TakeFrom(VanishedDocuments* vanished, const Fingerprint& fingerprint,
                     const std::string& preferred = "") {
  const KnownDocument* const found = vanished->Find(
      fingerprint, [&](const KnownDocument& each) { return each.name == preferred; });
  if (found == nullptr) return "";
  std::string name = found->name;
  vanished->Take(*found);
  return name;
}

TEST(VanishedDocumentsTest, IsTakenOnceByItsContent) {
  VanishedDocuments vanished;
  vanished.Add({"a", Of(7, 1, "h")});
  vanished.Add({"b", Of(7, 2, "h")});
  vanished.Add({"c", std::nullopt});
  EXPECT_EQ(TakeFrom(&vanished, Of(7, 9, "x")), "");
  EXPECT_EQ(TakeFrom(&vanished, Of(8, 9, "h")), "");
  EXPECT_EQ(TakeFrom(&vanished, Of(7, 9, "h")), "a");
  EXPECT_EQ(TakeFrom(&vanished, Of(7, 9, "h")), "b");
  EXPECT_EQ(TakeFrom(&vanished, Of(7, 9, "h")), "");
  EXPECT_EQ(vanished.names(), (std::set<std::string>{"c"}));
}

TEST(VanishedDocumentsTest, PreferredOneOfTheSameContentIsFoundFirst) {
  VanishedDocuments vanished;
  vanished.Add({"a", Of(7, 1, "h")});
  vanished.Add({"b", Of(7, 2, "h")});
  EXPECT_EQ(TakeFrom(&vanished, Of(7, 9, "h"), "b"), "b");
  EXPECT_EQ(TakeFrom(&vanished, Of(7, 9, "h"), "b"), "a");
}

}  // namespace
}  // namespace kestan_cli
