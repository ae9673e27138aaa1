// SPDX-License-Identifier: GPL-3.0-or-later
// Records that a walk shows and no look-up finds, in files laid out by hand.
#include <kestan/maintenance/check/lookup_check.h>

#include <set>
#include <string>

#include "tests/maintenance/salvage/crafted_file.h"

namespace kestan_maintenance {
namespace {

using Lines = std::multiset<std::string>;

// A directory whose entries all lead to one bucket, of no bits.
class LookupCheckTest : public CraftedFile {
 protected:
  void SetUp() override {
    PutHeader();
    PutHead(kBucketPlace, 0, 0);
    for (unsigned entry = 0; entry < kEntries; ++entry) PutEntries({entry}, kBucketPlace);
  }

  void SetCount(std::int32_t count) {
    Put(kBucketPlace + offsetof(gdbm::BucketHead, count), count);
  }

  // Puts an element `steps` places after the one where a look-up begins.
  void PutAfterHome(const gdbm::Element& element, std::uint32_t steps) {
    const std::uint32_t home = static_cast<std::uint32_t>(element.hash) % shape_.elements;
    Put(gdbm::ElementAt(kBucketPlace, (home + steps) % shape_.elements), element);
  }

  Lines Checked() const {
    Lines lines;
    const kestan::TakeLine take = [&](std::string_view line) { lines.emplace(line); };
    const kestan::TakeFinding take_finding = kestan::AsLines(take);
    kestan::Findings findings(take_finding);
    const gdbm::Bytes bytes(file_);
    kestan::LookupCheck(bytes, &findings).Run();
    return lines;
  }
};

TEST_F(LookupCheckTest, ARecordAtItsPlaceIsFound) {
  EXPECT_EQ(Checked(), Lines());
  SetCount(1);
  PutAfterHome(Add("key"), 0);
  EXPECT_EQ(Checked(), Lines());
}

TEST_F(LookupCheckTest, ASearchEndsAtAnUnusedPlace) {
  SetCount(1);
  PutAfterHome(Add("key"), 1);
  EXPECT_EQ(Checked(), Lines({"key: no look-up finds the record"}));
}

TEST_F(LookupCheckTest, ASearchGoesOnOverUsedPlacesAndPastTheLastOne) {
  SetCount(static_cast<std::int32_t>(shape_.elements));
  const gdbm::Element first = Add("key");
  const std::uint32_t home = static_cast<std::uint32_t>(first.hash) % shape_.elements;
  std::uint32_t steps = 0;
  for (int number = 0; steps + 1 < shape_.elements; ++number) {  // all begin at the same place
    const std::string key = "key " + std::to_string(number);
    if (gdbm::HashOf(key) % shape_.elements == home) PutAfterHome(Add(key), ++steps);
  }
  PutAfterHome(first, 0);
  EXPECT_EQ(Checked(), Lines());
}

TEST_F(LookupCheckTest, ADamagedElementIsReportedByTheKeyThatAWalkShows) {
  SetCount(1);
  gdbm::Element element = Add("key");
  element.key_start[0] = 'x';
  PutAfterHome(element, 0);
  EXPECT_EQ(Checked(), Lines({"key: no look-up finds the record"}));
  element = Add("other key");
  element.hash = -2;  // neither unused nor a hash
  PutHead(kBucketPlace, 0, 1);
  Put(gdbm::ElementAt(kBucketPlace, 0), element);
  EXPECT_EQ(Checked(), Lines({"other key: no look-up finds the record"}));
}

TEST_F(LookupCheckTest, OfTwoElementsWithOneKeyOnlyTheFirstIsFound) {
  SetCount(2);
  const gdbm::Element element = Add("key");
  PutAfterHome(element, 0);
  PutAfterHome(element, 1);
  EXPECT_EQ(Checked(), Lines({"key: no look-up finds the record"}));
}

TEST_F(LookupCheckTest, ABucketCountsItsRecords) {
  SetCount(2);
  PutAfterHome(Add("key"), 0);
  EXPECT_EQ(Checked(), Lines({"index file: entries 0 to 63 of the directory lead to a bucket that "
                              "counts its records wrongly"}));
}

TEST_F(LookupCheckTest, EntriesThatLeadToNoBucketAndWhatTheyHideAreReported) {
  SetCount(1);
  PutAfterHome(AddKeys(1, 5, kBits).front(), 0);
  PutEntries({5, 6}, 8);
  const Lines lines = Checked();
  EXPECT_EQ(lines.count("index file: entries 5 to 6 of the directory lead to no bucket"), 1U);
  EXPECT_EQ(lines.count("index file: entries 0 to 4 of the directory lead to the bucket of others"),
            1U);
  EXPECT_EQ(
      lines.count("index file: entries 7 to 63 of the directory lead to the bucket of others"), 1U);
  EXPECT_EQ(lines.size(), 5U);  // and the record, once for each run that leads to its bucket
}

TEST_F(LookupCheckTest, AFileWithoutAHeaderIsReportedOnce) {
  file_[0] = 'x';
  EXPECT_EQ(Checked(), Lines({"index file: the header makes no sense"}));
}

}  // namespace
}  // namespace kestan_maintenance
