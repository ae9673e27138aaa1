// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/engine/side_records.h>

#include <kestan/format/keys.h>
#include <kestan/storage/memory/memory.h>

#include <cstring>

namespace kestan {

char* GetSideRecord(Database& store, std::string_view family, std::string_view name,
                    ScratchBuffer* text) {
  const DBDatumPtr value = Fetch(store, ItemKey(family, name));
  if (value.ptr == nullptr) return nullptr;
  const std::uint32_t length = value.ptr->size;
  // One bit, not a multiple of 4096: the size that hosts see has always gone by this rule.
  if (text->size < length) text->Grow((length + 4096) & 4096);
  text->Reserve(static_cast<std::size_t>(length) + 1);
  if (length != 0) std::memcpy(text->bytes, value.ptr->data, length);
  text->bytes[length] = '\0';
  return text->bytes;
}

int PutSideRecord(Database& store, std::string_view family, std::string_view name,
                  std::string_view text) {
  const String key = ItemKey(family, name);
  return store.Put(AsDatum(key), AsDatum(text));
}

// The store deletes whether there was anything or not, so this looks first. With no file open, the
// deletion is what the store complains of.
int DeleteSideRecord(Database& store, bool is_open, std::string_view family,
                     std::string_view name) {
  const String key = ItemKey(family, name);
  if (is_open && Fetch(store, key).ptr == nullptr) return -1;
  return store.Del(AsDatum(key)) == 0 ? 0 : -1;
}

}  // namespace kestan
