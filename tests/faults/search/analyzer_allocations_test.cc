// SPDX-License-Identifier: GPL-3.0-or-later
// Each allocation fails while the words of queries are found, by ICU too where they go beyond
// ASCII.
#include <gtest/gtest.h>
#include <kestan/search.h>

#include <string>

#include "tests/faults/search/failing_allocations.h"

namespace kestan_faults {
namespace {

using kestan::search::Analyzer;
using kestan::search::Status;

void Note(const Status& status, Transcript* transcript) {
  if (!status.ok()) transcript->Add("refused", static_cast<long>(status.code()));
}

// The whole of `text` is analyzed, or there is an error. What is loaded and kept for a thread when
// it meets the first such text, of which `warmer` is one, is there before: glibc ends the process
// where a thread lacks memory for that, and ICU may wait for ever.
void ExpectErrorsAlone(const std::string& warmer, const std::string& text) {
  ASSERT_TRUE(Analyzer().AnalyzeQuery(warmer).ok());
  ExpectFailingAllocationsAreErrors([] {},
                                    [&](Transcript* transcript) {
                                      const auto groups = Analyzer().AnalyzeQuery(text);
                                      Note(groups.status(), transcript);
                                      if (groups.ok())
                                        transcript->Add("groups",
                                                        static_cast<long>(groups->size()));
                                    },
                                    [](const Trial&) {});
}

TEST(AnalyzerAllocationsTest, FailingAllocationOfAsciiIsAnError) {
  ExpectErrorsAlone("a", "covid-19 in C++ and .NET by a.b@example.org");
}

TEST(AnalyzerAllocationsTest, FailingAllocationOfLettersIsAnError) {
  ExpectErrorsAlone(
      "\u00e4", "Z\u00fcrich \u041c\u043e\u0441\u043a\u0432\u0430 \u039c\u03bf\u03cd\u03c3\u03b1");
}

TEST(AnalyzerAllocationsTest, FailingAllocationOfPairsIsAnError) {
  ExpectErrorsAlone("\u6587\u5b57", "\u5317\u4eac\u662f\u9996\u90fd \u732b\u3067\u3042\u308b");
}

TEST(AnalyzerAllocationsTest, FailingAllocationOfADictionaryIsAnError) {
  ExpectErrorsAlone("\u0e20\u0e32\u0e29\u0e32",
                    "\u0e2a\u0e27\u0e31\u0e2a\u0e14\u0e35\u0e0a\u0e32\u0e27\u0e42\u0e25\u0e01");
}

}  // namespace
}  // namespace kestan_faults
