// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/model/units.h"

namespace kestan_model {

std::uint32_t NumberAt(const std::string& record, std::size_t at, std::size_t count) {
  std::uint32_t number = 0;
  for (std::size_t i = count; i-- > 0;) {
    number *= 256;
    if (at + i < record.size()) number += static_cast<unsigned char>(record[at + i]);
  }
  return number;
}

std::string BytesOf(std::uint32_t number, std::size_t count) {
  std::string bytes;
  for (std::size_t i = 0; i < count; ++i) {
    bytes += static_cast<char>(number % 256);
    number /= 256;
  }
  return bytes;
}

std::vector<unsigned> UnitsOf(const std::string& record) {
  std::vector<unsigned> units;
  for (std::size_t at = 0; at + 1 < record.size(); at += 2) {
    units.push_back(NumberAt(record, at, 2));
  }
  return units;
}

std::string RecordOf(const std::vector<unsigned>& units) {
  std::string record;
  for (const unsigned unit : units) record += BytesOf(unit, 2);
  return record;
}

std::vector<Posting> PostingsOf(const std::string& record, bool positions_kept) {
  const std::vector<unsigned> units = UnitsOf(record);
  std::vector<Posting> postings;
  for (std::size_t at = 0; at < units.size();) {
    std::size_t end = at + 1;
    if (positions_kept) end = at + 2 + (at + 1 < units.size() ? units[at + 1] : 0);
    Posting posting{units[at], {}, {}};
    for (std::size_t i = at; i < end && i < units.size(); ++i) {
      posting.units.push_back(units[i]);
      if (i >= at + 2) posting.positions.push_back(units[i]);
    }
    postings.push_back(posting);
    at = end;
  }
  return postings;
}

}  // namespace kestan_model
