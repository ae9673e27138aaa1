// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/readers/charset_guess.h"

#include <unicode/ucsdet.h>

#include <cstdint>
#include <cstdio>
#include <limits>
#include <memory>

namespace kestan_cli {
namespace {

struct CloseDetector {
  void operator()(UCharsetDetector* detector) const { ucsdet_close(detector); }
};

ReadStatus StatusOf(UErrorCode error) {
  return error == U_MEMORY_ALLOCATION_ERROR ? ReadStatus::kNoMemory : ReadStatus::kUnread;
}

}  // namespace

ReadStatus GuessCharset(const char* bytes, std::size_t size, CharsetGuess* guess) noexcept {
  if (size > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) {
    return ReadStatus::kUnread;
  }
  UErrorCode error = U_ZERO_ERROR;
  const std::unique_ptr<UCharsetDetector, CloseDetector> detector(ucsdet_open(&error));
  if (U_FAILURE(error)) return StatusOf(error);
  ucsdet_enableInputFilter(detector.get(), 1);  // leaves out markup
  ucsdet_setText(detector.get(), bytes, static_cast<std::int32_t>(size), &error);
  const UCharsetMatch* const match = ucsdet_detect(detector.get(), &error);
  if (U_FAILURE(error) || match == nullptr) return StatusOf(error);
  const char* const name = ucsdet_getName(match, &error);
  guess->confidence = ucsdet_getConfidence(match, &error);
  if (U_FAILURE(error)) return StatusOf(error);
  std::snprintf(&guess->name[0], sizeof guess->name, "%s", name);
  return ReadStatus::kRead;
}

}  // namespace kestan_cli
