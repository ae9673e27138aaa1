// SPDX-License-Identifier: GPL-3.0-or-later
// The public class as hosts see it: what it accepts, what it refuses, and how it begins and ends.
#include <gtest/gtest.h>
#include <kestan/kestan.h>

#include <cstdint>
#include <memory>
#include <type_traits>
#include <utility>

#include "tests/support/gdbm_calls.h"
#include "tests/support/index_test.h"

namespace kestan_tests {
namespace {

// What a call with `Arguments` gives back.
template <typename Method, typename... Arguments>
using ResultOf = std::invoke_result_t<Method, Kestan&, Arguments...>;

// True when `Method` gives a `Result` for `Arguments`.
template <typename Result, typename Method, typename... Arguments>
constexpr bool kGives = std::is_same_v<ResultOf<Method, Arguments...>, Result>;

// Strings that are not changed may come with or without `const`.
template <typename Result, typename Method, typename... Rest>
constexpr bool kTakesName =
    std::conjunction_v<std::is_same<ResultOf<Method, const char*, Rest...>, Result>,
                       std::is_same<ResultOf<Method, char*, Rest...>, Result>>;

template <typename Result, typename Method>
constexpr bool kTakesNameAndText =
    std::conjunction_v<std::bool_constant<kTakesName<Result, Method, char*>>,
                       std::bool_constant<kTakesName<Result, Method, const char*>>>;

static_assert(std::is_default_constructible_v<Kestan>);
static_assert(!std::is_copy_constructible_v<Kestan>);
static_assert(!std::is_copy_assignable_v<Kestan>);
static_assert(!std::is_polymorphic_v<Kestan>);

static_assert(kTakesName<int, decltype(&Kestan::OpenIndex), int>);
static_assert(kGives<int, decltype(&Kestan::CloseIndex)>);
static_assert(kGives<int, decltype(&Kestan::FlushIndex)>);
static_assert(kTakesName<int, decltype(&Kestan::CopyIndexTo)>);

static_assert(kGives<unsigned long, decltype(&Kestan::Options)>);
static_assert(kGives<void, decltype(&Kestan::GetOptions)>);
static_assert(kGives<int, decltype(&Kestan::PutOptions)>);
static_assert(kGives<int, decltype(&Kestan::SetOptionFlag), unsigned long>);
static_assert(kGives<int, decltype(&Kestan::UnsetOptionFlag), unsigned long>);

static_assert(kTakesName<char*, decltype(&Kestan::DBGetUser)>);
static_assert(kTakesName<char*, decltype(&Kestan::DBGetSummary)>);
static_assert(kTakesName<char*, decltype(&Kestan::DBGetTitle)>);
static_assert(kTakesNameAndText<int, decltype(&Kestan::DBPutUser)>);
static_assert(kTakesNameAndText<int, decltype(&Kestan::DBPutSummary)>);
static_assert(kTakesNameAndText<int, decltype(&Kestan::DBPutTitle)>);
static_assert(kTakesName<int, decltype(&Kestan::DBDelUser)>);
static_assert(kTakesName<int, decltype(&Kestan::DBDelSummary)>);
static_assert(kTakesName<int, decltype(&Kestan::DBDelTitle)>);
static_assert(kTakesName<char*, decltype(&Kestan::DBGetWords)>);
static_assert(kTakesNameAndText<int, decltype(&Kestan::DBPutWords)>);

static_assert(kTakesNameAndText<const char*, decltype(&Kestan::AddDocumentWords)>);
static_assert(kTakesName<int, decltype(&Kestan::RemoveDocumentWords)>);
static_assert(kTakesNameAndText<int, decltype(&Kestan::MoveDocumentWords)>);
static_assert(kTakesName<std::uint32_t, decltype(&Kestan::DocumentTimestamp)>);
static_assert(kGives<int, decltype(&Kestan::ShrinkIndex)>);

static_assert(kTakesName<int, decltype(&Kestan::QueryWord)>);
static_assert(kGives<int, decltype(&Kestan::QueryAnd), int, int, int>);
static_assert(kGives<int, decltype(&Kestan::QueryOr), int, int>);
static_assert(kGives<int, decltype(&Kestan::QueryNegate), int>);
static_assert(kGives<char*, decltype(&Kestan::QueryResults), int>);
static_assert(kGives<void, decltype(&Kestan::FreeQueryResult), int>);
static_assert(kGives<char*, decltype(&Kestan::CommonWords), double, double>);
static_assert(kGives<char*, decltype(&Kestan::ListDocuments)>);

// Static: they are called without an engine.
static_assert(std::is_same_v<decltype(&Kestan::SafeMalloc), void* (*)(unsigned)>);
static_assert(std::is_same_v<decltype(&Kestan::SafeRealloc), void* (*)(void*, unsigned)>);
static_assert(std::is_same_v<decltype(&Kestan::StripNonWords), int (*)(char*, unsigned)>);
static_assert(std::is_same_v<decltype(&Kestan::StripBadLines), int (*)(char*, unsigned)>);
static_assert(
    std::is_invocable_r_v<int, decltype(&Kestan::StripWords), char*, unsigned, char*, char**>);
static_assert(std::is_invocable_r_v<int, decltype(&Kestan::StripWords), char*, unsigned,
                                    const char*, const char**>);

// Hosts read the scratch buffer's address and size, and cannot set them.
static_assert(std::is_convertible_v<decltype((Kestan::WordBuf)), char*>);
static_assert(std::is_convertible_v<decltype((Kestan::WBSize)), std::uint32_t>);
static_assert(!std::is_assignable_v<decltype((Kestan::WordBuf)), char*>);
static_assert(!std::is_assignable_v<decltype((Kestan::WBSize)), std::uint32_t>);
static_assert(sizeof(Kestan::WBSize) == 4);

TEST(KestanClassTest, TheScratchBufferStartsNull) {
  EXPECT_EQ(Kestan::WordBuf, nullptr);
  EXPECT_EQ(Kestan::WBSize, 0u);
}

TEST(KestanClassTest, MakingAnEngineTouchesNoScratchBufferAndNoFile) {
  GdbmWatch gdbm;
  const std::string printed = StandardErrorOf([] {
    const Kestan engine;
    EXPECT_EQ(Kestan::WordBuf, nullptr);
    EXPECT_EQ(Kestan::WBSize, 0u);
  });
  EXPECT_EQ(printed, "");
  EXPECT_EQ(Kestan::WBSize, 0u);
  EXPECT_TRUE(gdbm.Calls().empty());
}

TEST(KestanClassTest, StringsThatAreNotConstantServe) {
  const TempDir folder;
  std::string path = folder / "index";
  std::string name = "name";
  std::string text = "some text";
  std::string stop_word = "text";
  char* stop_list[] = {stop_word.data(), nullptr};
  Kestan engine;
  EXPECT_EQ(engine.OpenIndex(path.data(), 1), 0);
  EXPECT_EQ(engine.DBPutTitle(name.data(), text.data()), 0);
  EXPECT_STREQ(engine.DBGetTitle(name.data()), "some text");
  EXPECT_EQ(Kestan::StripWords(text.data(), 9, stop_word.data(), stop_list), 5);
}

class KestanDestructorTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(engine_->OpenIndex(path_.c_str(), 1), 0); }

  TempDir folder_;
  const std::string path_ = folder_ / "index";
  std::unique_ptr<Kestan> engine_ = std::make_unique<Kestan>();
};

TEST_F(KestanDestructorTest, WritesWhatWaits) {
  engine_->CloseIndex();
  Plant(path_, {{"word", Units({7, 2, 10, 20})}});
  engine_->OpenIndex(path_.c_str(), 1);
  engine_->SetOptionFlag(1);
  engine_.reset();
  EXPECT_EQ(Dump(path_).at("word"), Units({7}));
}

TEST_F(KestanDestructorTest, PrintsNothing) {
  EXPECT_EQ(StandardErrorOf([&] { engine_.reset(); }), "");
}

TEST_F(KestanDestructorTest, LeavesTheScratchBuffersAddressAndSize) {
  engine_->DBPutTitle("name", "title");
  engine_->DBGetTitle("name");
  const auto address = reinterpret_cast<std::uintptr_t>(Kestan::WordBuf);
  engine_.reset();
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(Kestan::WordBuf), address);
  EXPECT_NE(address, 0u);
  EXPECT_EQ(Kestan::WBSize, 4096u);
}

TEST_F(KestanDestructorTest, TheNextEngineHasAScratchBufferAgain) {
  engine_->DBPutTitle("name", "title");
  engine_->DBGetTitle("name");
  engine_ = nullptr;
  Kestan next;
  next.OpenIndex(path_.c_str(), 1);
  EXPECT_STREQ(next.DBGetTitle("name"), "title");
}

}  // namespace
}  // namespace kestan_tests
