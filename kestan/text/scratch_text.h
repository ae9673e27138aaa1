// SPDX-License-Identifier: GPL-3.0-or-later
// A growable buffer in which text is handed back to the host, and how text is built in it.
#ifndef KESTAN_TEXT_SCRATCH_TEXT_H_
#define KESTAN_TEXT_SCRATCH_TEXT_H_

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace kestan {

// Hosts see `bytes` and `size`. The stated size follows the growth rule of each user to the letter,
// down to 0; the memory behind it is whatever the text needs.
struct ScratchBuffer {
  // States another size and makes sure of that much memory.
  void Grow(std::uint32_t new_size);

  // Makes sure of memory for `count` bytes; the stated size stays as it is.
  void Reserve(std::size_t count) {
    if (capacity == 0 || count > capacity) Enlarge(count);
  }

  // Releases the memory. `bytes` and `size` stay as they were; the next Reserve() allocates again.
  void Release();

  char* bytes = nullptr;
  std::uint32_t size = 0;
  std::size_t capacity = 0;  // of the memory at `bytes`; 0 when there is none

 private:
  void Enlarge(std::size_t count);
};

// Builds a text in a buffer from its start. Only one at a time.
class ScratchText {
 public:
  // Borrows `buffer` and makes it state a size of at least 4096 bytes.
  explicit ScratchText(ScratchBuffer* buffer);

  // Doubles the stated size, once, if less than `room` bytes of it are left.
  void MakeRoom(std::size_t room);

  void Append(std::string_view text) {
    buffer_.Reserve(used_ + text.size() + 1);
    if (!text.empty()) std::memcpy(buffer_.bytes + used_, text.data(), text.size());
    used_ += text.size();
  }

  // Makes room for `line` and its line feed, `room` bytes as the caller counts them, and adds both.
  void AppendLine(std::string_view line, std::size_t room);

  // Ends the text with a NUL.
  //   Returns  the text.
  char* Finish();

 private:
  ScratchBuffer& buffer_;
  std::size_t used_ = 0;
};

}  // namespace kestan

#endif  // KESTAN_TEXT_SCRATCH_TEXT_H_
