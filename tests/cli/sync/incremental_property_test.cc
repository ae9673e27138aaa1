// Whatever has happened to the files and to the index: brought up to date, the index answers like a
// new one of the same files.
#include <gtest/gtest.h>
#include <kestan/kestan.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "cli/app/command.h"
#include "cli/commands/commands.h"
#include "cli/console/message.h"
#include "tests/support/index_test.h"

namespace kestan_tests {
namespace {

namespace fs = std::filesystem;

using kestan_cli::Command;
using kestan_cli::Values;
using Lines = std::vector<std::string>;

// ---- What can happen ----

struct Step {
  enum class Kind {
    kWrite,
    kRename,
    kDelete,
    kIndex,
    kPrune,
    kIndexInPlace,
    kRemove,
    kShrink,
    kRemoveElsewhere,  // by another program, through the library
    kShrinkElsewhere,
    kVisitElsewhere  // a document comes and goes
  };

  Kind kind = Kind::kWrite;
  std::string file;
  std::string other;
  std::string text;
};

std::ostream& operator<<(std::ostream& stream, const Step& step) {
  const char* const names[] = {"write",
                               "rename",
                               "delete",
                               "index",
                               "prune",
                               "index in place",
                               "remove",
                               "shrink",
                               "remove elsewhere",
                               "shrink elsewhere",
                               "visit elsewhere"};
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

// A code is used again after a change, a run, a shrink, another change and another run, so these
// are frequent.
rc::Gen<Step> AnyStep() {
  using Kind = Step::Kind;
  const auto kind = rc::gen::weightedElement<Kind>({{8, Kind::kWrite},
                                                    {3, Kind::kRename},
                                                    {2, Kind::kDelete},
                                                    {4, Kind::kIndex},
                                                    {3, Kind::kPrune},
                                                    {1, Kind::kIndexInPlace},
                                                    {2, Kind::kRemove},
                                                    {4, Kind::kShrink},
                                                    {1, Kind::kRemoveElsewhere},
                                                    {1, Kind::kShrinkElsewhere},
                                                    {1, Kind::kVisitElsewhere}});
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

class World {
 public:
  World() {
    fs::current_path(folder_ / "");
    fs::create_directories("d/e");
    Write("d/keep.txt", "keep a cat");  // so that there is always something to index
    Do("index", {{"INDEX", "my.index"}, {"PATH", "d"}});
  }
  ~World() { fs::current_path("/"); }
  World(const World&) = delete;
  World& operator=(const World&) = delete;

  void Take(const Step& step) {
    using Kind = Step::Kind;
    const Values index = Given({{"INDEX", "my.index"}, {"PATH", "d"}});
    Values in_place = index;
    in_place.Add("--in-place", "");
    Values prune = index;
    prune.Add("--prune", "");
    switch (step.kind) {
      case Kind::kWrite:
        return Write(step.file, step.text);
      case Kind::kRename:
        if (fs::exists(step.file)) fs::rename(step.file, step.other);
        return;
      case Kind::kDelete:
        fs::remove(step.file);
        return;
      case Kind::kIndex:
        return Do("index", index);
      case Kind::kPrune:
        return Do("index", prune);
      case Kind::kIndexInPlace:
        return Do("index", in_place);
      case Kind::kRemove:
        return Do("remove", Given({{"INDEX", "my.index"}, {"NAME", step.file}}));
      case Kind::kShrink:
        return Do("shrink", Given({{"INDEX", "my.index"}}));
      default:
        return TakeElsewhere(step);
    }
  }

  // Brings the index up to date, and makes a new one beside it.
  void Finish() {
    Do("index", {{"INDEX", "my.index"}, {"PATH", "d"}, {"--prune", ""}});
    Do("index", {{"INDEX", "fresh.index"}, {"PATH", "d"}});
  }

  // What both indexes print must be the same. Lines come in order of codes where they are equally
  // good, and codes differ.
  void ExpectSame(const std::string& command, const std::vector<std::string>& arguments) {
    const auto& [mine, fresh] = BothPrint(command, arguments);
    RC_LOG() << command << " " << testing::PrintToString(arguments) << "\n";
    RC_ASSERT(mine == fresh);
  }

  // Looks at the index as it is and as a shrink leaves it. A shrink that another program makes
  // leaves postings of one-letter words that `check` names, until the command purges them.
  void ExpectNoFaults() {
    if (!shrunk_elsewhere_) ExpectCheckIsContent();
    Do("shrink", Given({{"INDEX", "my.index"}}));
    ExpectCheckIsContent();
  }

 private:
  void ExpectCheckIsContent() {
    const std::string report = Printed("check", Given({{"INDEX", "my.index"}}));
    RC_LOG() << report;
    RC_ASSERT(status_ == 0);
  }

  using Pairs = std::vector<std::pair<std::string, std::string>>;

  static Values Given(const Pairs& pairs) {
    Values values;
    for (const auto& [name, value] : pairs) values.Add(name, value);
    return values;
  }

  // Each with a time of its own, as files have whose times are finer than their changes.
  void Write(const std::string& name, const std::string& text) {
    std::ofstream(name, std::ios::binary) << text;
    const auto start = fs::file_time_type::clock::now() - std::chrono::hours(24);
    fs::last_write_time(name, start + std::chrono::seconds(++writes_));
  }

  void TakeElsewhere(const Step& step) {
    RC_ASSERT(engine_.OpenIndex("my.index", 1) == 0);
    if (step.kind == Step::Kind::kRemoveElsewhere) engine_.RemoveDocumentWords(step.file.c_str());
    if (step.kind == Step::Kind::kShrinkElsewhere) {
      engine_.ShrinkIndex();
      shrunk_elsewhere_ = true;
    }
    if (step.kind == Step::Kind::kVisitElsewhere) {
      engine_.AddDocumentWords("guest", step.text.c_str());
      engine_.RemoveDocumentWords("guest");
    }
    engine_.CloseIndex();
  }

  void Do(const std::string& name, const Pairs& pairs) { Do(name, Given(pairs)); }
  void Do(const std::string& name, const Values& values) { Printed(name, values); }

  // Runs a command. One that refuses, as the removal of a document that is not there, says so by
  // its status.
  std::string Printed(const std::string& name, const Values& values) {
    const auto& all = kestan_cli::AllCommands();
    const auto command = std::find_if(all.begin(), all.end(),
                                      [&](const Command& each) { return each.name == name; });
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    try {
      status_ = command->run(engine_, values);
    } catch (const kestan_cli::CommandError& error) {
      status_ = error.status();
    }
    testing::internal::GetCapturedStderr();
    return testing::internal::GetCapturedStdout();
  }

  // The lines that either index prints, without what says when they were made, in order of bytes.
  std::pair<Lines, Lines> BothPrint(const std::string& command, const Lines& arguments) {
    std::pair<Lines, Lines> printed;
    for (const bool fresh : {false, true}) {
      Values values = Given({{"INDEX", fresh ? "fresh.index" : "my.index"}});
      for (std::size_t i = 0; i + 1 < arguments.size(); i += 2) {
        values.Add(arguments[i], arguments[i + 1]);
      }
      std::istringstream text(Printed(command, values));
      Lines& lines = fresh ? printed.second : printed.first;
      for (std::string line; std::getline(text, line);) {
        if (line.substr(0, 2) == "0 ") continue;  // a word of documents that are gone
        lines.push_back(std::regex_replace(line, std::regex("\"time\":\"[^\"]*\""), ""));
      }
      std::sort(lines.begin(), lines.end());
    }
    return printed;
  }

  const TempDir folder_;
  Kestan engine_;
  int status_ = -1;
  int writes_ = 0;
  bool shrunk_elsewhere_ = false;
};

TEST(IncrementalPropertyTest, AnIndexThatIsKeptUpAnswersLikeANewOne) {
  const bool holds = rc::check([] {
    const auto steps = *rc::gen::resize(60, rc::gen::container<std::vector<Step>>(AnyStep()));
    const auto questions = *rc::gen::resize(6, rc::gen::container<Lines>(Question()));
    World world;
    for (const Step& step : steps) world.Take(step);
    world.Finish();
    world.ExpectSame("list", {});
    world.ExpectSame("export", {"FORM", "json"});
    world.ExpectSame("words", {"--counts", ""});
    for (const std::string& question : questions) {
      world.ExpectSame("search", {"QUERY", question});
      world.ExpectSame("search", {"QUERY", question, "--any", ""});
    }
    for (const char* word : {"a", "b", "c", "i", "p", "x"}) {
      world.ExpectSame("search", {"QUERY", word});
    }
    world.ExpectNoFaults();
  });
  EXPECT_TRUE(holds);
}

}  // namespace
}  // namespace kestan_tests
