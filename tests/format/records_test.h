// Posting records, read by a plain twin of the library's reader: units in a row, no more.
#ifndef KESTAN_TESTS_FORMAT_RECORDS_TEST_H_
#define KESTAN_TESTS_FORMAT_RECORDS_TEST_H_

#include <string>
#include <vector>

namespace kestan_tests {

struct PlainEntry {
  std::vector<unsigned> units;  // all that the record has of it
  unsigned code = 0;
  std::vector<unsigned> positions;

  friend bool operator==(const PlainEntry& left, const PlainEntry& right) {
    return left.units == right.units && left.code == right.code &&
           left.positions == right.positions;
  }
};

// Splits a record into units; an odd last byte is none.
inline std::vector<unsigned> UnitsOf(const std::string& record) {
  std::vector<unsigned> units;
  for (std::size_t i = 0; i + 1 < record.size(); i += 2) {
    const unsigned low = static_cast<unsigned char>(record[i]);
    const unsigned high = static_cast<unsigned char>(record[i + 1]);
    units.push_back(low + 256 * high);
  }
  return units;
}

inline std::vector<PlainEntry> PlainEntries(const std::string& record, bool with_positions) {
  const std::vector<unsigned> units = UnitsOf(record);
  std::vector<PlainEntry> entries;
  for (std::size_t i = 0; i < units.size();) {
    PlainEntry entry;
    entry.code = units[i];
    entry.units.push_back(units[i++]);
    unsigned count = 0;
    if (with_positions && i < units.size()) {
      count = units[i];
      entry.units.push_back(units[i++]);
    }
    for (; count > 0 && i < units.size(); --count) {
      entry.positions.push_back(units[i]);
      entry.units.push_back(units[i++]);
    }
    entries.push_back(entry);
  }
  return entries;
}

}  // namespace kestan_tests

#endif  // KESTAN_TESTS_FORMAT_RECORDS_TEST_H_
