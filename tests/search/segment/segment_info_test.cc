// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/segment/segment_info.h"

#include <gtest/gtest.h>

namespace kestan::search {
namespace {

TEST(SegmentInfoTest, FilesAreNamedByNumbers) {
  SegmentInfo info;
  info.number = 17;
  info.edit_number = 3;
  EXPECT_EQ(SegmentFile(info), "17.segment");
  EXPECT_EQ(TermsFile(info), "17.terms");
  EXPECT_EQ(TableFile(info), "17.documents");
  EXPECT_EQ(EditsFile(info), "17-3.edits");
}

}  // namespace
}  // namespace kestan::search
