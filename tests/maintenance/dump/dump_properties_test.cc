// SPDX-License-Identifier: GPL-3.0-or-later
// Whatever bytes records hold, a dump brings them back.
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "tests/maintenance/dump/dump_test.h"

namespace kestan_tests {
namespace {

using namespace std::string_literals;

// Often the bytes that mean something in a dump.
rc::Gen<std::string> AnyBytes() {
  const auto meaning = rc::gen::elementOf("\n\t\\x0aend 1"s + '\0');
  return rc::gen::container<std::string>(rc::gen::oneOf(meaning, rc::gen::arbitrary<char>()));
}

std::string DumpOfFile(const std::string& path) {
  Database store;
  RC_ASSERT(store.Open(path.c_str(), 0) == 0);
  std::string text;
  RC_ASSERT(DumpInto(store, &text) == kestan::StoreError::kNone);
  return text;
}

std::string LoadIntoFile(const std::string& text, const std::string& path) {
  Database store;
  RC_ASSERT(store.Open(path.c_str(), 1) == 0);
  return LoadInto(store, text);
}

RC_GTEST_PROP(DumpPropertiesTest, BringsEveryRecordBack, ()) {
  const auto records = *rc::gen::container<Records>(AnyBytes(), AnyBytes());
  const TempDir folder;
  Plant(folder / "source", records);
  const std::string text = DumpOfFile(folder / "source");
  RC_ASSERT(LoadIntoFile(text, folder / "target") == "");
  RC_ASSERT(Dump(folder / "target") == records);
  RC_ASSERT(DumpOfFile(folder / "target") == text);
}

// Any lines at all, with a last line that is right, are loaded or refused; what is loaded comes
// out again as it went in.
RC_GTEST_PROP(DumpPropertiesTest, TakesOnlyWhatItWouldWrite, ()) {
  const std::string alphabet = "\n\t\\x0afb"s;
  const auto records = *rc::gen::container<std::string>(rc::gen::elementOf(alphabet)) + "\n";
  const auto count = *rc::gen::inRange(0u, 4u);
  const TempDir folder;
  const std::string text = WholeDump(records, count);
  const std::string complaint = LoadIntoFile(text, folder / "target");
  RC_TAG(complaint.empty() ? "loaded" : "refused");
  if (!complaint.empty()) return;
  const bool is_broken_up = records.find("\\\n") != std::string::npos;
  RC_ASSERT(is_broken_up || DumpOfFile(folder / "target") == text);
}

}  // namespace
}  // namespace kestan_tests
