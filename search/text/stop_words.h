// SPDX-License-Identifier: GPL-3.0-or-later
// Words of questions that say nothing of what is asked for. <kestan/search/text.h> has the list of
// the common ones.
#ifndef KESTAN_SEARCH_TEXT_STOP_WORDS_H_
#define KESTAN_SEARCH_TEXT_STOP_WORDS_H_

#include <string_view>

namespace kestan::search {

// Returns whether `word`, as it is indexed, is too common to tell documents apart. The first letter
// may be a capital. With more capitals (IT, US) it is a name.
bool IsStopWord(std::string_view word);

// Returns whether `word` is another one that questions are put in and that says nothing of what is
// asked for: anyone, using, regarding. The first letter may be a capital.
bool IsAskedWith(std::string_view word);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_TEXT_STOP_WORDS_H_
