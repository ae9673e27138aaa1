// SPDX-License-Identifier: GPL-3.0-or-later
// What people write in queries because another tool reads it.
#ifndef KESTAN_SEARCH_QUERY_FOREIGN_SYNTAX_H_
#define KESTAN_SEARCH_QUERY_FOREIGN_SYNTAX_H_

#include <string>
#include <string_view>
#include <vector>

namespace kestan::search {

// Returns the sentence for a sign in `word`, which stands outside quotes; "" for none.
std::string NoteOnForeignSyntax(std::string_view word);

// Returns a sentence for each sign of `text` that means something elsewhere and nothing in our
// language, with what to write instead: NEAR without a number; | & ! and + as operators; * and ? at
// the start of a word or within. Each sentence comes once. What stands in quotes is text.
std::vector<std::string> NotesOnForeignSyntax(std::string_view text);

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_QUERY_FOREIGN_SYNTAX_H_
