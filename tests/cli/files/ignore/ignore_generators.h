// SPDX-License-Identifier: GPL-3.0-or-later
// Random lines of ignore files, and random paths that they may match.
#ifndef KESTAN_TESTS_CLI_FILES_IGNORE_IGNORE_GENERATORS_H_
#define KESTAN_TESTS_CLI_FILES_IGNORE_IGNORE_GENERATORS_H_

#include <rapidcheck.h>

#include <string>
#include <vector>

namespace kestan_tests {

inline rc::Gen<std::string> IgnoreLine() {
  const auto piece = rc::gen::weightedOneOf<std::string>(
      {{6, rc::gen::element<std::string>("a", "b", "ab", "c", "-")},
       {3, rc::gen::just<std::string>("/")},
       {3, rc::gen::element<std::string>("*", "*", "?", "**", "***")},
       {2, rc::gen::element<std::string>("**/", "/**/", "/**")},
       {1, rc::gen::element<std::string>("[ab]", "[!a]", "[^b]", "[a-b]", "[]a]", "[a-]", "[")},
       {1, rc::gen::element<std::string>("\\*", "\\a", "\\\\", "!", "#", "\\")}});
  const auto start = rc::gen::weightedElement<std::string>({{5, ""}, {2, "/"}, {2, "!"}});
  const auto end = rc::gen::weightedElement<std::string>({{4, ""}, {1, "/"}});
  const auto pieces = rc::gen::resize(5, rc::gen::container<std::vector<std::string>>(piece));
  return rc::gen::map(rc::gen::tuple(start, pieces, end), [](const auto& parts) {
    std::string line = std::get<0>(parts);
    for (const std::string& each : std::get<1>(parts)) line += each;
    return line + std::get<2>(parts);
  });
}

inline rc::Gen<std::vector<std::string>> IgnoreLines() {
  return rc::gen::resize(6, rc::gen::container<std::vector<std::string>>(IgnoreLine()));
}

inline rc::Gen<std::string> NameOfAFile() {
  return rc::gen::element<std::string>("a", "b", "ab", "ba", "aab", "c", "*", "-", "]", "\\", "!a");
}

// One to four names.
inline rc::Gen<std::string> PathOfAFile() {
  return rc::gen::map(
      rc::gen::tuple(rc::gen::inRange(1, 5),
                     rc::gen::container<std::vector<std::string>>(4, NameOfAFile())),
      [](const auto& parts) {
        std::string path = std::get<1>(parts)[0];
        for (int i = 1; i < std::get<0>(parts); ++i) {
          path += "/" + std::get<1>(parts)[static_cast<std::size_t>(i)];
        }
        return path;
      });
}

}  // namespace kestan_tests

#endif  // KESTAN_TESTS_CLI_FILES_IGNORE_IGNORE_GENERATORS_H_
