/* SPDX-License-Identifier: GPL-3.0-or-later */
/* The progress callback of a writer, which may stop it, and must not use it. */
#include <string.h>

#include "tests/c/harness.h"
#include "tests/c/poems.h"

typedef struct Progress {
  int calls;
  int stop_at;           /* the call that asks to stop; 0: none */
  int is_sound;          /* it was never past the whole */
  kestan_writer* writer; /* which the callback uses, or null */
} Progress;

static int Report(const kestan_progress* progress, void* payload) {
  Progress* const seen = payload;
  ++seen->calls;
  if (progress->phase != KESTAN_PHASE_WRITING && progress->phase != KESTAN_PHASE_MERGING) {
    seen->is_sound = 0;
  }
  if (progress->done_bytes > progress->all_bytes) seen->is_sound = 0;
  if (seen->writer != NULL) {
    const kestan_document document = KESTAN_DOCUMENT_INIT;
    const kestan_error* warning = NULL;
    EXPECT_NUMBER(KESTAN_EINVALID, kestan_writer_commit(seen->writer));
    EXPECT_NUMBER(KESTAN_EINVALID, kestan_writer_compact(seen->writer));
    EXPECT_NUMBER(KESTAN_EINVALID, kestan_writer_rollback(seen->writer));
    EXPECT_NUMBER(KESTAN_EINVALID, kestan_writer_add(seen->writer, &document));
    EXPECT_NUMBER(KESTAN_EINVALID, kestan_writer_remove(seen->writer, "a", 1));
    EXPECT_NUMBER(KESTAN_EINVALID, kestan_writer_rename(seen->writer, "a", 1, "b", 1));
    EXPECT_NUMBER(KESTAN_EINVALID, kestan_writer_warning(&warning, seen->writer));
    EXPECT_NUMBER(KESTAN_EINVALID, CodeOf(seen->writer));
    EXPECT(strstr(MessageOf(seen->writer), "running") != NULL);
  }
  return seen->calls == seen->stop_at;
}

static kestan_writer* OpenReporting(Progress* progress) {
  kestan_writer_options options = QuickOptions();
  options.progress = Report;
  options.progress_payload = progress;
  kestan_writer* writer = NULL;
  REQUIRE_OK(kestan_writer_open(&writer, "poems", 5, &options));
  return writer;
}

static void AddMany(kestan_writer* writer) {
  static const char* const names[] = {"a", "b", "c", "d", "e", "f", "g", "h"};
  for (size_t i = 0; i < COUNT_OF(names); ++i) Add(writer, names[i], NULL, "a new word");
}

TEST(ACommitAndACompactionTellHowFarTheyAre) {
  MakePoems();
  Progress progress = {0, 0, 1, NULL};
  kestan_writer* const writer = OpenReporting(&progress);
  AddMany(writer);
  Commit(writer);
  EXPECT(progress.calls > 0);
  const int calls = progress.calls;
  EXPECT_NUMBER(KESTAN_OK, kestan_writer_compact(writer));
  EXPECT(progress.calls > calls);
  EXPECT(progress.is_sound);
  kestan_writer_free(writer);
}

TEST(ACallbackThatStopsACommitLeavesTheIndexAsItWas) {
  MakePoems();
  Progress progress = {0, 1, 1, NULL};
  kestan_writer* const writer = OpenReporting(&progress);
  AddMany(writer);
  EXPECT_NUMBER(KESTAN_EINTERRUPTED, kestan_writer_commit(writer));
  EXPECT_NUMBER(KESTAN_EINTERRUPTED, CodeOf(writer));
  kestan_reader* const reader = OpenReader("poems");
  EXPECT_NUMBER(0, CountOf(reader, "new"));
  EXPECT_NUMBER(2, CountOf(reader, "roses"));
  EXPECT_NUMBER(KESTAN_OK, kestan_writer_rollback(writer));
  AddMany(writer);
  Commit(writer);
  int changed = -1;
  EXPECT_NUMBER(KESTAN_OK, kestan_reader_refresh(&changed, reader));
  EXPECT_NUMBER(1, changed);
  EXPECT_NUMBER(8, CountOf(reader, "new"));
  kestan_reader_free(reader);
  kestan_writer_free(writer);
}

TEST(ACallbackThatStopsACompactionLeavesTheIndexAsItWas) {
  MakePoems();
  Progress progress = {0, 0, 1, NULL};
  kestan_writer* const writer = OpenReporting(&progress);
  AddMany(writer);
  Commit(writer);
  progress.stop_at = progress.calls + 1;
  EXPECT_NUMBER(KESTAN_EINTERRUPTED, kestan_writer_compact(writer));
  kestan_reader* const reader = OpenReader("poems");
  kestan_statistics statistics = KESTAN_STATISTICS_INIT;
  EXPECT_NUMBER(KESTAN_OK, kestan_reader_statistics(&statistics, reader));
  EXPECT_NUMBER(2, statistics.segments);
  EXPECT_NUMBER(11, statistics.documents);
  EXPECT_NUMBER(KESTAN_OK, kestan_writer_rollback(writer));
  EXPECT_NUMBER(KESTAN_OK, kestan_writer_compact(writer));
  EXPECT_NUMBER(KESTAN_OK, kestan_reader_refresh(NULL, reader));
  EXPECT_NUMBER(KESTAN_OK, kestan_reader_statistics(&statistics, reader));
  EXPECT_NUMBER(1, statistics.segments);
  kestan_reader_free(reader);
  kestan_writer_free(writer);
}

TEST(ACallbackCannotUseItsWriter) {
  Progress progress = {0, 0, 1, NULL};
  kestan_writer* const writer = OpenReporting(&progress);
  progress.writer = writer;
  AddMany(writer);
  Commit(writer);
  EXPECT(progress.calls > 0);
  kestan_reader* const reader = OpenReader("poems");
  EXPECT_NUMBER(8, CountOf(reader, "new"));
  kestan_reader_free(reader);
  kestan_writer_free(writer);
}

/* Further calls free a handle that is freed. */
static int FreeWriter(const kestan_progress* progress, void* payload) {
  kestan_writer** const writer = payload;
  (void)progress;
  kestan_writer_free(*writer);
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_writer_commit(*writer));
  return 0;
}

TEST(AWriterThatItsCallbackFreesEndsItsCommitAndIsGone) {
  kestan_writer* writer = NULL;
  kestan_writer_options options = QuickOptions();
  options.progress = FreeWriter;
  options.progress_payload = &writer;
  REQUIRE_OK(kestan_writer_open(&writer, "poems", 5, &options));
  AddMany(writer);
  EXPECT_NUMBER(KESTAN_OK, kestan_writer_commit(writer));
  EXPECT_NUMBER(KESTAN_EHANDLE, kestan_writer_commit(writer));
  kestan_writer_free(writer);
  kestan_writer_free(OpenWriter("poems"));
  kestan_reader* const reader = OpenReader("poems");
  EXPECT_NUMBER(8, CountOf(reader, "new"));
  kestan_reader_free(reader);
}

static int StopMerging(const kestan_progress* progress, void* payload) {
  (void)payload;
  return progress->phase == KESTAN_PHASE_MERGING;
}

TEST(ACallbackThatStopsMergingLeavesWhatWasCommitted) {
  MakePoems();
  kestan_writer_options options = QuickOptions();
  options.progress = StopMerging;
  kestan_writer* writer = NULL;
  REQUIRE_OK(kestan_writer_open(&writer, "poems", 5, &options));
  AddMany(writer);
  EXPECT_NUMBER(KESTAN_EINTERRUPTED, kestan_writer_compact(writer));
  kestan_reader* const reader = OpenReader("poems");
  EXPECT_NUMBER(8, CountOf(reader, "new"));
  kestan_statistics statistics = KESTAN_STATISTICS_INIT;
  EXPECT_NUMBER(KESTAN_OK, kestan_reader_statistics(&statistics, reader));
  EXPECT_NUMBER(2, statistics.segments);
  EXPECT_NUMBER(KESTAN_OK, kestan_writer_commit(writer));
  kestan_reader_free(reader);
  kestan_writer_free(writer);
}
