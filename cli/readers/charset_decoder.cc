// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/readers/charset_decoder.h"

#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>

#include <array>
#include <cstdint>
#include <memory>
#include <string_view>

namespace kestan_cli {
namespace {

struct CloseConverter {
  void operator()(UConverter* converter) const { ucnv_close(converter); }
};
using OwnedConverter = std::unique_ptr<UConverter, CloseConverter>;

// Opens the converter that ICU has under `name`. ICU reports a failed allocation as a missing
// converter, so it is asked twice.
//   Returns  kUnread if there is none.
ReadStatus OpenConverter(const char* name, OwnedConverter* converter) {
  for (int attempt = 0; attempt < 2; ++attempt) {
    UErrorCode error = U_ZERO_ERROR;
    converter->reset(ucnv_open(name, &error));
    if (error == U_MEMORY_ALLOCATION_ERROR) return ReadStatus::kNoMemory;
    if (U_SUCCESS(error) && *converter != nullptr) return ReadStatus::kRead;
  }
  return ReadStatus::kUnread;
}

// Handles the invalid bytes that ICU reports. ASCII after a lead byte stays.
struct Faults {
  static void Replace(const void* context, UConverterToUnicodeArgs* arguments, const char* bytes,
                      std::int32_t length, UConverterCallbackReason reason, UErrorCode* error) {
    if (reason > UCNV_IRREGULAR) return;  // not about invalid bytes
    *error = U_ZERO_ERROR;
    *static_cast<bool*>(const_cast<void*>(context)) = true;
    std::array<char16_t, 32> text{u'\ufffd'};  // longer than the bytes of any character
    std::size_t count = 1;
    // Two ASCII bytes that stand for one character are not ASCII.
    const bool may_hold_ascii =
        reason != UCNV_UNASSIGNED || static_cast<unsigned char>(bytes[0]) >= 0x80;
    for (std::int32_t i = 0; may_hold_ascii && i < length && count < text.size(); ++i) {
      if (bytes[i] >= ' ' && bytes[i] <= '~') text.at(count++) = static_cast<char16_t>(bytes[i]);
    }
    ucnv_cbToUWriteUChars(arguments, text.data(), static_cast<std::int32_t>(count), 0, error);
  }
};

// Reads all of `bytes`, and sets `*is_faulty` if some are not characters.
ReadStatus Convert(UConverter* converter, std::string_view bytes, const Utf16Sink& sink,
                   bool* is_faulty) {
  UErrorCode error = U_ZERO_ERROR;
  ucnv_reset(converter);
  ucnv_setToUCallBack(converter, Faults::Replace, is_faulty, nullptr, nullptr, &error);
  std::array<char16_t, 4096> units{};
  const char* at = bytes.data();
  do {
    if (error == U_BUFFER_OVERFLOW_ERROR) error = U_ZERO_ERROR;
    char16_t* end = units.data();
    ucnv_toUnicode(converter, &end, units.data() + units.size(), &at, bytes.data() + bytes.size(),
                   nullptr, 1, &error);
    sink.add(sink.context, units.data(), static_cast<std::size_t>(end - units.data()));
  } while (error == U_BUFFER_OVERFLOW_ERROR);
  // Bytes are never an error here.
  return U_FAILURE(error) ? ReadStatus::kNoMemory : ReadStatus::kRead;
}

// Compares a text that comes in pieces with ASCII.
class AsciiComparison {
 public:
  explicit AsciiComparison(std::string_view ascii) : rest_(ascii) {}

  Utf16Sink Sink() {
    return {this, [](void* comparison, const char16_t* units, std::size_t count) noexcept {
              static_cast<AsciiComparison*>(comparison)->Add(units, count);
            }};
  }

  // Returns whether all of the text has come, and nothing else.
  bool IsSame() const { return is_same_ && rest_.empty(); }

 private:
  void Add(const char16_t* units, std::size_t count) {
    for (std::size_t i = 0; is_same_ && i < count; ++i) {
      is_same_ = !rest_.empty() && units[i] == static_cast<unsigned char>(rest_.front());
      if (is_same_) rest_.remove_prefix(1);
    }
  }

  std::string_view rest_;
  bool is_same_ = true;
};

CharsetKind KindIfAsciiStays(UConverter* converter) {
  constexpr std::string_view kAscii =
      "\t\n\r !\"#$%&'()*+,-./0123456789:;<=>?@ABCDEFGHIJKLMNOPQRSTUVWXYZ[]^_`"
      "abcdefghijklmnopqrstuvwxyz{|}";  // but for the yen sign and the overline of Japan
  AsciiComparison comparison(kAscii);
  bool is_faulty = false;
  if (Convert(converter, kAscii, comparison.Sink(), &is_faulty) != ReadStatus::kRead) {
    return CharsetKind::kNoMemory;
  }
  return comparison.IsSame() && !is_faulty ? CharsetKind::kPlain : CharsetKind::kUnusable;
}

}  // namespace

CharsetKind ExamineCharset(const char* name) noexcept {
  OwnedConverter converter;
  const ReadStatus opened = OpenConverter(name, &converter);
  if (opened == ReadStatus::kNoMemory) return CharsetKind::kNoMemory;
  if (opened != ReadStatus::kRead) return CharsetKind::kUnusable;
  const UConverterType type = ucnv_getType(converter.get());
  if (type == UCNV_UTF7 || type == UCNV_HZ || type == UCNV_ISO_2022) return CharsetKind::kShifting;
  const bool has_no_state = type == UCNV_SBCS || type == UCNV_DBCS || type == UCNV_MBCS ||
                            type == UCNV_LATIN_1 || type == UCNV_US_ASCII;
  return has_no_state ? KindIfAsciiStays(converter.get()) : CharsetKind::kUnusable;
}

ReadStatus DecodeCharset(const char* name, const char* bytes, std::size_t size,
                         const Utf16Sink& sink, bool* is_faulty) noexcept {
  OwnedConverter converter;
  const ReadStatus opened = OpenConverter(name, &converter);
  if (opened != ReadStatus::kRead) return opened;
  return Convert(converter.get(), {bytes, size}, sink, is_faulty);
}

}  // namespace kestan_cli
