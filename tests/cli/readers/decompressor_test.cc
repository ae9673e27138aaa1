// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/readers/decompressor.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/packed.h"

namespace kestan_cli {
namespace {

using kestan_tests::Packed;

constexpr const char* kFilters[] = {"gzip", "bzip2", "xz", "zstd"};

// What the functions of a test know.
struct Trial {
  std::string packed;
  std::size_t piece_bytes = 1000;
  std::size_t max_bytes = 1 << 24;
  long at_end = 0;  // what the source returns there
  std::size_t at = 0;
  std::string unpacked{};
  ReadProblem problem{};

  ReadStatus Decompress(int max_layers = 1) {
    const ByteSource source{this, [](void* run, const char** bytes) noexcept {
                              return static_cast<Trial*>(run)->Next(bytes);
                            }};
    const ByteSink sink{this, [](void* run, const char* bytes, std::size_t size) noexcept {
                          auto* const to = static_cast<Trial*>(run);
                          to->unpacked.append(bytes, size);
                          return to->unpacked.size() < to->max_bytes;
                        }};
    return kestan_cli::Decompress(source, sink, max_layers, &problem);
  }

  long Next(const char** bytes) {
    if (at >= packed.size()) return at_end;
    *bytes = packed.data() + at;
    const std::size_t size = std::min(piece_bytes, packed.size() - at);
    at += size;
    return static_cast<long>(size);
  }
};

std::string LongText() {
  std::string text;
  for (int i = 0; i < 20000; ++i) text += std::to_string(i * 7919) + " words\n";
  return text;
}

TEST(DecompressorTest, EveryFormatIsReadInPiecesOfAnySize) {
  const std::string text = LongText();
  for (const char* filter : kFilters) {
    for (const std::size_t piece : {1u, 17u, 100000u}) {
      Trial run{Packed(text, filter), piece};
      ASSERT_EQ(run.Decompress(), ReadStatus::kRead) << filter << run.problem.text;
      ASSERT_EQ(run.unpacked, text) << filter << piece;
    }
  }
}

TEST(DecompressorTest, NothingIsNothing) {
  for (const char* filter : kFilters) {
    Trial run{Packed("", filter)};
    EXPECT_EQ(run.Decompress(), ReadStatus::kRead) << filter;
    EXPECT_EQ(run.unpacked, "");
  }
}

TEST(DecompressorTest, FilesBehindEachOtherAreOneText) {
  Trial run{Packed("one ") + Packed("two")};
  EXPECT_EQ(run.Decompress(), ReadStatus::kRead);
  EXPECT_EQ(run.unpacked, "one two");
}

// What is read of a file of gzip, of two behind each other, and of what other programs write.
const std::string kFirst = "some text to be changed, ";
const std::string kSecond = "and some more of it";

// libarchive has zstd write no checksum.
TEST(DecompressorTest, NoChangedByteIsReadAsIfItWereWhole) {
  for (const char* filter : {"gzip", "bzip2", "xz"}) {
    for (const bool is_double : {false, true}) {
      const std::string packed =
          Packed(kFirst, filter) + (is_double ? Packed(kSecond, filter) : std::string());
      const std::string text = kFirst + (is_double ? kSecond : "");
      for (std::size_t at = 0; at < packed.size(); ++at) {
        for (const int change : {1, 0x10, 0x80, 0xff}) {
          Trial run{packed};
          run.packed[at] = static_cast<char>(run.packed[at] ^ change);
          if (run.Decompress() != ReadStatus::kRead) continue;
          ASSERT_EQ(run.unpacked, text) << filter << " " << at << " " << change;
        }
      }
    }
  }
}

TEST(DecompressorTest, GzipIsReportedWhereverItIsCut) {
  const std::string packed = Packed(LongText());
  for (std::size_t left = 0; left < packed.size(); left += left < 40 ? 1 : 997) {
    Trial run{packed.substr(0, packed.size() - left)};
    EXPECT_EQ(run.Decompress(), left == 0 ? ReadStatus::kRead : ReadStatus::kUnread) << left;
  }
}

TEST(DecompressorTest, ChecksumOfGzipIsComparedInALayerBelow) {
  std::string packed = Packed(kFirst);
  packed[packed.size() - 6] ^= 1;
  Trial run{Packed(packed, "xz")};
  EXPECT_EQ(run.Decompress(2), ReadStatus::kUnread);
  EXPECT_STREQ(run.problem.text, "incorrect data check");
}

TEST(DecompressorTest, ZerosMayFollowGzipAndNothingElse) {
  Trial zeros{Packed(kFirst) + std::string(1000, '\0'), 7};
  EXPECT_EQ(zeros.Decompress(), ReadStatus::kRead);
  EXPECT_EQ(zeros.unpacked, kFirst);
  for (const std::string& end : {std::string("x"), std::string("\0x", 2), std::string("\x1f")}) {
    Trial other{Packed(kFirst) + end};
    EXPECT_EQ(other.Decompress(), ReadStatus::kUnread);
    EXPECT_STRNE(other.problem.text, "");
  }
}

TEST(DecompressorTest, LayersAreCounted) {
  const std::string twice = Packed(Packed("text"), "xz");
  Trial allowed{twice};
  EXPECT_EQ(allowed.Decompress(2), ReadStatus::kRead);
  EXPECT_EQ(allowed.unpacked, "text");
  Trial refused{twice};
  EXPECT_EQ(refused.Decompress(1), ReadStatus::kUnread);
  EXPECT_STREQ(refused.problem.text, "compressed too many times");
}

TEST(DecompressorTest, SinkMayStop) {
  Trial run{Packed(LongText())};
  run.max_bytes = 10;
  EXPECT_EQ(run.Decompress(), ReadStatus::kRead);
  EXPECT_LT(run.unpacked.size(), LongText().size());
}

TEST(DecompressorTest, SourceThatFailsIsNoEnd) {
  Trial run{Packed(LongText()).substr(0, 5000)};
  run.at_end = -1;
  EXPECT_EQ(run.Decompress(), ReadStatus::kUnread);
}

TEST(DecompressorTest, EveryTruncationIsReported) {
  for (const char* filter : kFilters) {
    const std::string packed = Packed("some text to be cut", filter);
    for (std::size_t size = 0; size + 8 < packed.size(); ++size) {
      Trial run{packed.substr(0, size)};
      EXPECT_EQ(run.Decompress(), ReadStatus::kUnread) << filter << " " << size;
      EXPECT_STRNE(run.problem.text, "") << filter << " " << size;
    }
  }
}

TEST(DecompressorTest, ChangedBytesAreReadOrReported) {
  for (const char* filter : kFilters) {
    const std::string packed = Packed("some text to be changed", filter);
    for (std::size_t at = 0; at < packed.size(); ++at) {
      for (const int change : {1, 0x80, 0xff}) {
        Trial run{packed};
        run.packed[at] = static_cast<char>(run.packed[at] ^ change);
        const ReadStatus status = run.Decompress();
        EXPECT_EQ(status == ReadStatus::kRead, run.problem.text[0] == '\0') << filter << at;
      }
    }
  }
}

}  // namespace
}  // namespace kestan_cli
