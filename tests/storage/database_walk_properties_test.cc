// SPDX-License-Identifier: GPL-3.0-or-later
// A walk over a healthy file ends only where gdbm's own walk does, whatever happens between its
// steps.
//
// Random operations run on two files of a store. Each gdbm call that changes one of them is made on
// a plain twin of it too, and each step of the walk is compared with gdbm's step in the twin. For
// more sequences than the default:
//   KESTAN_WALK_SEQUENCES=50000 storage_tests --gtest_filter='DatabaseWalkProperties.*'
#include <algorithm>
#include <array>
#include <functional>
#include <random>
#include <utility>

#include "tests/storage/database_test.h"
#include "tests/support/environment.h"

namespace kestan_tests {
namespace {

constexpr unsigned kKeys = 1000;  // how many different ones there are
constexpr unsigned kOthers = 8;   // operations besides those of the walk
constexpr std::string_view kTwin = ".twin";

bool IsTwin(const std::string& path) {
  return path.size() > kTwin.size() && path.substr(path.size() - kTwin.size()) == kTwin;
}

datum ForGdbm(const std::string& bytes) {
  return {const_cast<char*>(bytes.data()), static_cast<int>(bytes.size())};
}

// A file next to that of a store, through the same changes, and a plain gdbm walk over it.
class TwinFile {
 public:
  TwinFile() {
    watch_.Observe([this](const GdbmCall& call) {
      if (!IsTwin(call.file)) Follow(call);
    });
  }
  ~TwinFile() {
    if (file_ != nullptr) gdbm_close(file_);
  }
  TwinFile(const TwinFile&) = delete;
  TwinFile& operator=(const TwinFile&) = delete;

  // Start and continue the walk.
  //   Return  the key, "end" where there is none.
  std::string First() { return Visit(gdbm_firstkey(file_)); }
  std::string Next() { return has_key_ ? Visit(gdbm_nextkey(file_, ForGdbm(key_))) : "end"; }

 private:
  void Follow(const GdbmCall& call) {
    const std::string path = call.file + std::string(kTwin);
    if (call.function == "open") file_ = gdbm_open(path.c_str(), 512, GDBM_WRCREAT, 0644, nullptr);
    if (call.function == "close") gdbm_close(std::exchange(file_, nullptr));
    if (call.function == "delete") gdbm_delete(file_, ForGdbm(call.key));
    if (call.function == "reorganize") gdbm_reorganize(file_);
    if (call.function != "store") return;
    gdbm_store(file_, ForGdbm(call.key), ForGdbm(call.value), GDBM_REPLACE);
  }

  std::string Visit(datum found) {
    if (found.dptr == nullptr) return "end";
    has_key_ = true;
    key_.assign(found.dptr, static_cast<std::size_t>(found.dsize));
    std::free(found.dptr);
    return key_;
  }

  GdbmWatch watch_;
  GDBM_FILE file_ = nullptr;
  std::string key_;
  bool has_key_ = false;
};

class DatabaseWalkPropertiesTest : public testing::Test {
 protected:
  // Runs one random sequence of `operations` operations on a store with two files.
  void RunSequence(unsigned seed, int operations) {
    random_.seed(seed);
    const TempDir folder;
    TwinFile twin;
    Database store;
    paths_ = {folder / "one", folder / "two", folder / "three", folder / "four"};
    holds_ = Below(2) == 0;
    without_ = Below(1 << kOthers) & Below(1 << kOthers);
    for (const std::string& path : paths_) {
      store.Close();
      store.Open(path.c_str(), 1);
      for (unsigned i = Below(100); i > 0; --i) PutOne(&store);
    }
    EXPECT_EQ(FirstKey(&store), twin.First());
    for (int i = 0; i < operations && !HasFailure(); ++i) Step(&store, &twin);
    held_.clear();
  }

 private:
  // Nine of ten operations go on with the walk.
  void Step(Database* store, TwinFile* twin) {
    if (Below(60) == 0) {
      EXPECT_EQ(FirstKey(store), twin->First());
    } else if (Below(10) != 0) {
      EXPECT_EQ(NextKey(store), twin->Next());
      EXPECT_EQ(store->WalkError(), 0);
    } else {
      DoSomethingElse(store);
    }
  }

  // Each sequence does without some of these, so that they do not hide what others do.
  void DoSomethingElse(Database* store) {
    const std::array<std::function<void()>, kOthers> others = {
        [&] { PutOne(store); },  [&] { store->Del(Datum(Key())); },
        [&] { store->Flush(); }, [&] { store->Shrink(); },
        [&] { Reopen(store); },  [&] { store->Verify(); },
        [&] { GetSome(store); }, [&] { held_.clear(); },
    };
    const unsigned other = Below(kOthers);
    if ((without_ >> other & 1) == 0) others[other]();
  }

  void PutOne(Database* store) { EXPECT_EQ(store->Put(Datum(Key()), Datum("value")), 0); }

  void Reopen(Database* store) {
    EXPECT_EQ(store->Close(), 0);
    EXPECT_EQ(store->Open(paths_[Below(4)].c_str(), 1), 0);
  }

  void GetSome(Database* store) {
    const std::array<std::string, 3> names = {Key(), Key(), Key()};
    std::array<DBDatum, 3> keys;
    std::transform(names.begin(), names.end(), keys.begin(), Datum);
    std::array<DBDatumPtr, 3> values;
    EXPECT_EQ(store->GetMany(values.data(), keys.data(), keys.size()), 0);
  }

  std::string FirstKey(Database* store) { return Came(store->First(&key_, MaybeValue())); }
  std::string NextKey(Database* store) { return Came(store->Next(&key_, MaybeValue())); }

  DBDatumPtr* MaybeValue() { return Below(2) == 0 ? &value_ : nullptr; }

  // Where the sequence holds records, each flush stores them, even if another file is open by then.
  std::string Came(int end) {
    if (end != 0) return "end";
    if (holds_ && value_.ptr != nullptr) {
      value_.ptr->dirty = true;
      held_.push_back(value_);
    }
    return Bytes(*key_.ptr);
  }

  std::string Key() { return "k" + std::to_string(Below(kKeys)); }
  unsigned Below(unsigned limit) { return static_cast<unsigned>(random_() % limit); }

  std::mt19937 random_;
  std::array<std::string, 4> paths_;
  unsigned without_ = 0;  // a bit for each of the other operations
  bool holds_ = false;
  std::vector<DBDatumPtr> held_;
  DBDatumPtr key_;
  DBDatumPtr value_;
};

TEST_F(DatabaseWalkPropertiesTest, StepsAreThoseOfAPlainWalk) {
  const int sequences = NumberFromEnvironment("KESTAN_WALK_SEQUENCES", 2000);
  for (int seed = 0; seed < sequences && !HasFailure(); ++seed) {
    SCOPED_TRACE("sequence " + std::to_string(seed));
    RunSequence(static_cast<unsigned>(seed), 200);
  }
}

}  // namespace
}  // namespace kestan_tests
