// What passes for a header of gdbm's.
#include <gtest/gtest.h>
#include <kestan/maintenance/salvage/gdbm_layout.h>

#include <string>

namespace kestan_maintenance {
namespace {

namespace gdbm = kestan::gdbm;

class HeaderTest : public testing::Test {
 protected:
  bool IsRead() {
    std::string file(4096, '\0');
    std::memcpy(file.data(), &header_, sizeof header_);
    gdbm::Header header{};
    return gdbm::ReadHeader(gdbm::Bytes(file), &header, &shape_);
  }

  gdbm::Header header_{
      gdbm::kMagic, 512, 512, 512, 6, 512, static_cast<std::int32_t>(gdbm::Shape().elements), 4096};
  gdbm::Shape shape_;
};

TEST_F(HeaderTest, EachOfGdbmsFormatsIsKnownAndNoOther) {
  for (const std::uint32_t magic : {gdbm::kMagic, gdbm::kOldMagic, gdbm::kExtendedMagic}) {
    header_.magic = magic;
    EXPECT_TRUE(IsRead()) << magic;
  }
  for (const std::uint32_t magic : {0U, gdbm::kOldMagic - 1, gdbm::kMagic + 1, ~0U}) {
    header_.magic = magic;
    EXPECT_FALSE(IsRead()) << magic;
  }
}

TEST_F(HeaderTest, ABucketHoldsItsHeadAndAnElementAtLeast) {
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
}  // namespace kestan_maintenance
