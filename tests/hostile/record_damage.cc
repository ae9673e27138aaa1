// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/hostile/record_damage.h"

#include <cstdlib>
#include <string_view>
#include <vector>

namespace kestan_hostile {
namespace {

bool AllBytesAreWanted() {
  const char* const wanted = std::getenv("KESTAN_HOSTILE_BYTES");
  return wanted != nullptr && std::string_view(wanted) == "all";
}

// What a byte may turn into; its own value may be among it.
std::vector<unsigned> OtherBytes(char byte, bool all) {
  const auto number = static_cast<unsigned char>(byte);
  if (!all) return {0x00, 0xff, 0x80, 0x7f, number + 1U, number - 1U};
  std::vector<unsigned> values;
  for (unsigned value = 0; value < 256; ++value) values.push_back(value);
  return values;
}

void AddCuts(const std::string& good, std::set<std::string>* forms) {
  for (std::size_t size = 0; size < good.size(); ++size) forms->insert(good.substr(0, size));
}

void AddSurplus(const std::string& good, std::set<std::string>* forms) {
  for (const char* surplus : {"x", "xy", "\xff\xff\xff"}) forms->insert(good + surplus);
  forms->insert(good + std::string(2, '\0'));
  forms->insert(good + good);
}

void AddChangedBytes(const std::string& good, std::set<std::string>* forms) {
  const bool all = AllBytesAreWanted();
  for (std::size_t at = 0; at < good.size(); ++at) {
    for (const unsigned value : OtherBytes(good[at], all)) {
      std::string changed = good;
      changed[at] = static_cast<char>(value);
      forms->insert(changed);
    }
  }
}

void AddChangedUnits(const std::string& good, std::set<std::string>* forms) {
  for (std::size_t at = 0; at + 1 < good.size(); at += 2) {
    for (const unsigned unit : {0U, 1U, 8U, 0x7fffU, 0x8000U, 0xffffU}) {
      std::string changed = good;
      changed[at] = static_cast<char>(unit & 0xff);
      changed[at + 1] = static_cast<char>(unit >> 8);
      forms->insert(changed);
    }
  }
}

}  // namespace

std::set<std::string> DamagedForms(const std::string& good) {
  std::set<std::string> forms;
  AddCuts(good, &forms);
  AddSurplus(good, &forms);
  AddChangedBytes(good, &forms);
  AddChangedUnits(good, &forms);
  forms.erase(good);
  return forms;
}

}  // namespace kestan_hostile
