// SPDX-License-Identifier: GPL-3.0-or-later
// Whatever has happened to the files and to the index: brought up to date, the index answers like a
// new one of the same files.
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "cli/commands/documents/index_command.h"
#include "cli/console/message.h"
#include "cli/files/ignore_rules.h"
#include "tests/cli/index_folder.h"
#include "tests/support/temp_dir.h"

namespace kestan_tests {
namespace {

namespace fs = std::filesystem;

using kestan_cli::IndexOptions;
using Lines = std::vector<std::string>;

// ---- What can happen ----

struct Step {
  enum class Kind {
    kWrite,
    kRename,
    kDelete,
    kIgnore,  // some files, from now on
    kIndex,
    kPrune,
    kIndexAll,  // files that have not changed, too
    kIndexFile,
    kIndexList,
    kRemove,  // by another program, through the library
    kCompact,
    kVisit  // a document comes and goes
  };

  Kind kind = Kind::kWrite;
  std::string file;
  std::string other;
  std::string text;
};

std::ostream& operator<<(std::ostream& stream, const Step& step) {
  const char* const names[] = {"write",      "rename", "delete",    "ignore",
                               "index",      "prune",  "index all", "index file",
                               "index list", "remove", "compact",   "visit"};
  return stream << names[static_cast<int>(step.kind)] << " " << step.file << " " << step.other
                << " '" << step.text << "'";
}

rc::Gen<std::string> Word() {
  return rc::gen::element<std::string>("a", "b", "c", "I", "x", "cat", "Cat", "dog", "fish", "7",
                                       "vitamin", "p");
}

// What files contain: words, and text that an HTML page treats as markup.
rc::Gen<std::string> Text() {
  const auto piece = rc::gen::oneOf(
      Word(), Word(), Word(),
      rc::gen::element<std::string>("<p>", "<title>A page</title>", "&amp;", "\n", "# Heading\n"));
  return rc::gen::map(rc::gen::resize(8, rc::gen::container<Lines>(piece)),
                      [](const Lines& pieces) {
                        std::string text;
                        for (const std::string& each : pieces) text += each + " ";
                        return text;
                      });
}

rc::Gen<std::string> File() {
  return rc::gen::element<std::string>("d/a.txt", "d/a.html", "d/b.txt", "d/b.html", "d/c.md",
                                       "d/e/a.txt");
}

rc::Gen<Step> AnyStep() {
  using Kind = Step::Kind;
  const auto kind = rc::gen::weightedElement<Kind>({{8, Kind::kWrite},
                                                    {3, Kind::kRename},
                                                    {2, Kind::kDelete},
                                                    {3, Kind::kIgnore},
                                                    {4, Kind::kIndex},
                                                    {3, Kind::kPrune},
                                                    {1, Kind::kIndexAll},
                                                    {2, Kind::kIndexFile},
                                                    {1, Kind::kIndexList},
                                                    {2, Kind::kRemove},
                                                    {2, Kind::kCompact},
                                                    {1, Kind::kVisit}});
  return rc::gen::build<Step>(rc::gen::set(&Step::kind, kind), rc::gen::set(&Step::file, File()),
                              rc::gen::set(&Step::other, File()),
                              rc::gen::set(&Step::text, Text()));
}

rc::Gen<std::string> Question() {
  const auto link =
      rc::gen::element<std::string>(" ", " ", " AND ", " OR ", " NEAR/2 ", " NOT ", " -", "* ");
  return rc::gen::map(rc::gen::tuple(Word(), link, Word(), link, Word()), [](const auto& parts) {
    const auto& [first, link_one, second, link_two, third] = parts;
    return first + link_one + second + link_two + third;
  });
}

// ---- Where it happens ----

// Works in a folder of its own, which the process is in.
class World {
 public:
  World() {
    fs::current_path(folder_ / "");
    fs::create_directories("d/e");
    Write("d/keep.txt", "keep a cat");  // so that there is always something to index
    Index("my.index", Paths({"d"}));
  }
  ~World() { fs::current_path("/"); }
  World(const World&) = delete;
  World& operator=(const World&) = delete;

  void Take(const Step& step) {
    using Kind = Step::Kind;
    IndexOptions options = Paths({"d"});
    switch (step.kind) {
      case Kind::kWrite:
        return Write(step.file, step.text);
      case Kind::kRename:
        if (fs::exists(step.file)) fs::rename(step.file, step.other);
        return;
      case Kind::kDelete:
        fs::remove(step.file);
        return;
      case Kind::kIgnore:
        return Write(step.text.size() % 2 == 0 ? "d/.ignore" : "d/e/.ignore", IgnoreLines(step));
      case Kind::kIndex:
        return Index("my.index", Paths({}));
      case Kind::kPrune:
        options.prune = true;
        return Index("my.index", options);
      case Kind::kIndexAll:
        options.all = true;
        return Index("my.index", options);
      case Kind::kIndexFile:
        // It would be a root of its own, which stays where its file is gone.
        if (!kestan_cli::ReasonToLeaveOut(folder_ / "d", folder_ / step.file).empty()) return;
        return Index("my.index", Paths({step.file}));
      case Kind::kIndexList:
        return IndexList({step.file, step.other});
      default:
        return TakeElsewhere(step);
    }
  }

  // Brings the index up to date, and makes a new one beside it.
  void Finish() {
    IndexOptions options = Paths({"d"});
    options.prune = true;
    Index("my.index", options);
    Index("fresh.index", Paths({"d"}));
  }

  // Both indexes give the same.
  void ExpectSameDocuments() {
    const auto mine = DocumentsOfIndex("my.index");
    const auto fresh = DocumentsOfIndex("fresh.index");
    RC_ASSERT(Descriptions(mine) == Descriptions(fresh));
  }

  void ExpectSameWords() { RC_ASSERT(Words("my.index") == Words("fresh.index")); }

  void ExpectSameAnswers(const std::string& question) {
    for (const auto words : {kestan::search::WordsMean::kBest, kestan::search::WordsMean::kAny}) {
      kestan::search::SearchOptions options;
      options.limit = 0;
      options.words = words;
      RC_LOG() << question << "\n";
      RC_ASSERT(AnswersOfIndex("my.index", question, "", options) ==
                AnswersOfIndex("fresh.index", question, "", options));
    }
  }

  static void ExpectNoFaults() {
    RC_ASSERT(IsWhole("my.index"));
    RC_ASSERT(IsWhole("fresh.index"));
  }

 private:
  static IndexOptions Paths(Lines paths) {
    IndexOptions options;
    options.paths = std::move(paths);
    return options;
  }

  // Returns lines that leave out a file or a folder, or all of a kind but one.
  static std::string IgnoreLines(const Step& step) {
    const fs::path file(step.file);
    if (step.text.empty()) return "";
    if (step.file == "d/e/a.txt") return "/e/\n";
    if (step.other < step.file) return file.filename().string() + "\n";
    return "*" + file.extension().string() + "\n!" + file.filename().string() + "\n";
  }

  // A run may refuse, as where a file is gone that it names.
  static void Index(const std::string& index, const IndexOptions& options) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    try {
      kestan_cli::RunIndex(index, options);
    } catch (const kestan_cli::CommandError&) {
      // It says why, and has changed nothing.
    }
    testing::internal::GetCapturedStderr();
    testing::internal::GetCapturedStdout();
  }

  static void IndexList(const Lines& paths) {
    std::ofstream list("list", std::ios::binary);
    for (const std::string& path : paths) list << path << '\0';
    list.close();
    RC_ASSERT(std::freopen("list", "r", stdin) != nullptr);
    IndexOptions options;
    options.paths_from_stdin = true;
    Index("my.index", options);
  }

  // Each with a time of its own, as files have whose times are finer than their changes.
  void Write(const std::string& name, const std::string& text) {
    std::ofstream(name, std::ios::binary) << text;
    const auto start = fs::file_time_type::clock::now() - std::chrono::hours(24);
    fs::last_write_time(name, start + std::chrono::seconds(++writes_));
  }

  void TakeElsewhere(const Step& step) const {
    auto writer = kestan::search::IndexWriter::Open("my.index");
    RC_ASSERT(writer.ok());
    if (step.kind == Step::Kind::kRemove) {
      static_cast<void>(writer->Remove(folder_ / step.file));  // which may not be there
    }
    if (step.kind == Step::Kind::kVisit) {
      RC_ASSERT(writer->Add({"guest", step.text, "", "", "", ""}).ok());
      RC_ASSERT(writer->Commit().ok());
      RC_ASSERT(writer->Remove("guest").ok());
    }
    const bool compacts = step.kind == Step::Kind::kCompact;
    RC_ASSERT((compacts ? writer->Compact() : writer->Commit()).ok());
  }

  static Lines Descriptions(const std::map<std::string, kestan::search::DocumentInfo>& documents) {
    Lines lines;
    for (const auto& [name, info] : documents) {
      lines.push_back(name + "\n" + std::to_string(info.words) + "\n" + info.title + "\n" +
                      info.summary + "\n" + info.host_data);
    }
    return lines;
  }

  static Lines Words(const std::string& index) {
    Lines lines;
    const auto reader = kestan::search::IndexReader::Open(index);
    RC_ASSERT(reader.ok());
    const auto terms = reader->Terms("");
    RC_ASSERT(terms.ok());
    for (const auto& term : *terms) {
      lines.push_back(term.term + " " + std::to_string(term.documents));
    }
    return lines;
  }

  const TempDir folder_;
  int writes_ = 0;
};

TEST(IncrementalPropertyTest, AnIndexThatIsKeptUpAnswersLikeANewOne) {
  const bool holds = rc::check([] {
    const auto steps = *rc::gen::resize(60, rc::gen::container<std::vector<Step>>(AnyStep()));
    const auto questions = *rc::gen::resize(6, rc::gen::container<Lines>(Question()));
    World world;
    for (const Step& step : steps) world.Take(step);
    world.Finish();
    world.ExpectSameDocuments();
    world.ExpectSameWords();
    for (const std::string& question : questions) world.ExpectSameAnswers(question);
    for (const char* word : {"a", "b", "c", "i", "p", "x"}) world.ExpectSameAnswers(word);
    world.ExpectNoFaults();
  });
  EXPECT_TRUE(holds);
}

}  // namespace
}  // namespace kestan_tests
