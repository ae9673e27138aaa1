// SPDX-License-Identifier: GPL-3.0-or-later
// Makes findings, hands them out and counts them.
#ifndef KESTAN_MAINTENANCE_REPORT_FINDINGS_H_
#define KESTAN_MAINTENANCE_REPORT_FINDINGS_H_

#include <kestan/maintenance/findings.h>
#include <kestan/storage/memory/memory.h>

#include <array>
#include <charconv>
#include <cstdint>
#include <initializer_list>
#include <string_view>

namespace kestan {

// One part of the text of a finding: a text, which it borrows, or a number.
class TextPart {
 public:
  TextPart(const char* text) : text_(text) {}       // NOLINT(google-explicit-constructor)
  TextPart(std::string_view text) : text_(text) {}  // NOLINT(google-explicit-constructor)
  TextPart(const String& text) : text_(text) {}     // NOLINT(google-explicit-constructor)
  TextPart(std::uint64_t number) {                  // NOLINT(google-explicit-constructor)
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

Severity SeverityOf(FindingKind kind);

class Findings {
 public:
  // Borrows `take`, which may be empty: then findings are only counted.
  explicit Findings(const TakeFinding& take) : take_(take) {}

  // Report what a check says of the record of `key`, or of kWholeFile. The parts together are the
  // text; those that come from files must be escaped already, but not the key.
  template <typename... Parts>
  void Fault(std::string_view key, const Parts&... text) {
    Report(FindingKind::kCheckFault, key, text...);
  }
  template <typename... Parts>
  void Note(std::string_view key, const Parts&... text) {
    Report(FindingKind::kCheckNote, key, text...);
  }

  // Reports a finding of any kind.
  template <typename... Parts>
  void Report(FindingKind kind, std::string_view key, const Parts&... text) {
    HandOut(kind, key, {TextPart(text)...});
  }

  std::uint64_t faults() const { return faults_; }
  std::uint64_t notes() const { return notes_; }

 private:
  void HandOut(FindingKind kind, std::string_view key, std::initializer_list<TextPart> parts);

  const TakeFinding& take_;
  std::uint64_t faults_ = 0;
  std::uint64_t notes_ = 0;
};

// Returns what makes a line of each finding and hands it to `take`, which must outlive it. Empty if
// `take` is.
TakeFinding AsLines(const TakeLine& take);

}  // namespace kestan

#endif  // KESTAN_MAINTENANCE_REPORT_FINDINGS_H_
