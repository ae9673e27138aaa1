// SPDX-License-Identifier: GPL-3.0-or-later
// The module opened while memory runs out, for every allocation that this takes.
#include <gtest/gtest.h>

#include <new>
#include <string>

#include "cli/extract/module/module_file.h"
#include "tests/faults/allocation_faults.h"
#include "tests/faults/child.h"

namespace kestan_cli {
namespace {

using kestan_faults::AllocationLog;
using kestan_faults::Failing;
using kestan_faults::Outcome;
using kestan_faults::Transcript;

// Opens the module with the `nth` allocation failing, and notes how that went and whether there was
// such an allocation.
Outcome OpenWithFault(long nth, Failing failing) {
  return kestan_faults::RunInChild([&](Transcript* transcript) {
    const std::string module = KESTAN_MODULE;
    const ModulePlace place{module, module.substr(module.rfind('/') + 1)};
    AllocationLog log;
    std::string reason;
    std::string ending = "opened";
    kestan_faults::FailAllocations(nth, failing, &log);
    try {
      const Readers* const readers = OpenModule(place, KestanReaders()->version, &reason);
      if (readers == nullptr) ending = reason.empty() ? "refused without a reason" : "refused";
    } catch (const std::bad_alloc&) {
      ending = "no memory";
    }
    kestan_faults::StopFailing();
    transcript->Add(ending, reason);
    if (log.calls < nth) transcript->Add("over", "");
  });
}

class ModuleFaultsTest : public testing::TestWithParam<Failing> {};

TEST_P(ModuleFaultsTest, ModuleIsOpenedOrReported) {
  int faults = 0;
  for (long nth = 1;; ++nth) {
    const Outcome outcome = OpenWithFault(nth, GetParam());
    const std::string& said = outcome.transcript;
    ASSERT_EQ(outcome.exit_status, 0) << nth << " " << Describe(outcome);
    ASSERT_EQ(said.find("without a reason"), std::string::npos) << nth << " " << said;
    if (said.find("over") != std::string::npos) {
      EXPECT_EQ(said.rfind("opened", 0), 0u) << said;
      break;
    }
    if (said.rfind("opened", 0) != 0) ++faults;
  }
  EXPECT_GT(faults, 10);
}

INSTANTIATE_TEST_SUITE_P(, ModuleFaultsTest, testing::Values(Failing::kOnce, Failing::kFromThenOn),
                         [](const auto& test) {
                           return test.param == Failing::kOnce ? "Once" : "FromThenOn";
                         });

}  // namespace
}  // namespace kestan_cli
