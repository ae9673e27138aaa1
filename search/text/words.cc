#include "search/text/words.h"

#include <kestan/kestan.h>

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

}  // namespace kestan::search
