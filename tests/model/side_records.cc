// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>

#include "tests/model/model.h"

namespace kestan_model {

Text Model::GetSideRecord(const std::string& family, const std::string& name) {
  const Value stored = store_.Get(family + name);
  if (stored == nullptr) return Null();
  const auto length = static_cast<std::uint32_t>(stored->bytes.size());
  if (process_.buffer_size < length) process_.buffer_size = (length + 4096) & 4096;
  return {false, true, stored->bytes};
}

int Model::PutSideRecord(const std::string& family, const std::string& name,
                         const std::string& text) {
  return store_.Put(family + name, text);
}

int Model::DelSideRecord(const std::string& family, const std::string& name) {
  if (store_.IsOpen() && store_.Get(family + name) == nullptr) return -1;
  return store_.Del(family + name) == 0 ? 0 : -1;
}

int Model::DBPutWords(const std::string& name, const std::string& words) {
  const auto length = static_cast<std::uint32_t>(words.size());
  if (process_.buffer_size < length) process_.buffer_size = length + 4096;
  return store_.Put("w-" + name, EncodeWords(words));
}

Text Model::DBGetWords(const std::string& name) {
  const Value stored = store_.Get("w-" + name);
  if (stored == nullptr) return Null();
  const auto wanted = static_cast<std::uint32_t>(3 * stored->bytes.size() + 4096);
  process_.buffer_size = std::max(process_.buffer_size, wanted);
  return {false, true, DecodeWords(stored->bytes, &process_.buffer_size)};
}

// White space beside other white space stands around an empty word, which is not stored but is
// what the next word shares nothing with.
std::string EncodeWords(const std::string& words) {
  std::string record;
  std::string previous;
  std::string word;
  for (const char byte : words + '\n') {
    if (!IsBlank(byte)) {
      if (word.size() < 127) word += byte;
      continue;
    }
    std::size_t shared = 0;
    while (shared < word.size() && shared < previous.size() && word[shared] == previous[shared]) {
      ++shared;
    }
    if (!word.empty()) record += static_cast<char>(128 + shared) + word.substr(shared);
    previous = word;
    word.clear();
  }
  return record;
}

// A count may reach past the word before, into what has been written since; the first word has
// nothing before it to share.
std::string DecodeWords(const std::string& record, std::uint32_t* buffer_size) {
  std::string text;
  std::size_t previous = 0;
  for (const char byte : record) {
    const unsigned number = static_cast<unsigned char>(byte);
    if (number < 128) {
      text += byte;
      continue;
    }
    if (!text.empty()) text += '\n';
    const std::size_t start = text.size();
    if (start > *buffer_size - 128) *buffer_size += *buffer_size / 4 + 4096;
    for (std::size_t i = previous; i < previous + number - 128 && i < text.size(); ++i) {
      text += text[i];
    }
    previous = start;
  }
  if (!text.empty()) text += '\n';
  return text;
}

}  // namespace kestan_model
