// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/format/word_list.h>

#include <kestan/text/white_space.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace kestan {
namespace {

constexpr unsigned kItemMark = 128;      // bytes from here on begin a word
constexpr std::size_t kWordBytes = 127;  // at most

std::size_t CommonPrefixBytes(std::string_view left, std::string_view right) {
  const std::size_t shorter = std::min(left.size(), right.size());
  return static_cast<std::size_t>(
      std::mismatch(left.begin(), left.begin() + shorter, right.begin()).first - left.begin());
}

// How much memory decoding takes at most: the words' own bytes, what they share, a line feed after
// each, and the last line feed and the NUL.
std::size_t DecodedBytes(const DBDatum& list) {
  std::size_t count = 2;
  for (std::uint32_t i = 0; i < list.size; ++i) {
    const unsigned byte = static_cast<unsigned char>(list.data[i]);
    count += byte < kItemMark ? 1 : 1 + byte - kItemMark;
  }
  return count;
}

// Decodes `list` as DecodeWordList() says, and calls `visit` with each word when it is complete.
template <typename Visit>
char* Decode(const DBDatum& list, ScratchBuffer* out, Visit visit) {
  out->Reserve(DecodedBytes(list));
  std::size_t used = 0;
  std::size_t previous = 0;
  const auto end_word = [&] {
    visit(std::string_view(out->bytes + previous, used - previous));
    out->bytes[used++] = '\n';
  };
  for (std::uint32_t i = 0; i < list.size; ++i) {
    const unsigned byte = static_cast<unsigned char>(list.data[i]);
    if (byte < kItemMark) {
      out->bytes[used++] = list.data[i];
      continue;
    }
    if (used > 0) end_word();
    const std::size_t start = used;
    if (static_cast<std::int64_t>(start) > static_cast<std::int64_t>(out->size) - 128) {
      out->Grow(out->size + out->size / 4 + 4096);
    }
    // One byte at a time, since the word before may end within the bytes that this one copies.
    const std::size_t shared = start > 0 ? byte - kItemMark : 0;
    for (std::size_t k = 0; k < shared; ++k) out->bytes[used++] = out->bytes[previous + k];
    previous = start;
  }
  if (used > 0) end_word();
  out->bytes[used] = '\0';
  return out->bytes;
}

}  // namespace

std::size_t EncodeWordList(std::string_view text, char* out) {
  char* end = out;
  std::string_view previous;  // empty again after a run of white space; the next word is whole then
  while (!text.empty()) {
    const char* const stop = std::find_if(text.begin(), text.end(), IsWhiteSpace);
    const auto length = static_cast<std::size_t>(stop - text.begin());
    const std::string_view word = text.substr(0, std::min(length, kWordBytes));
    if (!word.empty()) {
      const std::size_t shared = CommonPrefixBytes(word, previous);
      *end++ = static_cast<char>(kItemMark + shared);
      end = std::copy(word.begin() + shared, word.end(), end);
    }
    previous = word;
    text.remove_prefix(std::min(length + 1, text.size()));
  }
  return static_cast<std::size_t>(end - out);
}

char* DecodeWordList(const DBDatum& list, ScratchBuffer* out) {
  return Decode(list, out, [](std::string_view) {});
}

void ForEachListedWord(const DBDatum& list,
                       const std::function<void(std::string_view word)>& visit) {
  struct OwnBuffer : ScratchBuffer {
    ~OwnBuffer() { Release(); }
  } buffer;
  bool has_ended = false;
  Decode(list, &buffer, [&](std::string_view word) {
    if (has_ended) return;
    const std::size_t size = word.find('\0');
    has_ended = size != std::string_view::npos;
    word = word.substr(0, size);
    for (std::size_t end; (end = word.find('\n')) != std::string_view::npos;) {
      visit(word.substr(0, end));
      word.remove_prefix(end + 1);
    }
    if (!has_ended || !word.empty()) visit(word);
  });
}

}  // namespace kestan
