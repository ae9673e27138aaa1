// SPDX-License-Identifier: GPL-3.0-or-later
// How the model reads and writes the numbers of a record: little-endian units of 16 bits, where
// bytes that are not there count as 0.
#ifndef KESTAN_TESTS_MODEL_UNITS_H_
#define KESTAN_TESTS_MODEL_UNITS_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace kestan_model {

// The number in `count` bytes of `record` from byte `at` on.
std::uint32_t NumberAt(const std::string& record, std::size_t at, std::size_t count);

// `number` as `count` bytes.
std::string BytesOf(std::uint32_t number, std::size_t count);

// Every unit that `record` holds whole; an odd last byte is no unit.
std::vector<unsigned> UnitsOf(const std::string& record);

// The units as a record.
std::string RecordOf(const std::vector<unsigned>& units);

// One document's part of a posting record.
struct Posting {
  unsigned code;
  std::vector<unsigned> positions;
  std::vector<unsigned> units;  // all of the posting, as the record has it
};

// The postings of a posting record: a code, a count, that many positions; or, where positions are
// not kept, a code alone. The last posting is as long as the record lets it be.
std::vector<Posting> PostingsOf(const std::string& record, bool positions_kept);

}  // namespace kestan_model

#endif  // KESTAN_TESTS_MODEL_UNITS_H_
