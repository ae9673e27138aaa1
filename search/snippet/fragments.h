// SPDX-License-Identifier: GPL-3.0-or-later
// Building the fragments of a snippet.
#ifndef KESTAN_SEARCH_SNIPPET_FRAGMENTS_H_
#define KESTAN_SEARCH_SNIPPET_FRAGMENTS_H_

#include <kestan/search/fragment.h>

#include <string>
#include <string_view>
#include <vector>

namespace kestan::search {

// Builds a line of fragments, with one blank for each run of white space and control characters.
class FragmentLine {
 public:
  // Adds a copy of `text`. Neighbours that do not match become one fragment.
  void Add(std::string_view text, bool matches);

  // Returns the fragments, none of them empty, without blanks at either end of the line. No other
  // call may follow.
  std::vector<Fragment> Take();

 private:
  void Append(std::string added, bool matches);

  std::vector<Fragment> fragments_;
  bool gap_ = false;           // whether a blank comes before what is added next
  bool ends_in_blank_ = true;  // or is empty
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_SNIPPET_FRAGMENTS_H_
