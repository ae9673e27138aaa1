// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/packed/archive.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "cli/extract/packed/archive_name.h"
#include "tests/support/packed.h"

namespace kestan_cli {
namespace {

using kestan_tests::Archive;
using kestan_tests::PackedMembers;

// Writes down what comes.
class Listing : public MemberVisitor {
 public:
  bool Wants(const std::string& name) override {
    if (name == throws_at) throw std::logic_error("visitor");
    return name != unwanted;
  }
  std::string ReasonToSkip(const std::string& name, const std::string& before,
                           std::string_view piece) override {
    if (IsArchive(name, before.empty() ? piece : std::string_view(before))) return "";
    return piece.find('\0') != std::string_view::npos ? "binary" : "";
  }
  bool Take(const std::string& name, std::string bytes, std::int64_t /*seconds*/) override {
    text += name + "=" + (bytes.size() > 20 ? std::to_string(bytes.size()) : bytes) + "\n";
    bytes_taken += bytes.size();
    return name != last;
  }
  void Skip(const std::string& name, SkipKind kind, const std::string& reason) override {
    text += "(" + name + ": " + KeyOf(kind) + ": " + reason + ")\n";
  }

  std::string unwanted;
  std::string last;
  std::string throws_at;
  std::string text;
  std::uint64_t bytes_taken = 0;
};

ArchiveLimits Limits() {
  ArchiveLimits limits;
  limits.max_member_bytes = 1 << 20;
  limits.is_archive = [](const std::string& name, std::string_view head) {
    return IsArchive(name, head);
  };
  return limits;
}

// Returns what `listing` has, and why the reading ended early.
std::string List(const std::string& bytes, const ArchiveLimits& limits = Limits(),
                 Listing listing = {}) {
  try {
    ReadMembers(ArchiveBytesOf(bytes), limits, listing);
  } catch (const SkipFile& skip) {
    return listing.text + "ended: " + KeyOf(skip.kind()) + ": " + skip.what() + "\n";
  }
  return listing.text;
}

std::string Zip(const PackedMembers& members) { return Archive("zip", "none", members); }

TEST(ArchiveTest, MembersComeInTheirOrder) {
  for (const char* format : {"zip", "ustar"}) {
    EXPECT_EQ(List(Archive(format, "none", {{"b", "one"}, {"a/c", "two"}, {"b", ""}})),
              "b=one\na/c=two\nb=\n");
  }
  EXPECT_EQ(List(Archive("ustar", "zstd", {{"b", "one"}, {"a/c", "two"}})), "b=one\na/c=two\n");
  EXPECT_EQ(List(Zip({})), "");
}

TEST(ArchiveTest, NamesAreOnlyNames) {
  const PackedMembers members{{"../../up", "1"},
                              {"/etc/passwd", "2"},
                              {"line\nfeed", "3"},
                              {"$(touch x)", "4"},
                              {"-o", "5"}};
  EXPECT_EQ(List(Archive("ustar", "none", members)),
            "../../up=1\n/etc/passwd=2\nline\nfeed=3\n$(touch x)=4\n-o=5\n");
}

TEST(ArchiveTest, ArchivesWithinArePartOfTheName) {
  const std::string inner = Archive("ustar", "gzip", {{"x", "one"}, {"y", "two"}});
  EXPECT_EQ(List(Zip({{"d/in.tgz", inner}, {"z", "three"}})),
            "d/in.tgz#x=one\nd/in.tgz#y=two\nz=three\n");
}

TEST(ArchiveTest, FourthArchiveWithinOthersIsNamedOnceForAll) {
  const std::string deep = Zip({{"x", "deep"}});
  const auto within = [](const std::string& third) {
    return Zip({{"2.zip", Zip({{"3.zip", third}})}, {"z", "one"}});
  };
  EXPECT_EQ(List(within(Zip({{"4.zip", deep}, {"y", "three"}}))),
            "2.zip#3.zip#y=three\nz=one\n(2.zip#3.zip#4.zip: too_large: an archive within 3 others "
            "is not opened)\n");
  EXPECT_EQ(
      List(within(Zip({{"4.zip", deep}, {"5.zip", deep}, {"6.zip", deep}}))),
      "z=one\n(2.zip#3.zip#4.zip: too_large: an archive within 3 others is not opened, nor are "
      "2 more in the same file)\n");
}

TEST(ArchiveTest, BrokenArchiveWithinIsNamedAndTheOthersAreRead) {
  const std::string inner = Archive("ustar", "gzip", {{"x", std::string(3000, 'x')}});
  const std::string read =
      List(Zip({{"in.tgz", inner.substr(0, inner.size() - 20)}, {"z", "one"}}));
  EXPECT_NE(read.find("(in.tgz: unreadable: cannot be unpacked: it ends too early)\n"),
            std::string::npos)
      << read;
  EXPECT_NE(read.find("z=one\n"), std::string::npos) << read;
}

TEST(ArchiveTest, MemberThatIsTooLargeIsNamed) {
  ArchiveLimits limits = Limits();
  limits.max_member_bytes = 5;
  for (const char* format : {"zip", "ustar"}) {
    EXPECT_EQ(List(Archive(format, "none", {{"1", "12345"}, {"2", "123456"}, {"3", "x"}}), limits),
              "1=12345\n(2: too_large: larger than 5 bytes)\n3=x\n");
  }
}

TEST(ArchiveTest, MemberThatIsEncryptedIsNamedAndTheOthersAreRead) {
  std::string zip = Zip({{"1", "nobody can read this without the word"}, {"2", "two"}});
  zip[zip.find("PK\x03\x04") + 6] |= 1;
  zip[zip.find("PK\x01\x02") + 8] |= 1;
  const std::string read = List(zip);
  EXPECT_EQ(read.rfind("(1: unreadable: cannot be unpacked: ", 0), 0u) << read;
  EXPECT_NE(read.find("2=two\n"), std::string::npos) << read;
}

TEST(ArchiveTest, AllMembersTogetherAreLimited) {
  ArchiveLimits limits = Limits();
  limits.max_bytes = 10;
  EXPECT_EQ(List(Zip({{"1", "12345"}, {"2", "12345"}}), limits), "1=12345\n2=12345\n");
  EXPECT_EQ(List(Zip({{"1", "12345"}, {"2", "123456"}, {"3", ""}}), limits),
            "1=12345\nended: too_large: its members unpack to more than 10 bytes\n");
  const std::string inner = Zip({{"x", "1"}});
  EXPECT_EQ(List(Zip({{"1", "12345"}, {"in.zip", inner}}), limits),
            "1=12345\nended: too_large: its members unpack to more than 10 bytes\n");
}

TEST(ArchiveTest, MembersAreCountedInArchivesWithinToo) {
  ArchiveLimits limits = Limits();
  limits.max_members = 3;
  const std::string inner = Zip({{"x", "1"}, {"y", "2"}});
  EXPECT_EQ(List(Zip({{"in.zip", inner}}), limits), "in.zip#x=1\nin.zip#y=2\n");
  EXPECT_EQ(List(Zip({{"in.zip", inner}, {"z", "3"}}), limits),
            "in.zip#x=1\nin.zip#y=2\nended: too_large: has more than 3 members\n");
}

TEST(ArchiveTest, BinaryMembersAreNotReadOn) {
  EXPECT_EQ(List(Zip({{"1", std::string("a\0b", 3)}, {"2", "x"}})), "(1: binary: binary)\n2=x\n");
}

TEST(ArchiveTest, VisitorMayStopAndThrow) {
  Listing stops;
  stops.last = "in.zip#x";
  const std::string zip = Zip({{"in.zip", Zip({{"x", "1"}, {"y", "2"}})}, {"z", "3"}});
  ReadMembers(ArchiveBytesOf(zip), Limits(), stops);
  EXPECT_EQ(stops.text, "in.zip#x=1\n");
  Listing throws;
  throws.throws_at = "in.zip#y";
  EXPECT_THROW(ReadMembers(ArchiveBytesOf(zip), Limits(), throws), std::logic_error);
  Listing passes;
  passes.unwanted = "in.zip";
  ReadMembers(ArchiveBytesOf(zip), Limits(), passes);
  EXPECT_EQ(passes.text, "z=3\n");
}

// ---- Bombs ----

// 60 times 1 MiB of blanks, a few kilobytes each.
TEST(ArchiveTest, BombOfManyMembersIsRefusedForItsRatio) {
  PackedMembers members;
  for (int i = 0; i < 60; ++i) members.emplace_back(std::to_string(i), std::string(1 << 20, ' '));
  const std::string bomb = Zip(members);
  ASSERT_LT(bomb.size() * kMaxRatio, members.size() << 20);
  Listing listing;
  EXPECT_THROW(ReadMembers(ArchiveBytesOf(bomb), Limits(), listing), SkipFile);
  EXPECT_LE(listing.bytes_taken, std::max(kRatioFrom, bomb.size() * kMaxRatio));
}

TEST(ArchiveTest, BombOfNestedArchivesIsRefusedForTheRatioOfTheOuterOne) {
  PackedMembers members;
  for (int i = 0; i < 30; ++i) members.emplace_back(std::to_string(i), std::string(1 << 20, ' '));
  const std::string inner = Zip(members);
  PackedMembers outer;
  for (int i = 0; i < 30; ++i) outer.emplace_back(std::to_string(i) + ".zip", inner);
  const std::string bomb = Archive("ustar", "xz", outer);
  ASSERT_LT(bomb.size() * kMaxRatio, std::uint64_t{30 * 30} << 20);
  Listing listing;
  EXPECT_THROW(ReadMembers(ArchiveBytesOf(bomb), Limits(), listing), SkipFile);
  EXPECT_LE(listing.bytes_taken, std::max(kRatioFrom, bomb.size() * kMaxRatio));
}

// Many entries of the directory stand for the same bytes.
std::string OverlappingZip(int members) {
  const std::string zip = Zip({{"a", std::string(1 << 20, ' ')}});
  const std::size_t directory = zip.find("PK\x01\x02");
  const std::size_t end = zip.find("PK\x05\x06");
  const std::string entry = zip.substr(directory, end - directory);
  std::string bomb = zip.substr(0, directory);
  for (int i = 0; i < members; ++i) bomb += entry;
  std::string last = zip.substr(end);
  const auto set = [&](std::size_t at, std::size_t value, std::size_t bytes) {
    for (std::size_t i = 0; i < bytes; ++i) last[at + i] = static_cast<char>(value >> (8 * i));
  };
  set(8, static_cast<std::size_t>(members), 2);
  set(10, static_cast<std::size_t>(members), 2);
  set(12, entry.size() * static_cast<std::size_t>(members), 4);
  return bomb + last;
}

TEST(ArchiveTest, BombOfOverlappingMembersIsRefusedForItsRatio) {
  const std::string bomb = OverlappingZip(500);
  Listing listing;
  try {
    ReadMembers(ArchiveBytesOf(bomb), Limits(), listing);
  } catch (const SkipFile& skip) {
    listing.text += skip.what();
  }
  EXPECT_LE(listing.bytes_taken, std::max(kRatioFrom, bomb.size() * kMaxRatio)) << listing.text;
}

TEST(ArchiveTest, EveryChangeAndTruncationIsReadOrRefused) {
  const std::string inner = Archive("ustar", "gzip", {{"x", "one"}, {"y.html", "<p>two"}});
  for (const std::string& good :
       {Zip({{"in.tgz", inner}, {"z", "three"}}), Archive("ustar", "none", {{"in.tgz", inner}}),
        Archive("pax", "bzip2", {{"in.tgz", inner}}), Archive("gnutar", "xz", {{"z", "three"}}),
        Archive("ustar", "zstd", {{"in.tgz", inner}})}) {
    for (std::size_t at = 0; at < good.size(); ++at) {
      for (const int change : {1, 0x40, 0xff}) {
        std::string bad = good;
        bad[at] = static_cast<char>(bad[at] ^ change);
        EXPECT_LT(List(bad).size(), 2000u) << at;
      }
      EXPECT_LT(List(good.substr(0, at)).size(), 2000u) << at;
    }
  }
}

}  // namespace
}  // namespace kestan_cli
