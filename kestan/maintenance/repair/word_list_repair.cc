#include <kestan/maintenance/repair/word_list_repair.h>

namespace kestan {
namespace {

constexpr unsigned kMark = 0x80;      // with how many bytes the word shares
constexpr unsigned kHighByte = 0xc0;  // from here on, UTF-8 begins a character

// Returns how many bytes follow the first of a character.
int BytesBehind(unsigned first) { return first < 0xe0 ? 1 : first < 0xf0 ? 2 : 3; }

class WordListRun {
 public:
  explicit WordListRun(String* mended) : mended_(mended) {}

  WordListFaults Read(std::string_view list) {
    const unsigned first = list.empty() ? kMark : static_cast<unsigned char>(list.front());
    faults_.lacks_first_word = first < kMark || first >= kHighByte;
    if (faults_.lacks_first_word) Keep(kMark);
    for (const char byte : list) Take(static_cast<unsigned char>(byte));
    return faults_;
  }

 private:
  void Take(unsigned byte) {
    if (byte == 0 && mended_ != nullptr) return;
    const bool is_behind = behind_ > 0 && byte >= kMark && byte < kHighByte;
    behind_ = is_behind ? behind_ - 1 : 0;
    const bool claims_too_much = byte >= kMark && byte - kMark > length_;
    if (claims_too_much && byte >= kHighByte) behind_ = BytesBehind(byte);
    if (byte < kMark || is_behind || behind_ > 0) {
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
    if (mended_ != nullptr) *mended_ += static_cast<char>(byte);
  }

  String* const mended_;
  WordListFaults faults_;
  std::size_t length_ = 0;  // of the word so far
  int behind_ = 0;          // how many bytes of the character may follow
};

}  // namespace

WordListFaults ReadWordList(std::string_view list, String* mended) {
  if (mended != nullptr) mended->clear();
  return WordListRun(mended).Read(list);
}

}  // namespace kestan
