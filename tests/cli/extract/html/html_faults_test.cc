// SPDX-License-Identifier: GPL-3.0-or-later
// Pages read while memory runs out, for every allocation that a page takes.
#include <gtest/gtest.h>

#include <exception>
#include <string>

#include "cli/extract/html/html.h"
#include "tests/faults/allocation_faults.h"
#include "tests/faults/child.h"

namespace kestan_cli {
namespace {

using kestan_faults::AllocationLog;
using kestan_faults::Failing;
using kestan_faults::Outcome;
using kestan_faults::Transcript;

constexpr int kNoMemory = 12;

const std::string kPage =
    "<!DOCTYPE html><html><head><title>One</title><script>x</script></head><body class=y>"
    "<p>two &amp; <b id='z'>\xe9\xe9\xe9</b><table><tr><td>" +
    std::string(5000, 'q') + "</table><ul><li>four<li>five</ul>six";

// Says what is missing in the page as it was read, where the byte 0xe9 is `letter`.
std::string Missing(const HtmlPage& page, const std::string& letter) {
  std::string missing;
  const std::string three = letter + letter + letter;
  for (const std::string& word : {std::string("One"), three, std::string(5000, 'q'),
                                  std::string("four"), std::string("five"), std::string("six")}) {
    if ((page.title + page.text).find(word) == std::string::npos) missing += word;
  }
  return missing;
}

// Reads the page with the `nth` allocation failing, and notes what is missing in it and whether
// there was such an allocation.
Outcome ReadWithFault(const std::string& page, const std::string& letter, long nth,
                      Failing failing) {
  return kestan_faults::RunInChild([&](Transcript* transcript) {
    AllocationLog log;
    kestan_faults::FailAllocations(nth, failing, &log);
    HtmlPage read;
    bool lacks_memory = false;
    try {
      read = ReadHtml(page);
    } catch (const std::exception&) {
      lacks_memory = true;  // SkipFile or bad_alloc, which the command reports
    }
    kestan_faults::StopFailing();
    transcript->Add(lacks_memory ? "no memory" : "missing", Missing(read, letter));
    if (log.calls < nth) transcript->Add("over", "");
  });
}

class HtmlFaultsTest : public testing::TestWithParam<Failing> {
 protected:
  // The page is whole, or one line or an exception reports that it is not.
  //   Returns  how often it was not.
  static int ExpectTextOrReport(const std::string& page, const std::string& letter) {
    int reported = 0;
    for (long nth = 1;; ++nth) {
      const Outcome outcome = ReadWithFault(page, letter, nth, GetParam());
      const bool is_over = outcome.transcript.find("over") != std::string::npos;
      const bool is_whole = outcome.transcript.rfind("missing: \n", 0) == 0;
      EXPECT_TRUE(is_whole || IsReportedOnce(outcome)) << nth << " " << Describe(outcome);
      if (is_over || HasFailure()) return reported;
      if (!is_whole) ++reported;
    }
  }

 private:
  static bool IsReportedOnce(const Outcome& outcome) {
    const std::string& said = outcome.standard_error;
    if (outcome.exit_status == 0) {
      return said.empty() && outcome.transcript.rfind("no memory", 0) == 0;
    }
    return outcome.exit_status == kNoMemory && said.find('\n') == said.size() - 1 &&
           said.rfind("Kestan: could not allocate ", 0) == 0;
  }
};

TEST_P(HtmlFaultsTest, PageIsWholeOrReported) {
  EXPECT_GT(ExpectTextOrReport(kPage, "\u00e9"), 20);
}

TEST_P(HtmlFaultsTest, PageInANamedEncodingIsWholeOrReported) {
  EXPECT_GT(ExpectTextOrReport("<meta charset=windows-1251>" + kPage, "\u0439"), 20);
}

INSTANTIATE_TEST_SUITE_P(, HtmlFaultsTest, testing::Values(Failing::kOnce, Failing::kFromThenOn),
                         [](const auto& test) {
                           return test.param == Failing::kOnce ? "Once" : "FromThenOn";
                         });

}  // namespace
}  // namespace kestan_cli
