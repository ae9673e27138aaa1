// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/support/collection.h"

#include <cstdlib>
#include <fstream>
#include <iostream>

namespace kestan_bench {
namespace {

Fields FieldsOf(const std::string& line) {
  Fields fields(1);
  for (const char c : line) {
    if (c == '\t') {
      fields.emplace_back();
    } else {
      fields.back() += c;
    }
  }
  return fields;
}

}  // namespace

void EndWith(const std::string& who, const std::string& what) {
  std::cerr << who << ": " << what << "\n";
  std::exit(1);
}

std::vector<Fields> ReadCollection(const std::string& path) {
  std::ifstream file(path);
  std::vector<Fields> lines;
  for (std::string line; std::getline(file, line);) {
    lines.push_back(FieldsOf(line));
    if (lines.back().size() < 2) EndWith(path, "a line without a tab");
  }
  if (lines.empty()) EndWith(path, "no lines");
  return lines;
}

}  // namespace kestan_bench
