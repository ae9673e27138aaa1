// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/engine/named_word_lists.h>

#include <kestan/format/keys.h>
#include <kestan/format/word_list.h>
#include <kestan/storage/memory/memory.h>

#include <cstdint>

namespace kestan {
namespace {

constexpr std::uint32_t kSlack = 4096;

}  // namespace

int PutWordList(Database& store, std::string_view name, std::string_view words,
                ScratchBuffer* buffer) {
  const String key = ItemKey(kWordListFamily, name);
  const String text(words);  // it may lie in the buffer, which is written below
  const auto length = static_cast<std::uint32_t>(text.size());
  if (buffer->size < length) buffer->Grow(length + kSlack);
  buffer->Reserve(text.size() + 1);
  const std::size_t encoded = EncodeWordList(text, buffer->bytes);
  return store.Put(AsDatum(key), AsDatum({buffer->bytes, encoded}));
}

char* GetWordList(Database& store, std::string_view name, ScratchBuffer* text) {
  const DBDatumPtr list = Fetch(store, ItemKey(kWordListFamily, name));
  if (list.ptr == nullptr) return nullptr;
  const std::uint32_t likely = 3 * list.ptr->size + kSlack;
  if (text->size < likely) text->Grow(likely);
  return DecodeWordList(*list.ptr, text);
}

}  // namespace kestan
