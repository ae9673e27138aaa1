// SPDX-License-Identifier: GPL-3.0-or-later
// Opening and closing files, one after the other and side by side.
#include <sys/stat.h>

#include <fstream>
#include <memory>
#include <type_traits>

#include "tests/storage/database_test.h"

namespace kestan_tests {
namespace {

static_assert(!std::is_copy_constructible_v<Database>);
static_assert(!std::is_copy_assignable_v<Database>);

class DatabaseFileTest : public DatabaseTest {
 protected:
  void SetUp() override {}

  // What gdbm itself says about opening `path` with `flags`.
  static int GdbmErrorOf(const std::string& path, int flags) {
    GDBM_FILE file = gdbm_open(path.c_str(), 512, flags, 0644, nullptr);
    EXPECT_EQ(file, nullptr);
    return gdbm_errno;
  }

  const std::string other_path_ = folder_ / "other";
};

TEST_F(DatabaseFileTest, AWriterCreatesTheFile) {
  EXPECT_EQ(store_.Open(path_.c_str(), 1), 0);
  EXPECT_TRUE(std::filesystem::exists(path_));
  EXPECT_TRUE(Stored().empty());
}

TEST_F(DatabaseFileTest, AWriterKeepsTheRecordsThatAreThere) {
  Plant(path_, {{"key", "value"}});
  EXPECT_EQ(store_.Open(path_.c_str(), 1), 0);
  EXPECT_EQ(Get("key"), "value");
}

TEST_F(DatabaseFileTest, AnyModeButZeroWrites) {
  for (int writer : {1, 2, -1, 1 << 30}) {
    ASSERT_EQ(store_.Open(path_.c_str(), writer), 0);
    EXPECT_EQ(Put("key", "value"), 0);
    store_.Close();
  }
}

TEST_F(DatabaseFileTest, AReaderDoesNotCreateTheFile) {
  const int error = store_.Open(path_.c_str(), 0);
  EXPECT_EQ(error, GdbmErrorOf(path_, GDBM_READER));
  EXPECT_GT(error, 0);
  EXPECT_FALSE(std::filesystem::exists(path_));
}

TEST_F(DatabaseFileTest, AReaderReads) {
  Plant(path_, {{"key", "value"}});
  EXPECT_EQ(store_.Open(path_.c_str(), 0), 0);
  EXPECT_EQ(Get("key"), "value");
}

TEST_F(DatabaseFileTest, TwoReadersShareAFile) {
  Plant(path_, {{"key", "value"}});
  Database second;
  EXPECT_EQ(store_.Open(path_.c_str(), 0), 0);
  EXPECT_EQ(second.Open(path_.c_str(), 0), 0);
}

TEST_F(DatabaseFileTest, AsksGdbmForAFastWriter) {
  GdbmWatch gdbm;
  store_.Open(path_.c_str(), 1);
  ASSERT_EQ(gdbm.Openings().size(), 1u);
  const GdbmOpening& opening = gdbm.Openings().front();
  EXPECT_EQ(opening.file, path_);
  EXPECT_EQ(opening.block_bytes, 512);
  EXPECT_EQ(opening.flags, 18);
  EXPECT_EQ(opening.mode, 0644);
  EXPECT_FALSE(opening.has_fatal_callback);
}

TEST_F(DatabaseFileTest, AsksGdbmForAPlainReader) {
  Plant(path_, {});
  GdbmWatch gdbm;
  store_.Open(path_.c_str(), 0);
  ASSERT_EQ(gdbm.Openings().size(), 1u);
  const GdbmOpening& opening = gdbm.Openings().front();
  EXPECT_EQ(opening.block_bytes, 512);
  EXPECT_EQ(opening.flags, 0);
  EXPECT_EQ(opening.mode, 0644);
  EXPECT_FALSE(opening.has_fatal_callback);
}

TEST_F(DatabaseFileTest, ANewFileIsWrittenByItsOwnerOnly) {
  const mode_t mask = umask(0);
  store_.Open(path_.c_str(), 1);
  umask(mask);
  struct stat status {};
  ASSERT_EQ(stat(path_.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777u, 0644u);
}

TEST_F(DatabaseFileTest, OpeningTwiceFailsAndKeepsTheFirstFile) {
  Plant(path_, {{"key", "value"}});
  ASSERT_EQ(store_.Open(path_.c_str(), 1), 0);
  GdbmWatch gdbm;
  EXPECT_EQ(store_.Open(other_path_.c_str(), 1), -1);
  EXPECT_TRUE(gdbm.Openings().empty());
  EXPECT_FALSE(std::filesystem::exists(other_path_));
  EXPECT_EQ(Get("key"), "value");
}

TEST_F(DatabaseFileTest, OpeningTwiceKeepsTheCache) {
  Plant(path_, {{"key", "value"}});
  ASSERT_EQ(store_.Open(path_.c_str(), 1), 0);
  Change(Held("key"), "VALUE");
  EXPECT_EQ(store_.Open(other_path_.c_str(), 1), -1);
  EXPECT_EQ(Stored().at("key"), "VALUE");
}

TEST_F(DatabaseFileTest, OpeningPrintsNothing) {
  const std::string printed = StandardErrorOf([&] {
    store_.Open(other_path_.c_str(), 0);
    store_.Open(path_.c_str(), 1);
    store_.Open(path_.c_str(), 1);
  });
  EXPECT_EQ(printed, "");
}

TEST_F(DatabaseFileTest, AFileOfAnotherKindIsGdbmsError) {
  std::ofstream(path_) << std::string(4096, 'x');
  EXPECT_EQ(store_.Open(path_.c_str(), 1), GdbmErrorOf(path_, GDBM_WRCREAT));
  EXPECT_EQ(store_.Open(path_.c_str(), 0), GDBM_BAD_MAGIC_NUMBER);
}

TEST_F(DatabaseFileTest, AFolderIsGdbmsError) {
  const std::string folder = folder_ / "";
  EXPECT_EQ(store_.Open(folder.c_str(), 1), GdbmErrorOf(folder, GDBM_WRCREAT));
}

TEST_F(DatabaseFileTest, ALockedFileIsGdbmsError) {
  Database first;
  ASSERT_EQ(first.Open(path_.c_str(), 1), 0);
  EXPECT_EQ(store_.Open(path_.c_str(), 1), GDBM_CANT_BE_WRITER);
  EXPECT_EQ(store_.Open(path_.c_str(), 0), GDBM_CANT_BE_READER);
}

TEST_F(DatabaseFileTest, AFailedOpenLeavesTheStoreClosed) {
  EXPECT_GT(store_.Open(path_.c_str(), 0), 0);
  EXPECT_EQ(store_.Close(), 0);
  EXPECT_EQ(store_.Open(path_.c_str(), 1), 0);
}

TEST_F(DatabaseFileTest, ClosingAClosedStoreIsNoError) {
  const std::string printed = StandardErrorOf([&] {
    EXPECT_EQ(store_.Close(), 0);
    EXPECT_EQ(store_.Close(), 0);
  });
  EXPECT_EQ(printed, "");
}

TEST_F(DatabaseFileTest, ClosingFlushesThenCloses) {
  Plant(path_, {{"key", "value"}});
  store_.Open(path_.c_str(), 1);
  Change(Held("key"), "VALUE");
  GdbmWatch gdbm;
  EXPECT_EQ(store_.Close(), 0);
  EXPECT_EQ(gdbm.Lines(), (Lines{"store key", "sync", "close"}));
}

TEST_F(DatabaseFileTest, DyingCloses) {
  Plant(path_, {{"key", "value"}});
  auto dies = std::make_unique<Database>();
  dies->Open(path_.c_str(), 1);
  DBDatumPtr value;
  dies->Get(&value, Datum("key"));
  Change(value, "VALUE");
  GdbmWatch gdbm;
  dies.reset();
  EXPECT_EQ(gdbm.Lines(), (Lines{"store key", "sync", "close"}));
  EXPECT_EQ(value.ptr->refs, 1);
}

TEST_F(DatabaseFileTest, DyingClosedPrintsNothing) {
  EXPECT_EQ(StandardErrorOf([] { const Database store; }), "");
}

TEST_F(DatabaseFileTest, DyingReleasesTheCursor) {
  Plant(path_, {{"key", "value"}});
  DBDatumPtr key;
  {
    Database store;
    store.Open(path_.c_str(), 0);
    ASSERT_EQ(store.First(&key), 0);
    EXPECT_EQ(key.ptr->refs, 2);
  }
  EXPECT_EQ(key.ptr->refs, 1);
}

TEST_F(DatabaseFileTest, AHeldRecordAnswersForTheNextFileToo) {
  Plant(path_, {{"key", "of the first"}});
  Plant(other_path_, {{"key", "of the second"}});
  store_.Open(path_.c_str(), 1);
  const DBDatumPtr held = Held("key");
  store_.Close();
  store_.Open(other_path_.c_str(), 1);
  GdbmWatch gdbm;
  EXPECT_EQ(Held("key").ptr, held.ptr);
  EXPECT_EQ(Get("key"), "of the first");
  EXPECT_EQ(gdbm.Count("fetch"), 0u);
}

TEST_F(DatabaseFileTest, ARecordGivenUpBeforeOpeningDoesNotAnswerForTheNextFile) {
  Plant(path_, {{"key", "of the first"}});
  Plant(other_path_, {{"key", "of the second"}});
  store_.Open(path_.c_str(), 1);
  DBDatumPtr held = Held("key");
  store_.Close();
  held.Free();
  store_.Open(other_path_.c_str(), 1);
  EXPECT_EQ(Get("key"), "of the second");
}

TEST_F(DatabaseFileTest, StoresThatAreOpenSideBySideDoNotSeeEachOther) {
  Plant(path_, {{"key", "of the first"}});
  Plant(other_path_, {{"key", "of the second"}});
  Database other;
  store_.Open(path_.c_str(), 1);
  other.Open(other_path_.c_str(), 1);
  const DBDatumPtr held = Held("key");
  Change(held, "OF");
  DBDatumPtr value;
  ASSERT_EQ(other.Get(&value, Datum("key")), 0);
  EXPECT_EQ(Bytes(*value.ptr), "of the second");
  other.Close();
  EXPECT_EQ(Dump(other_path_).at("key"), "of the second");
}

}  // namespace
}  // namespace kestan_tests
