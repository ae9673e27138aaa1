// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/readers/archive_reader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "tests/support/packed.h"

namespace kestan_cli {
namespace {

struct Trial {
  std::string wanted;  // the start of the names of wanted members
  std::size_t max_bytes = 1000;
  std::string read{};  // names and bytes
  ReadProblem problem{};

  ReadStatus Read(const std::string& zip) {
    const MemberEvents events{this,
                              [](void* context, const char* name) noexcept {
                                auto* const trial = static_cast<Trial*>(context);
                                const bool is_wanted =
                                    std::string(name).rfind(trial->wanted, 0) == 0;
                                if (is_wanted) trial->read += std::string(name) + ":";
                                return is_wanted;
                              },
                              [](void* context, const char* bytes, std::size_t size) noexcept {
                                auto* const trial = static_cast<Trial*>(context);
                                trial->read.append(bytes, size);
                                return trial->read.size() < trial->max_bytes;
                              }};
    return ReadZip(zip.data(), zip.size(), events, &problem);
  }
};

const std::string& Zip() {
  static const std::string zip =
      kestan_tests::Archive("zip", "none", {{"a/1", "one "}, {"b", "two "}, {"a/2", "three "}});
  return zip;
}

TEST(ArchiveReaderTest, WantedMembersAreRead) {
  Trial trial{"a/"};
  EXPECT_EQ(trial.Read(Zip()), ReadStatus::kRead);
  EXPECT_EQ(trial.read, "a/1:one a/2:three ");
}

TEST(ArchiveReaderTest, ReadingMayStop) {
  Trial trial{"", 5};
  EXPECT_EQ(trial.Read(Zip()), ReadStatus::kRead);
  EXPECT_EQ(trial.read, "a/1:one ");
}

TEST(ArchiveReaderTest, OtherBytesAreNoArchive) {
  for (const std::string& bytes : {std::string("text"), std::string(1000, '\0')}) {
    Trial trial{""};
    EXPECT_EQ(trial.Read(bytes), ReadStatus::kUnread);
    EXPECT_STRNE(trial.problem.text, "");
  }
}

// A source that can be read from any place on, and what is made of it.
struct ArchiveTrial {
  std::string bytes;
  std::string unwanted{};             // the name of a member
  std::size_t max_bytes_each = 1000;  // of a member
  unsigned long long max_bytes = 1 << 20;
  std::size_t piece_bytes = 1000;
  bool may_seek = true;
  std::size_t at = 0;
  std::size_t member_bytes = 0;
  std::string read{};
  ReadProblem problem{};

  static ArchiveTrial& Of(void* context) { return *static_cast<ArchiveTrial*>(context); }

  ReadStatus Read() {
    const ByteSource source{this, [](void* context, const char** piece) noexcept {
                              ArchiveTrial& trial = Of(context);
                              const std::size_t size =
                                  std::min(trial.piece_bytes, trial.bytes.size() - trial.at);
                              *piece = trial.bytes.data() + trial.at;
                              trial.at += size;
                              return static_cast<long>(size);
                            }};
    const ArchiveSource archive{source, bytes.size(),
                                [](void* context, unsigned long long place) noexcept {
                                  Of(context).at = static_cast<std::size_t>(place);
                                  return Of(context).may_seek;
                                }};
    const ArchiveEvents events{this,
                               [](void* context, const char* name, long long /*seconds*/) noexcept {
                                 ArchiveTrial& trial = Of(context);
                                 if (std::string(name) == "stop") return MemberChoice::kStop;
                                 if (name == trial.unwanted) return MemberChoice::kPass;
                                 trial.read += std::string(name) + ":";
                                 trial.member_bytes = 0;
                                 return MemberChoice::kRead;
                               },
                               [](void* context, const char* piece, std::size_t size) noexcept {
                                 ArchiveTrial& trial = Of(context);
                                 trial.read.append(piece, size);
                                 trial.member_bytes += size;
                                 return trial.member_bytes <= trial.max_bytes_each;
                               },
                               [](void* context, const char* reason) noexcept {
                                 Of(context).read +=
                                     reason == nullptr ? ";" : std::string("(") + reason + ");";
                                 return true;
                               }};
    return ReadArchive(archive, max_bytes, events, &problem);
  }
};

const kestan_tests::PackedMembers kMembers{
    {"a/1", "one"}, {"\xc3\xa4", "two"}, {"../3", std::string(5000, '3')}, {"/4", ""}};
const std::string kWhole = "a/1:one;\xc3\xa4:two;../3:" + std::string(5000, '3') + ";/4:;";

TEST(ArchiveReaderTest, ArchivesOfEveryKindAreReadInPiecesOfAnySize) {
  for (const char* format : {"zip", "ustar", "pax", "gnutar"}) {
    for (const char* filter : {"none", "gzip", "bzip2", "xz", "zstd"}) {
      if (format == std::string("zip") && filter != std::string("none")) continue;
      const std::string bytes = kestan_tests::Archive(format, filter, kMembers);
      for (const std::size_t piece : {1u, 700u, 100000u}) {
        ArchiveTrial trial{bytes, "", 10000};
        trial.piece_bytes = piece;
        EXPECT_EQ(trial.Read(), ReadStatus::kRead) << format << filter << trial.problem.text;
        EXPECT_EQ(trial.read, kWhole) << format << filter << piece;
      }
    }
  }
}

TEST(ArchiveReaderTest, MembersMayBePassedOverAndCut) {
  for (const char* format : {"zip", "ustar"}) {
    ArchiveTrial trial{kestan_tests::Archive(format, "none", kMembers), "a/1", 10};
    EXPECT_EQ(trial.Read(), ReadStatus::kRead);
    EXPECT_EQ(trial.read.rfind("\xc3\xa4:two;../3:333", 0), 0u) << trial.read;
    EXPECT_EQ(trial.read.substr(trial.read.size() - 5), "3/4:;") << "end() after a cut member";
  }
}

TEST(ArchiveReaderTest, NothingIsReadAfterTheMemberThatStops) {
  ArchiveTrial trial{
      kestan_tests::Archive("ustar", "gzip", {{"1", "one"}, {"stop", ""}, {"2", ""}})};
  EXPECT_EQ(trial.Read(), ReadStatus::kRead);
  EXPECT_EQ(trial.read, "1:one;");
}

TEST(ArchiveReaderTest, WhatIsDecompressedIsLimited) {
  const std::string bytes =
      kestan_tests::Archive("ustar", "gzip", {{"1", std::string(100000, 'x')}, {"2", "two"}});
  ArchiveTrial trial{bytes, "1", 1, 80000};
  EXPECT_EQ(trial.Read(), ReadStatus::kUnread);
  EXPECT_STREQ(trial.problem.text, "it unpacks to more than 80000 bytes");
}

TEST(ArchiveReaderTest, ChecksumAfterTheLastMemberIsCompared) {
  std::string bytes = kestan_tests::Archive("ustar", "gzip", kMembers);
  bytes[bytes.size() - 6] ^= 1;
  ArchiveTrial trial{bytes, "", 10000};
  EXPECT_EQ(trial.Read(), ReadStatus::kUnread);
  EXPECT_EQ(trial.read, kWhole);
  EXPECT_STREQ(trial.problem.text, "incorrect data check");
}

TEST(ArchiveReaderTest, BrokenMemberIsNamedAndTheOthersAreRead) {
  std::string bytes = kestan_tests::Archive("zip", "none", {{"1", "a long text"}, {"2", "two"}});
  bytes[bytes.find("PK\x07\x08") - 4] ^= 1;  // in what is compressed
  ArchiveTrial trial{bytes};
  EXPECT_EQ(trial.Read(), ReadStatus::kRead) << trial.problem.text;
  EXPECT_NE(trial.read.find(");2:two;"), std::string::npos) << trial.read;
}

TEST(ArchiveReaderTest, SourceThatCannotSeekIsAnError) {
  ArchiveTrial trial{Zip()};
  trial.may_seek = false;
  EXPECT_EQ(trial.Read(), ReadStatus::kUnread);
}

// Changes every byte, and cuts everywhere: what matters is that it ends, within the limits.
TEST(ArchiveReaderTest, DamagedArchivesAreReadOrReported) {
  for (const char* format : {"zip", "ustar", "pax"}) {
    for (const char* filter : {"none", "gzip"}) {
      if (format == std::string("zip") && filter != std::string("none")) continue;
      const std::string good = kestan_tests::Archive(format, filter, {{"1", "one"}, {"2", "two"}});
      for (std::size_t at = 0; at < good.size(); ++at) {
        for (const int change : {1, 0x80, 0xff}) {
          ArchiveTrial trial{good};
          trial.bytes[at] = static_cast<char>(trial.bytes[at] ^ change);
          const ReadStatus status = trial.Read();
          EXPECT_EQ(status == ReadStatus::kRead, trial.problem.text[0] == '\0') << format << at;
          EXPECT_LT(trial.read.size(), 20000u) << format << at;
        }
        ArchiveTrial cut{good.substr(0, at)};
        static_cast<void>(cut.Read());
        EXPECT_LT(cut.read.size(), 10000u) << format << at;
      }
    }
  }
}

}  // namespace
}  // namespace kestan_cli
