// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/engine/results.h>

#include <kestan/engine/shared_state.h>

namespace kestan {

Matches MatchesOf(int id) {
  const ResultSet* const set = Results().Find(id);
  return set != nullptr ? set->View() : Matches();
}

IndexReader& ReaderOf(Kestan& engine) { return *engine.reader_; }

std::optional<std::size_t> AddWords(Kestan& engine, const char* name, const char* text) {
  return engine.AddWords(name, text);
}

}  // namespace kestan
