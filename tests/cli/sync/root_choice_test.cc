// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/sync/root_choice.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cli/console/message.h"

namespace kestan_cli {
namespace {

ReadingOptions Excluding(const std::string& pattern) {
  ReadingOptions options;
  options.exclude = {pattern};
  return options;
}

// The roots /a, which leaves out "x" and prunes, and /b.
Roots TwoRoots() {
  Roots roots;
  roots["/a"].reading = Excluding("x");
  roots["/a"].prune = true;
  roots["/b"];
  return roots;
}

RootRequest Naming(std::vector<std::string> paths) {
  RootRequest request;
  request.paths = std::move(paths);
  return request;
}

RootChoice Choose(const RootRequest& request, const Roots& roots = TwoRoots()) {
  return ChooseRoots(request, roots, "my.index");
}

std::string Complaint(const RootRequest& request, const Roots& roots = TwoRoots()) {
  try {
    Choose(request, roots);
  } catch (const CommandError& error) {
    return error.what();
  }
  return "";
}

// Returns the paths, each with its exclusions and a "!" if it prunes.
std::string Shown(const Roots& roots) {
  std::string shown;
  for (const auto& [path, options] : roots) {
    shown += path;
    for (const std::string& pattern : options.reading.exclude) shown += "-" + pattern;
    shown += options.prune ? "! " : " ";
  }
  return shown;
}

TEST(RootChoiceTest, NoPathMeansAllRoots) {
  const RootChoice choice = Choose(Naming({}));
  EXPECT_EQ(Shown(choice.targets), "/a-x! /b ");
  EXPECT_EQ(Shown(choice.roots), "/a-x! /b ");
  EXPECT_TRUE(choice.named.empty());
}

TEST(RootChoiceTest, NewPathBecomesARoot) {
  const RootChoice choice = Choose(Naming({"/c"}));
  EXPECT_EQ(Shown(choice.targets), "/c ");
  EXPECT_EQ(Shown(choice.roots), "/a-x! /b /c ");
}

TEST(RootChoiceTest, PathOfARootHasItsOptions) {
  EXPECT_EQ(Shown(Choose(Naming({"/a"})).targets), "/a-x! ");
}

TEST(RootChoiceTest, PathBelowARootIsAPartOfIt) {
  const RootChoice choice = Choose(Naming({"/a/c", "/b/c"}));
  EXPECT_EQ(Shown(choice.targets), "/a/c-x! /b/c ");
  EXPECT_EQ(Shown(choice.roots), "/a-x! /b ");
}

TEST(RootChoiceTest, PathBelowARootWithOptionsIsARoot) {
  RootRequest request = Naming({"/a/c"});
  request.reading = Excluding("y");
  EXPECT_EQ(Shown(Choose(request).roots), "/a-x! /a/c-y /b ");
  EXPECT_TRUE(Choose(request).roots.at("/a/c").is_given_now);
  EXPECT_FALSE(Choose(request).roots.at("/a").is_given_now);
}

TEST(RootChoiceTest, PathWhoseNameOnlyBeginsAlikeIsNoPart) {
  EXPECT_EQ(Shown(Choose(Naming({"/aa"})).roots), "/a-x! /aa /b ");
}

TEST(RootChoiceTest, RootsBelowAPathAreTargetsToo) {
  const RootChoice choice = Choose(Naming({"/"}));
  EXPECT_EQ(Shown(choice.targets), "/ /a-x! ");
  EXPECT_EQ(Shown(choice.roots), "/ /a-x! ") << "/b says nothing that / does not say";
  EXPECT_EQ(choice.named, std::set<std::string>{"/"});
}

TEST(RootChoiceTest, GivenOptionsReplaceThoseOfReadingAndLeavePruning) {
  RootRequest request = Naming({"/a"});
  request.reading = Excluding("y");
  EXPECT_EQ(Shown(Choose(request).roots), "/a-y! /b ");
  request.prune = false;
  EXPECT_EQ(Shown(Choose(request).roots), "/a-y /b ");
}

TEST(RootChoiceTest, PruningLeavesTheOptionsOfReading) {
  RootRequest request = Naming({"/a"});
  request.prune = false;
  EXPECT_EQ(Shown(Choose(request).roots), "/a-x /b ");
  request.paths.clear();
  EXPECT_EQ(Shown(Choose(request).roots), "/a-x /b ");
  request.prune = true;
  EXPECT_EQ(Shown(Choose(request).targets), "/a-x! /b! ");
}

TEST(RootChoiceTest, PruningAPartIsForThisRun) {
  RootRequest request = Naming({"/b/c"});
  request.prune = true;
  EXPECT_EQ(Shown(Choose(request).targets), "/b/c! ");
  EXPECT_EQ(Shown(Choose(request).roots), "/a-x! /b ");
}

TEST(RootChoiceTest, PruningAPathPrunesTheRootsBelowItInThisRun) {
  Roots roots = TwoRoots();
  roots["/b/c"].reading = Excluding("z");
  RootRequest request = Naming({"/b"});
  request.prune = true;
  EXPECT_EQ(Shown(Choose(request, roots).targets), "/b! /b/c-z! ");
  EXPECT_EQ(Shown(Choose(request, roots).roots), "/a-x! /b! /b/c-z ");
}

TEST(RootChoiceTest, ResetForgetsWhatIsNotGiven) {
  RootRequest request = Naming({"/a"});
  request.reset = true;
  EXPECT_EQ(Shown(Choose(request).roots), "/a /b ");
  request.paths.clear();
  request.reading = Excluding("y");
  EXPECT_EQ(Shown(Choose(request).roots), "/a-y /b-y ");
}

TEST(RootChoiceTest, ForgottenPathsAreNamedAndNothingIsATarget) {
  RootRequest request = Naming({"/a", "/a"});
  request.forget = true;
  const RootChoice choice = Choose(request);
  EXPECT_EQ(Shown(choice.roots), "/b ");
  EXPECT_EQ(Shown(choice.targets), "");
  EXPECT_EQ(choice.forgotten, std::set<std::string>{"/a"});
}

TEST(RootChoiceTest, RequestsThatMakeNoSenseAreRefused) {
  EXPECT_EQ(Complaint(Naming({}), {}),
            "nothing to index: no PATH, and index 'my.index' remembers none");
  RootRequest request;
  request.reading = Excluding("y");
  EXPECT_NE(Complaint(request), "");
  request.reading.reset();
  request.forget = true;
  EXPECT_NE(Complaint(request), "");
  request.paths = {"/a/c"};
  EXPECT_NE(Complaint(request).find("not kept up to date with"), std::string::npos);
}

}  // namespace
}  // namespace kestan_cli
