// SPDX-License-Identifier: GPL-3.0-or-later
// The floors of docs/architecture.md: includes fall, nothing goes round, and no directory is
// crowded.
#include "tests/architecture/includes.h"

#include <gtest/gtest.h>

namespace kestan_architecture {
namespace {

using Lines = std::vector<std::string>;

const std::vector<Floor> kFloors{
    {"kestan/storage"},
    {"kestan/text"},
    {"kestan/format"},
    {"kestan/indexing", "kestan/query", "kestan/maintenance"},
    {"kestan/building", "kestan/engine"},
    {"kestan"},          // the headers that hosts include
    {"search/include"},  // what hosts of the search library include
    {"search/process"},
    {"search/files", "search/text"},
    {"search/segment", "search/vocabulary"},
    {"search/query"},
    {"search/matching"},
    {"search/ranking", "search/snippet"},
    {"search/index"},
    {"search/upkeep"},
    {"c/include"},  // what programs in C include
    {"c/handles"},
    {"c"},
    {"cli/readers"},      // becomes a module
    {"cli/mail_reader"},  // becomes another
    {"cli/console"},
    {"cli/files"},
    {"cli/extract", "cli/index"},
    {"cli/app", "cli/export", "cli/sync"},
    {"cli/commands"},
    {"cli"},
};

class ArchitectureTest : public testing::Test {
 protected:
  static const Sources& Read() {
    static const Sources kSources = ReadSources(KESTAN_SOURCE_DIR);
    return kSources;
  }
};

TEST_F(ArchitectureTest, SourcesAreFound) {
  EXPECT_GT(Read().size(), 300u);
  EXPECT_EQ(Read().at("kestan/storage/walk/same_records.cc"),
            (Paths{"kestan/storage/datum_bytes.h", "kestan/storage/walk/record_iterator.h",
                   "kestan/storage/walk/same_records.h"}));
}

TEST_F(ArchitectureTest, IncludesFormNoCycle) { EXPECT_EQ(FindCycles(Read()), Lines()); }

TEST_F(ArchitectureTest, IncludesFall) { EXPECT_EQ(FindClimbs(Read(), kFloors), Lines()); }

TEST_F(ArchitectureTest, SearchAndCommandSeeInstalledHeadersOnly) {
  const Paths installed = InstalledHeaders(KESTAN_SOURCE_DIR);
  EXPECT_EQ(installed.count("kestan/kestan.h"), 1u);
  EXPECT_EQ(installed.count("kestan/format/keys.h"), 0u);
  for (const std::string& header : installed) EXPECT_EQ(Read().count(header), 1u) << header;
  EXPECT_EQ(FindPrivateHeaders(Read(), installed), Lines());
}

TEST_F(ArchitectureTest, InstalledHeadersIncludeInstalledHeadersOnly) {
  const Paths installed = InstalledHeaders(KESTAN_SOURCE_DIR);
  for (const std::string& header : installed) {
    for (const std::string& include : Read().at(header)) {
      EXPECT_EQ(installed.count(include), 1u) << header << " includes " << include;
    }
  }
}

TEST_F(ArchitectureTest, OnlyTheModuleNeedsTheLibrariesThatItLoads) {
  const Sources libraries = ReadLibraryIncludes(KESTAN_SOURCE_DIR);
  EXPECT_EQ(libraries.at("cli/readers/html_parser.cc").count("libxml/HTMLparser.h"), 1u);
  EXPECT_EQ(libraries.at("cli/readers/charset_decoder.cc").count("unicode/ucnv.h"), 1u);
  EXPECT_EQ(libraries.at("cli/readers/archive_reader.cc").count("archive.h"), 1u);
  EXPECT_EQ(libraries.at("cli/mail_reader/message_reader.cc").count("gmime/gmime.h"), 1u);
  EXPECT_EQ(FindModuleFaults(Read(), libraries), Lines());
}

TEST_F(ArchitectureTest, NoDirectoryIsCrowded) {
  EXPECT_EQ(FindCrowdedDirectories(FilesOutsideTests(KESTAN_SOURCE_DIR)), Lines());
}

TEST(IncludesOfTest, OwnHeadersOfBothStylesAreFound) {
  EXPECT_EQ(IncludesOf("#ifndef A\n#include <string>\n#include <kestan/kestan.h>  // why\n"
                       "#include \"cli/app/command.h\"\n#include \"search/query/query.h\"\n"
                       "// #include <kestan/results.h>\n#include <kestanic/a.h>\n"
                       "#include <kestan/index_file.h>\n#include <kestan/search.h>\n"
                       "#include <kestan/search/status.h>"),
            (Paths{"cli/app/command.h", "kestan/index_file.h", "kestan/kestan.h",
                   "search/include/kestan/search.h", "search/include/kestan/search/status.h",
                   "search/query/query.h"}));
}

TEST(FindCyclesTest, TreeHasNone) {
  EXPECT_EQ(FindCycles({{"cli/a/1.cc", {"cli/b/1.h", "cli/c/1.h"}},
                        {"cli/b/1.h", {"cli/c/1.h"}},
                        {"cli/c/1.h", {}}}),
            Lines());
}

TEST(FindCyclesTest, DirectoriesThatIncludeEachOtherAreFound) {
  const Sources sources{{"cli/a/1.h", {"cli/b/1.h"}},
                        {"cli/b/1.h", {}},
                        {"cli/b/2.h", {"cli/c/d/1.h"}},
                        {"cli/c/d/1.h", {"cli/a/2.h"}},
                        {"cli/a/2.h", {}}};
  EXPECT_EQ(FindCycles(sources), Lines({"cli/a -> cli/b -> cli/c/d -> cli/a"}));
}

TEST(FindCyclesTest, DirectoryAndItsParentAreTwo) {
  const Sources sources{{"cli/a/1.h", {"cli/a/b/1.h"}}, {"cli/a/b/2.h", {"cli/a/2.h"}}};
  EXPECT_EQ(FindCycles(sources), Lines({"cli/a -> cli/a/b -> cli/a"}));
}

TEST(FindCyclesTest, HeadersOfOneDirectoryThatIncludeEachOtherAreFound) {
  const Sources sources{{"cli/a/0.cc", {"cli/a/1.h"}},
                        {"cli/a/1.h", {"cli/a/2.h"}},
                        {"cli/a/2.h", {"cli/a/1.h", "cli/a/3.h"}}};
  EXPECT_EQ(FindCycles(sources), Lines({"cli/a/1.h -> cli/a/2.h -> cli/a/1.h"}));
}

TEST(FindClimbsTest, FallsAreNone) {
  EXPECT_EQ(FindClimbs({{"cli/main.cc", {"kestan/kestan.h", "cli/app/command.h"}},
                        {"kestan/query/operators/unite.cc", {"kestan/query/result_set.h"}},
                        {"kestan/query/result_set.h", {"kestan/storage/walk/record_iterator.h"}}},
                       kFloors),
            Lines());
}

TEST(FindClimbsTest, IncludesUpAndToTheSideAreFound) {
  EXPECT_EQ(FindClimbs({{"kestan/engine/kestan.cc", {"search/query/query.h"}},
                        {"kestan/query/listing.cc", {"kestan/indexing/indexer.h"}},
                        {"kestan/storage/walk/a.h", {"kestan/format/keys.h"}},
                        {"kestan/text/fold.h", {"kestan/kestan.h"}}},
                       kFloors),
            Lines({"kestan/engine/kestan.cc includes search/query/query.h",
                   "kestan/query/listing.cc includes kestan/indexing/indexer.h",
                   "kestan/storage/walk/a.h includes kestan/format/keys.h",
                   "kestan/text/fold.h includes kestan/kestan.h"}));
}

TEST(FindClimbsTest, FilesOnNoFloorAreFound) {
  EXPECT_EQ(FindClimbs({{"cli/attic/a.h", {"cli/files/glob.h"}},
                        {"cli/app/command.h", {"cli/cellar/a.h"}}},
                       kFloors),
            Lines({"cli/app/command.h includes cli/cellar/a.h", "cli/attic/a.h is on no floor"}));
}

TEST(FindPrivateHeadersTest, HeaderThatNoHostHasIsFound) {
  EXPECT_EQ(FindPrivateHeaders({{"cli/main.cc", {"kestan/kestan.h", "kestan/format/keys.h"}},
                                {"kestan/engine/kestan.cc", {"kestan/format/keys.h"}},
                                {"search/query/query.cc", {"kestan/text/fold.h"}}},
                               {"kestan/kestan.h"}),
            Lines({"cli/main.cc includes kestan/format/keys.h",
                   "search/query/query.cc includes kestan/text/fold.h"}));
  EXPECT_EQ(FindPrivateHeaders({{"cli/main.cc", {"search/include/kestan/search.h"}},
                                {"cli/app/a.cc", {"search/text/words.h"}},
                                {"search/query/query.cc", {"search/text/words.h"}}},
                               {}),
            Lines({"cli/app/a.cc includes search/text/words.h"}));
}

TEST(LibraryIncludesOfTest, OnlyLibrariesOfTheModuleAreFound) {
  EXPECT_EQ(LibraryIncludesOf("#include <unicode/ucnv.h>\n#include <libxml/parser.h>\n"
                              "#include <unicodes/a.h>\n#include <string>\n"
                              "#include \"cli/readers/readers.h\"\n"),
            (Paths{"libxml/parser.h", "unicode/ucnv.h"}));
}

TEST(FindModuleFaultsTest, DescriptionOfTheModuleIsForAll) {
  EXPECT_EQ(FindModuleFaults({{"cli/extract/a.cc", {"cli/readers/readers.h"}},
                              {"cli/readers/b.cc", {"cli/readers/b.h", "cli/readers/readers.h"}}},
                             {{"cli/readers/b.cc", {"unicode/ucnv.h"}}, {"cli/main.cc", {}}}),
            Lines());
}

TEST(FindModuleFaultsTest, ModulesSeeEachOthersDescriptionsOnly) {
  EXPECT_EQ(FindModuleFaults({{"cli/mail_reader/a.cc", {"cli/readers/readers.h"}}}, {}), Lines());
  EXPECT_EQ(FindModuleFaults({{"cli/mail_reader/a.cc", {"cli/readers/b.h"}}}, {}),
            Lines({"cli/mail_reader/a.cc includes cli/readers/b.h"}));
}

TEST(FindModuleFaultsTest, OtherIncludesAcrossItsBoundaryAreFound) {
  EXPECT_EQ(FindModuleFaults({{"cli/extract/a.cc", {"cli/readers/b.h"}},
                              {"cli/readers/b.cc", {"cli/console/message.h", "kestan/kestan.h"}}},
                             {{"cli/extract/a.cc", {"libxml/parser.h"}}}),
            Lines({"cli/extract/a.cc includes cli/readers/b.h",
                   "cli/readers/b.cc includes cli/console/message.h",
                   "cli/readers/b.cc includes kestan/kestan.h",
                   "cli/extract/a.cc includes libxml/parser.h"}));
}

TEST(FindCrowdedDirectoriesTest, TwentyFilesAreFewAndTwentyOneMany) {
  Paths files;
  for (int i = 0; i < 20; ++i) files.insert("cli/app/" + std::to_string(i));
  files.insert("cli/app/deeper/1");
  EXPECT_EQ(FindCrowdedDirectories(files), Lines());
  files.insert("cli/app/20");
  EXPECT_EQ(FindCrowdedDirectories(files), Lines({"cli/app: 21"}));
}

}  // namespace
}  // namespace kestan_architecture
