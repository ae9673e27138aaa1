// SPDX-License-Identifier: GPL-3.0-or-later
// What git itself leaves out, where it is installed, compared with what the command does.
#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <vector>

#include "cli/files/paths.h"
#include "cli/files/scan.h"
#include "tests/cli/files/ignore/ignore_generators.h"
#include "tests/support/files.h"
#include "tests/support/temp_dir.h"

namespace kestan_cli {
namespace {

namespace fs = std::filesystem;

using Lines = std::vector<std::string>;

// Behind a plain start of a path, git takes the stars of "x**" and "x**/y" for any folders; its
// documentation says that they are one star. And "**\/" for one folder or more, which nobody
// writes.
bool IsReadAsDocumented(const std::string& line) {
  for (std::size_t at = line.find("**"); at != std::string::npos; at = line.find("**", at)) {
    const std::size_t end = std::min(line.find_first_not_of('*', at), line.size());
    const bool is_start = at == 0 || line[at - 1] == '/' || line.substr(0, at) == "!";
    if (!is_start || (end < line.size() && line[end] == '\\')) return false;
    at = end;
  }
  return true;
}

int Git(const std::string& command) {
  const std::string without_settings =
      "GIT_CONFIG_NOSYSTEM=1 GIT_CONFIG_GLOBAL=/dev/null XDG_CONFIG_HOME=/nowhere HOME=/nowhere ";
  return std::system((without_settings + "git " + command).c_str());  // NOLINT
}

// A work tree in a folder of its own, in which the process is.
class WorkTree {
 public:
  WorkTree() {
    fs::current_path(folder_ / "");
    fs::create_directory("tree");
    fs::current_path("tree");
  }
  ~WorkTree() { fs::current_path("/"); }
  WorkTree(const WorkTree&) = delete;
  WorkTree& operator=(const WorkTree&) = delete;

  void Add(const std::string& path) {
    std::error_code error;
    fs::create_directories(fs::path(path).parent_path(), error);
    if (!error && !fs::exists(path)) std::ofstream(path) << "text";
  }

  static void WriteLines(const std::string& path, const Lines& lines) {
    if (path.find('/') != std::string::npos && !fs::is_directory(fs::path(path).parent_path())) {
      return;
    }
    std::ofstream file(path);
    for (const std::string& line : lines) file << line << "\n";
  }

  static std::set<std::string> FilesOfGit() {
    RC_ASSERT(Git("ls-files -z --others --exclude-standard > ../list") == 0);
    const Lines paths = PathsIn(kestan_tests::ReadFile("../list"));
    return {paths.begin(), paths.end()};
  }

  std::set<std::string> FilesOfScan() const {
    const std::string top = fs::canonical(".").string();
    const Scan scan = ScanRoots({{top, "tree", {}}}, {}, "/no/index");
    std::set<std::string> files;
    for (const FoundFile& file : scan.files) files.insert(file.name.substr(top.size() + 1));
    return files;
  }

 private:
  const kestan_tests::TempDir folder_;
};

TEST(IgnoreGitTest, FilesAreThoseOfGit) {
  if (Git("--version > /dev/null 2>&1") != 0) GTEST_SKIP() << "git is not installed";
  const auto lines =
      rc::gen::container<Lines>(rc::gen::suchThat(kestan_tests::IgnoreLine(), IsReadAsDocumented));
  const bool holds = rc::check([&] {
    const Lines paths = *rc::gen::container<Lines>(40, kestan_tests::PathOfAFile());
    const Lines at_top = *rc::gen::resize(6, lines);
    const Lines below = *rc::gen::resize(4, lines);
    const Lines excluded = *rc::gen::resize(2, lines);
    WorkTree tree;
    RC_ASSERT(Git("init -q .") == 0);
    for (const std::string& path : paths) tree.Add(path);
    WorkTree::WriteLines(".gitignore", at_top);
    WorkTree::WriteLines("a/.gitignore", below);
    fs::create_directories(".git/info");
    WorkTree::WriteLines(".git/info/exclude", excluded);
    RC_ASSERT(tree.FilesOfScan() == WorkTree::FilesOfGit());
  });
  EXPECT_TRUE(holds);
}

}  // namespace
}  // namespace kestan_cli
