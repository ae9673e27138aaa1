// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/files/fingerprint.h"

#include <xxhash.h>

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <new>
#include <system_error>

namespace kestan_cli {
namespace {

constexpr std::size_t kHashDigits = 32;
constexpr std::size_t kReadingDigits = 16;
constexpr std::size_t kNanosecondDigits = 9;

std::string PaddedTo(std::size_t digits, const std::string& number) {
  return std::string(digits - std::min(digits, number.size()), '0') + number;
}

std::string Hexadecimal(std::uint64_t number) {
  std::string digits(kHashDigits / 2, '0');
  constexpr std::string_view kDigits = "0123456789abcdef";
  for (auto digit = digits.rbegin(); digit != digits.rend(); ++digit, number >>= 4) {
    *digit = kDigits[number & 15];
  }
  return digits;
}

std::string TimeOf(const FileState& state) {
  return std::to_string(state.mtime_seconds) + "." +
         PaddedTo(kNanosecondDigits, std::to_string(state.mtime_nanoseconds));
}

// Returns " KEY=\"TEXT\"", with a blank for each control character; nothing for no text.
std::string QuotedField(const char* key, const std::string& text) {
  if (text.empty()) return "";
  std::string field = std::string(" ") + key + "=\"";
  for (const char byte : text) {
    if (byte == '"' || byte == '\\') field += '\\';
    field += static_cast<unsigned char>(byte) < ' ' ? ' ' : byte;
  }
  return field + '"';
}

std::string LineOf(const Fingerprint& fingerprint) {
  std::string line = "size=" + std::to_string(fingerprint.state.bytes) +
                     " mtime=" + TimeOf(fingerprint.state) + " hash=" + fingerprint.hash;
  if (!fingerprint.reading.empty()) line += " read=" + fingerprint.reading;
  if (fingerprint.container_bytes != 0) {
    line += " in=" + std::to_string(fingerprint.container_bytes) +
            " at=" + std::to_string(fingerprint.offset);
  }
  if (const auto& container = fingerprint.container; container.has_value()) {
    line += " of=" + std::to_string(container->bytes) + "," + TimeOf(*container);
  }
  const MailFacts& mail = fingerprint.mail;
  if (mail.date.has_value()) line += " date=" + std::to_string(*mail.date);
  return line + QuotedField("from", mail.from) + QuotedField("to", mail.to);
}

std::string_view FirstLine(std::string_view text) { return text.substr(0, text.find('\n')); }

// Takes the fields of a line off its front.
class LineReader {
 public:
  explicit LineReader(std::string_view line) : rest_(line) {}

  bool Take(std::string_view expected) {
    if (rest_.substr(0, expected.size()) != expected) return false;
    rest_.remove_prefix(expected.size());
    return true;
  }

  bool TakeState(FileState* state) {
    return Take("size=") && TakeNumber(&state->bytes) && Take(" mtime=") && TakeTime(state);
  }

  // These return false if what begins with `key` is no such field; without it, nothing is taken.

  bool TakeReading(std::string* digits) {
    return !Take(" read=") || TakeDigits(kReadingDigits, digits);
  }

  bool TakePlace(Fingerprint* fingerprint) {
    return !Take(" in=") || (TakeNumber(&fingerprint->container_bytes) && Take(" at=") &&
                             TakeNumber(&fingerprint->offset));
  }

  bool TakeContainer(std::optional<FileState>* container) {
    if (!Take(" of=")) return true;
    FileState& state = container->emplace();
    return TakeNumber(&state.bytes) && Take(",") && TakeTime(&state);
  }

  bool TakeMail(MailFacts* mail) {
    if (Take(" date=") && !TakeNumber(&mail->date.emplace())) return false;
    return (!Take(" from=") || TakeQuoted(&mail->from)) && (!Take(" to=") || TakeQuoted(&mail->to));
  }

  bool TakeDigits(std::size_t count, std::string* digits) {
    *digits = rest_.substr(0, count);
    rest_.remove_prefix(digits->size());
    return digits->size() == count &&
           digits->find_first_not_of("0123456789abcdef") == std::string::npos;
  }

  std::string_view rest() const { return rest_; }

 private:
  bool TakeTime(FileState* state) {
    return TakeNumber(&state->mtime_seconds) && Take(".") && TakeNumber(&state->mtime_nanoseconds);
  }

  bool TakeQuoted(std::string* text) {
    if (!Take("\"")) return false;
    while (!rest_.empty() && rest_.front() != '"') {
      if (rest_.front() == '\\') rest_.remove_prefix(1);
      if (rest_.empty()) return false;
      *text += rest_.front();
      rest_.remove_prefix(1);
    }
    return Take("\"");
  }

  template <typename Number>
  bool TakeNumber(Number* number) {
    const char* const end = rest_.data() + rest_.size();
    const auto [stop, error] = std::from_chars(rest_.data(), end, *number);
    if (error != std::errc()) return false;
    rest_.remove_prefix(static_cast<std::size_t>(stop - rest_.data()));
    return true;
  }

  std::string_view rest_;
};

}  // namespace

bool operator==(const FileState& left, const FileState& right) {
  return left.bytes == right.bytes && left.mtime_seconds == right.mtime_seconds &&
         left.mtime_nanoseconds == right.mtime_nanoseconds;
}

bool HaveSameContent(const Fingerprint& left, const Fingerprint& right) {
  return left.state.bytes == right.state.bytes && left.hash == right.hash;
}

std::optional<FileState> FileStateIn(std::string_view user_record) {
  FileState state;
  LineReader line(user_record);
  if (!line.TakeState(&state)) return std::nullopt;
  const bool ends = line.rest().empty() || line.rest()[0] == ' ' || line.rest()[0] == '\n';
  return ends ? std::optional(state) : std::nullopt;
}

std::optional<Fingerprint> FingerprintIn(std::string_view user_record) {
  Fingerprint found;
  LineReader line(FirstLine(user_record));
  const bool has_content = line.TakeState(&found.state) && line.Take(" hash=") &&
                           line.TakeDigits(kHashDigits, &found.hash);
  if (!has_content) return std::nullopt;
  if (line.rest().empty()) return found;
  const bool is_valid = line.TakeReading(&found.reading) && line.TakePlace(&found) &&
                        line.TakeContainer(&found.container) && line.TakeMail(&found.mail);
  if (!is_valid || !line.rest().empty()) return std::nullopt;
  return found;
}

std::string ContainerOf(const std::string& name, const Fingerprint& fingerprint) {
  const std::size_t bytes = fingerprint.container_bytes;
  if (bytes == 0 || bytes >= name.size() || name[bytes] != '#') return "";
  return name.substr(0, bytes);
}

std::string WithFingerprint(std::string_view user_record, const Fingerprint& fingerprint) {
  std::string record = LineOf(fingerprint);
  if (FingerprintIn(user_record).has_value()) {
    user_record.remove_prefix(std::min(FirstLine(user_record).size() + 1, user_record.size()));
  }
  if (!user_record.empty()) record.append("\n").append(user_record);
  return record;
}

ContentHash::ContentHash() : state_(XXH3_createState()) {
  if (state_ == nullptr) throw std::bad_alloc();
  XXH3_128bits_reset(state_.get());
}

void ContentHash::Free::operator()(XXH3_state_s* state) const { XXH3_freeState(state); }

void ContentHash::Add(std::string_view bytes) {
  XXH3_128bits_update(state_.get(), bytes.data(), bytes.size());
}

std::string ContentHash::Digits() const {
  const XXH128_hash_t hash = XXH3_128bits_digest(state_.get());
  return Hexadecimal(hash.high64) + Hexadecimal(hash.low64);
}

}  // namespace kestan_cli
