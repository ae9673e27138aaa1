// SPDX-License-Identifier: GPL-3.0-or-later
// Documents that go into an index by two ways: class Kestan and IndexBuilder.
#ifndef KESTAN_TESTS_BUILDING_PLAIN_DOCUMENTS_H_
#define KESTAN_TESTS_BUILDING_PLAIN_DOCUMENTS_H_

#include <kestan/index_builder.h>
#include <kestan/kestan.h>

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <map>
#include <string>
#include <vector>

#include "tests/support/stored_records.h"

namespace kestan_tests {

struct PlainDocument {
  std::string name;
  std::string text;
  std::map<kestan::SideRecord, std::string> side_records;
};

void showValue(const PlainDocument& document, std::ostream& out);

// The documents of codes 1, 2, ..., each with a name of its own.
using PlainDocuments = std::vector<PlainDocument>;

// Adds the documents and their side records one by one, as a host of class Kestan does.
void AddTo(Kestan* engine, const PlainDocuments& documents);

// Writes the documents as an index with IndexBuilder, added at the times of `times`, by code. The
// file must not exist.
kestan::StoreError BuildIndex(const std::string& path, const PlainDocuments& documents,
                              const std::vector<std::uint32_t>& times, std::uint32_t option_flags,
                              std::size_t expected_records);

// Returns when each document was added, by code, as the records of an index have it.
std::vector<std::uint32_t> TimesIn(const Records& records, const PlainDocuments& documents);

// Returns the records with all times 0.
Records WithoutTimes(Records records);

}  // namespace kestan_tests

#endif  // KESTAN_TESTS_BUILDING_PLAIN_DOCUMENTS_H_
