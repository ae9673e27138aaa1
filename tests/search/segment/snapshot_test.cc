// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/segment/snapshot.h"

#include <gtest/gtest.h>

#include "tests/search/segment/segment_files.h"
#include "tests/support/temp_dir.h"

namespace kestan::search {
namespace {

TEST(SnapshotTest, AddsUpItsSegments) {
  const kestan_tests::TempDir dir;
  const std::string folder = dir / "";
  Snapshot snapshot;
  EXPECT_EQ(snapshot.living_documents(), 0u);
  EXPECT_EQ(snapshot.living_words(), 0u);
  EXPECT_TRUE(snapshot.with_positions());

  SegmentInfo first = *WriteSegment(folder, 1, {{"a", "one two", {}}, {"b", "three", {}}});
  Edits edits(2);
  edits.Remove(1);
  WriteEdits(folder, edits, 1, &first);
  snapshot.segments.push_back(*Segment::Open(folder, first, true));
  const SegmentInfo second = *WriteSegment(folder, 2, {{"c", "one two three four", {}}});
  snapshot.segments.push_back(*Segment::Open(folder, second, true));
  EXPECT_EQ(snapshot.living_documents(), 2u);
  EXPECT_EQ(snapshot.living_words(), 5u);
  EXPECT_TRUE(snapshot.with_positions());

  const SegmentInfo third = *WriteSegment(folder, 3, {}, false);
  snapshot.segments.push_back(*Segment::Open(folder, third, false));
  EXPECT_FALSE(snapshot.with_positions());
}

}  // namespace
}  // namespace kestan::search
