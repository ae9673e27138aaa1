// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/text/analyzer/dictionary_words.h"

#include <cstdint>
#include <memory>
#include <new>

#include "search/text/icu.h"
#include "search/text/transliterate.h"

namespace kestan::search {
namespace {

void Check(UErrorCode error) {
  if (error == U_MEMORY_ALLOCATION_ERROR) throw std::bad_alloc();
  if (U_FAILURE(error)) throw TransliterationError("ICU lacks the data to find words");
}

struct Closer {
  void operator()(UBreakIterator* iterator) const { LoadedIcu().ubrk_close(iterator); }
};

using Iterator = std::unique_ptr<UBreakIterator, Closer>;

Iterator NewIterator() {
  UErrorCode error = U_ZERO_ERROR;
  Iterator iterator(LoadedIcu().ubrk_open(UBRK_WORD, "", nullptr, 0, &error));
  Check(error);
  return iterator;
}

}  // namespace

std::vector<std::size_t> WordEnds(const std::u16string& run) {
  thread_local const Iterator kIterator = NewIterator();
  UErrorCode error = U_ZERO_ERROR;
  LoadedIcu().ubrk_setText(kIterator.get(), run.data(), static_cast<std::int32_t>(run.size()),
                           &error);
  Check(error);
  std::vector<std::size_t> ends;
  LoadedIcu().ubrk_first(kIterator.get());
  for (std::int32_t end = 0; (end = LoadedIcu().ubrk_next(kIterator.get())) != UBRK_DONE;) {
    ends.push_back(static_cast<std::size_t>(end));
  }
  return ends;
}

}  // namespace kestan::search
