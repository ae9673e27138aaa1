/* SPDX-License-Identifier: GPL-3.0-or-later */
/* Checking whether an index is whole. */
#include <stdio.h>
#include <string.h>

#include "tests/c/harness.h"
#include "tests/c/poems.h"

TEST(AWholeIndexHasNoFaults) {
  MakePoems();
  kestan_report* report = NULL;
  const kestan_finding* finding = NULL;
  uint64_t faults = 7;
  uint64_t notes = 7;
  REQUIRE_OK(kestan_check(&report, "poems, and more", 5));
  EXPECT_NUMBER(KESTAN_OK, kestan_report_counts(&faults, &notes, report));
  EXPECT_NUMBER(0, faults);
  EXPECT_NUMBER(0, notes);
  EXPECT_NUMBER(KESTAN_ITEROVER, kestan_report_next(&finding, report));
  kestan_report_free(report);
}

TEST(AFileThatIsNotOfTheIndexIsANote) {
  MakePoems();
  FILE* const file = fopen("poems/segment-99.gdbm", "w");
  REQUIRE(file != NULL);
  fclose(file);
  kestan_report* report = NULL;
  const kestan_finding* finding = NULL;
  uint64_t faults = 7;
  uint64_t notes = 7;
  REQUIRE_OK(kestan_check(&report, "poems", 5));
  EXPECT_NUMBER(KESTAN_OK, kestan_report_counts(&faults, &notes, report));
  EXPECT_NUMBER(0, faults);
  if (notes > 0) {
    REQUIRE_OK(kestan_report_next(&finding, report));
    EXPECT_NUMBER(0, finding->is_fault);
    EXPECT(finding->text_length > 0);
  }
  kestan_report_free(report);
}
