// SPDX-License-Identifier: GPL-3.0-or-later
// The salvage of a small index, for tests of single steps of a repair.
#ifndef KESTAN_TESTS_MAINTENANCE_REPAIR_SALVAGED_INDEX_H_
#define KESTAN_TESTS_MAINTENANCE_REPAIR_SALVAGED_INDEX_H_

#include <gtest/gtest.h>
#include <kestan/format/id_list.h>
#include <kestan/maintenance/repair/classify_records.h>
#include <kestan/maintenance/salvage/gdbm_layout.h>
#include <kestan/maintenance/salvage/salvage.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "tests/maintenance/index_files.h"

namespace kestan_maintenance {

using kestan::Code;
using kestan::CodeSet;
using kestan::RepairAction;
using kestan::RepairActions;
using kestan_tests::Records;
using kestan_tests::Units;

inline CodeSet SetOf(std::initializer_list<Code> codes) {
  CodeSet set;
  for (const Code code : codes) set.set(code);
  return set;
}

// Gives each test a salvage to fill with records.
class SalvagedIndex : public testing::Test {
 protected:
  // Salvages an index of just these records.
  void Read(const Records& records) {
    std::filesystem::remove(path_);
    kestan_tests::Plant(path_, records);
    ReadAgain(records.size());
  }

  // Salvages an index of these records, of which that of `key` claims more bytes than it has.
  void ReadCut(const Records& records, const std::string& key) {
    Read(records);
    std::string bytes = ReadFile(path_);
    for (const Record& record : MapOf(bytes).records) {
      if (record.key != key) continue;
      kestan::gdbm::Element element{};
      std::memcpy(&element, &bytes[record.element], sizeof element);
      element.value_bytes += 1 << 24;
      std::memcpy(&bytes[record.element], &element, sizeof element);
    }
    WriteFile(path_, bytes);
    ASSERT_EQ(salvage_.Read(path_.c_str()), 0);
    ASSERT_TRUE(salvage_.records()[IndexOf(key)].is_cut);
  }

  // Salvages these records from a file that has lost its buckets, so that none is current.
  void ReadWithoutBuckets(const Records& records) {
    constexpr std::size_t kPlaceBytes = 256;  // so far apart, elements are not taken for a bucket
    std::string bytes((records.size() + 4) * kPlaceBytes, '\0');
    std::size_t place = kPlaceBytes;
    for (const auto& [key, value] : records) {
      kestan::gdbm::Element element{static_cast<std::int32_t>(kestan::gdbm::HashOf(key)),
                                    {},
                                    bytes.size(),
                                    static_cast<std::int32_t>(key.size()),
                                    static_cast<std::int32_t>(value.size())};
      key.copy(element.key_start.data(), element.key_start.size());
      std::memcpy(&bytes[place], &element, sizeof element);
      place += kPlaceBytes;
      bytes += key + value;
    }
    WriteFile(path_, bytes);
    ReadAgain(records.size());
    for (const kestan::SalvagedRecord& record : salvage_.records()) ASSERT_FALSE(record.is_current);
  }

  // Returns the number of the record of `key` among the salvaged ones.
  std::size_t IndexOf(std::string_view key) const {
    const auto& records = salvage_.records();
    const auto found = std::find_if(
        records.begin(), records.end(),
        [&](const kestan::SalvagedRecord& record) { return salvage_.KeyOf(record) == key; });
    EXPECT_NE(found, records.end()) << key;
    return found == records.end() ? 0 : static_cast<std::size_t>(found - records.begin());
  }

  // Returns the same action for every salvaged record.
  RepairActions All(RepairAction action) const {
    return RepairActions(salvage_.records().size(), action);
  }

  kestan::Salvage salvage_;
  const kestan_tests::TempDir folder_;
  const std::string path_ = folder_ / "index";

 private:
  void ReadAgain(std::size_t count) {
    ASSERT_EQ(salvage_.Read(path_.c_str()), 0);
    ASSERT_EQ(salvage_.records().size(), count);
  }
};

}  // namespace kestan_maintenance

#endif  // KESTAN_TESTS_MAINTENANCE_REPAIR_SALVAGED_INDEX_H_
