// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/search/text.h>

#include <new>
#include <utility>

#include "search/text/transliterate.h"
#include "search/text/words.h"

namespace kestan::search {
namespace {

Status OutOfMemory() { return {StatusCode::kOutOfMemory, "out of memory"}; }

}  // namespace

Result<std::string> ToAscii(std::string_view utf8) {
  try {
    return Transliterated(utf8);
  } catch (const TransliterationError& error) {
    return Status(StatusCode::kSystem, error.what());
  } catch (const std::bad_alloc&) {
    return OutOfMemory();
  }
}

Result<std::string> KeepWords(std::string text, const std::string& stop_words) {
  try {
    return CleanWords(std::move(text), stop_words);
  } catch (const std::bad_alloc&) {
    return OutOfMemory();
  }
}

}  // namespace kestan::search
