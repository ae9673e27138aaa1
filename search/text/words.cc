// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/text/words.h"

#include <kestan/kestan.h>

#include <algorithm>

#include "search/text/transliterate.h"
#include "search/text/white_space.h"

namespace kestan::search {

std::string CleanWords(std::string text, const std::string& stop_words) {
  const auto size = static_cast<unsigned>(text.size());
  text += ' ';  // the last blank may land one byte past the text
  int length = Kestan::StripNonWords(text.data(), size);
  const char* const no_stop_words = nullptr;
  length = Kestan::StripWords(text.data(), static_cast<unsigned>(length), stop_words.c_str(),
                              &no_stop_words);
  text.resize(static_cast<std::size_t>(length));
  return text;
}

std::vector<std::string> IndexedWords(std::string_view utf8) {
  const std::string cleaned = CleanWords(Transliterated(utf8));
  std::vector<std::string> words;
  for (std::string_view rest = cleaned;;) {
    rest.remove_prefix(std::min(rest.find_first_not_of(kWhiteSpace), rest.size()));
    if (rest.empty()) return words;
    const std::string_view word = rest.substr(0, rest.find_first_of(kWhiteSpace));
    words.emplace_back(word);
    rest.remove_prefix(word.size());
  }
}

}  // namespace kestan::search
