// What a check finds, as lines for the caller.
#ifndef KESTAN_MAINTENANCE_REPORT_FINDINGS_H_
#define KESTAN_MAINTENANCE_REPORT_FINDINGS_H_

#include <kestan/maintenance/check.h>
#include <kestan/storage/memory.h>
#include <kestan/text/escape.h>

#include <array>
#include <charconv>
#include <cstdint>
#include <string_view>

namespace kestan {

// One part of a line: a text, which it borrows, or a number.
class LinePart {
 public:
  LinePart(const char* text) : text_(text) {}       // NOLINT(google-explicit-constructor)
  LinePart(std::string_view text) : text_(text) {}  // NOLINT(google-explicit-constructor)
  LinePart(const String& text) : text_(text) {}     // NOLINT(google-explicit-constructor)
  LinePart(std::uint64_t number) {                  // NOLINT(google-explicit-constructor)
    char* const end = digits_.data() + digits_.size();
    digit_count_ =
        static_cast<std::size_t>(std::to_chars(digits_.data(), end, number).ptr - digits_.data());
  }

  std::string_view Text() const {
    return digit_count_ != 0 ? std::string_view(digits_.data(), digit_count_) : text_;
  }

 private:
  std::string_view text_;
  std::array<char, 20> digits_{};  // of the largest number
  std::size_t digit_count_ = 0;
};

// Stands for a key in lines about the index as a whole. It holds a blank, so it is no word's key.
inline constexpr std::string_view kWholeFile = "index file";

// Makes the lines, hands them out and counts them.
class Findings {
 public:
  // Borrows `take`, which may be empty: then lines are only counted.
  explicit Findings(const TakeLine& take) : take_(take) {}

  // Report that the record of `key` is at fault, or that something about it is worth a look.
  template <typename... Parts>
  void Fault(std::string_view key, const Parts&... what) {
    ++faults_;
    Report({Escaped(key), ": ", what...});
  }
  template <typename... Parts>
  void Note(std::string_view key, const Parts&... what) {
    ++notes_;
    Report({Escaped(key), ": note: ", what...});
  }

  std::uint64_t faults() const { return faults_; }
  std::uint64_t notes() const { return notes_; }

 private:
  void Report(std::initializer_list<LinePart> parts) {
    if (!take_) return;
    String line;
    for (const LinePart& part : parts) line += part.Text();
    take_(line);
  }

  const TakeLine& take_;
  std::uint64_t faults_ = 0;
  std::uint64_t notes_ = 0;
};

}  // namespace kestan

#endif  // KESTAN_MAINTENANCE_REPORT_FINDINGS_H_
