// SPDX-License-Identifier: GPL-3.0-or-later
// The fragments that a snippet consists of.
#ifndef KESTAN_SEARCH_FRAGMENT_H_
#define KESTAN_SEARCH_FRAGMENT_H_

#include <string>

namespace kestan::search {

// A part of a snippet. One that matches is a word, or words whose characters overlap.
struct Fragment {
  std::string text;
  bool matches = false;
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_FRAGMENT_H_
