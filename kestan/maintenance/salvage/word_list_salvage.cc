// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/maintenance/salvage/word_list_salvage.h>

namespace kestan {
namespace {

constexpr unsigned kMark = 0x80;      // plus the number of bytes that the word shares
constexpr unsigned kHighByte = 0xc0;  // in UTF-8, characters begin with this byte or a higher one

// Returns how many bytes follow the first of a character.
int BytesAfter(unsigned first) { return first < 0xe0 ? 1 : first < 0xf0 ? 2 : 3; }

class WordListRun {
 public:
  explicit WordListRun(String* repaired) : repaired_(repaired) {}

  WordListFaults Read(std::string_view list) {
    const unsigned first = list.empty() ? kMark : static_cast<unsigned char>(list.front());
    faults_.lacks_first_word = first < kMark || first >= kHighByte;
    if (faults_.lacks_first_word) Keep(kMark);
    for (const char byte : list) Take(static_cast<unsigned char>(byte));
    return faults_;
  }

 private:
  void Take(unsigned byte) {
    if (byte == 0 && repaired_ != nullptr) return;
    const bool is_following = following_ > 0 && byte >= kMark && byte < kHighByte;
    following_ = is_following ? following_ - 1 : 0;
    const bool claims_too_much = byte >= kMark && byte - kMark > length_;
    if (claims_too_much && byte >= kHighByte) following_ = BytesAfter(byte);
    if (byte < kMark || is_following || following_ > 0) {
      if (byte >= kMark) faults_.has_high_bytes = true;
      ++length_;
      return Keep(byte);
    }
    if (claims_too_much) {
      ++faults_.shared_too_much;
      return Keep(kMark + static_cast<unsigned>(length_));
    }
    length_ = byte - kMark;
    Keep(byte);
  }

  void Keep(unsigned byte) {
    if (repaired_ != nullptr) *repaired_ += static_cast<char>(byte);
  }

  String* const repaired_;
  WordListFaults faults_;
  std::size_t length_ = 0;  // of the word so far
  int following_ = 0;       // how many bytes of the character may follow
};

}  // namespace

WordListFaults ReadWordList(std::string_view list, String* repaired) {
  if (repaired != nullptr) repaired->clear();
  return WordListRun(repaired).Read(list);
}

}  // namespace kestan
