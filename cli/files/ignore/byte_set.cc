// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/files/ignore/byte_set.h"

#include <algorithm>
#include <array>

namespace kestan_cli {
namespace {

constexpr std::string_view kUpper = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
constexpr std::string_view kLower = "abcdefghijklmnopqrstuvwxyz";
constexpr std::string_view kDigits = "0123456789";
constexpr std::string_view kPunctuation = "!\"#$%&'()*+,-./:;<=>?@[\\]^_`{|}~";

std::size_t Index(char byte) { return static_cast<unsigned char>(byte); }

void AddAll(std::string_view bytes, ByteSet* set) {
  for (const char byte : bytes) set->set(Index(byte));
}

void AddRange(char low, char high, ByteSet* set) {
  for (std::size_t i = Index(low); i <= Index(high); ++i) set->set(i);
}

struct Class {
  std::string_view name;
  std::array<std::string_view, 4> bytes;
};

// Of ASCII, whatever the locale is.
constexpr std::array kClasses{
    Class{"alnum", {kUpper, kLower, kDigits}},
    Class{"alpha", {kUpper, kLower}},
    Class{"blank", {" \t"}},
    Class{"digit", {kDigits}},
    Class{"graph", {kUpper, kLower, kDigits, kPunctuation}},
    Class{"lower", {kLower}},
    Class{"print", {kUpper, kLower, kDigits, kPunctuation}},
    Class{"punct", {kPunctuation}},
    Class{"space", {" \t\n\v\f\r"}},
    Class{"upper", {kUpper}},
    Class{"xdigit", {kDigits, "ABCDEF", "abcdef"}},
};

// Returns whether there is a class of this name.
bool AddClass(std::string_view name, ByteSet* set) {
  if (name == "cntrl") {
    AddRange('\0', '\x1f', set);
    set->set(0x7f);
    return true;
  }
  const auto* const found = std::find_if(kClasses.begin(), kClasses.end(),
                                         [&](const Class& each) { return each.name == name; });
  if (found == kClasses.end()) return false;
  for (const std::string_view bytes : found->bytes) AddAll(bytes, set);
  if (name == "print") set->set(Index(' '));
  return true;
}

class Reader {
 public:
  Reader(std::string_view text, ByteSet* set) : rest_(text), set_(set) {}

  // Reads up to the closing bracket. Returns false if there is none, or a class is unknown.
  bool Read() {
    for (bool is_first = true;; is_first = false) {
      if (rest_.empty()) return false;
      if (rest_.front() == ']' && !is_first) break;
      if (!ReadOne()) return false;
    }
    rest_.remove_prefix(1);
    return true;
  }

  std::string_view rest() const { return rest_; }

 private:
  // A range needs a byte before it, which neither a class nor another range is.
  bool ReadOne() {
    if (rest_.substr(0, 2) == "[:") {
      const std::size_t end = rest_.find(']', 2);
      if (end == std::string_view::npos) return false;
      if (end > 2 && rest_[end - 1] == ':') {
        const std::string_view name = rest_.substr(2, end - 3);
        rest_.remove_prefix(end + 1);
        has_low_ = false;
        return AddClass(name, set_);
      }
    }
    const bool is_range = has_low_ && rest_.size() > 1 && rest_.front() == '-' && rest_[1] != ']';
    if (is_range) rest_.remove_prefix(1);
    if (rest_.front() == '\\') rest_.remove_prefix(1);
    if (rest_.empty()) return false;
    const char byte = rest_.front();
    rest_.remove_prefix(1);
    AddRange(is_range ? low_ : byte, byte, set_);
    has_low_ = !is_range;
    low_ = byte;
    return true;
  }

  std::string_view rest_;
  ByteSet* set_;
  bool has_low_ = false;  // a range may begin with low_
  char low_ = 0;
};

}  // namespace

std::size_t ReadByteSet(std::string_view text, ByteSet* set) {
  set->reset();
  std::size_t start = 1;
  const bool is_negated = text.size() > 1 && (text[1] == '!' || text[1] == '^');
  if (is_negated) ++start;
  Reader reader(text.substr(start), set);
  if (!reader.Read()) return 0;
  if (is_negated) set->flip();
  set->reset(Index('/'));
  return text.size() - reader.rest().size();
}

}  // namespace kestan_cli
