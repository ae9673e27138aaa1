// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/storage/gdbm/gdbm_header.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace kestan_tests {
namespace {

namespace gdbm = kestan::gdbm;

class GdbmHeaderTest : public testing::Test {
 protected:
  bool IsRead() {
    std::string file(4096, '\0');
    std::memcpy(file.data(), &header_, sizeof header_);
    gdbm::Header header{};
    return gdbm::ReadHeader(file, &header, &shape_);
  }

  gdbm::Header header_{
      gdbm::kMagic, 512, 512, 512, 6, 512, static_cast<std::int32_t>(gdbm::Shape().elements), 4096};
  gdbm::Shape shape_;
};

TEST_F(GdbmHeaderTest, EachOfGdbmsFormatsIsKnownAndNoOther) {
  for (const std::uint32_t magic : {gdbm::kMagic, gdbm::kOldMagic, gdbm::kExtendedMagic}) {
    header_.magic = magic;
    EXPECT_TRUE(IsRead()) << magic;
  }
  for (const std::uint32_t magic : {0U, gdbm::kOldMagic - 1, gdbm::kMagic + 1, ~0U}) {
    header_.magic = magic;
    EXPECT_FALSE(IsRead()) << magic;
  }
}

TEST_F(GdbmHeaderTest, FieldsAreCertainInFormatsWithLongOffsetsAlone) {
  EXPECT_TRUE(gdbm::HasHeaderFields(gdbm::kMagic));
  EXPECT_TRUE(gdbm::HasHeaderFields(gdbm::kExtendedMagic));
  EXPECT_FALSE(gdbm::HasHeaderFields(gdbm::kOldMagic));
  EXPECT_FALSE(gdbm::HasHeaderFields(0));
}

TEST_F(GdbmHeaderTest, FileShorterThanAHeaderHasNone) {
  const std::string header(reinterpret_cast<const char*>(&header_), sizeof header_);
  gdbm::Header read{};
  EXPECT_FALSE(gdbm::ReadHeader(std::string_view(header).substr(1), &read, &shape_));
  EXPECT_FALSE(gdbm::ReadHeader({}, &read, &shape_));
}

TEST_F(GdbmHeaderTest, DirectoryBeginsInsideTheFile) {
  header_.directory = 4095;
  EXPECT_TRUE(IsRead());
  header_.directory = 4096;
  EXPECT_FALSE(IsRead());
}

TEST_F(GdbmHeaderTest, ABucketHoldsItsHeadAndAnElementAtLeast) {
  constexpr auto kHeadBytes = static_cast<std::int32_t>(sizeof(gdbm::BucketHead));
  header_.bucket_bytes = kHeadBytes + 24;
  header_.bucket_elements = 1;
  EXPECT_TRUE(IsRead());
  EXPECT_EQ(shape_.elements, 1U);
  for (const std::int32_t bytes : {kHeadBytes + 23, kHeadBytes, kHeadBytes - 1, 0, -512}) {
    header_.bucket_bytes = bytes;
    for (const std::int32_t elements : {0, 1, 16, 0x0aaaaaaa}) {
      header_.bucket_elements = elements;
      EXPECT_FALSE(IsRead()) << bytes << " " << elements;
    }
  }
}

}  // namespace
}  // namespace kestan_tests
