// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/query/name_table.h>

#include <kestan/format/document_record.h>

namespace kestan {
namespace {

constexpr std::size_t kMaxNameBytes = 1000;  // of a name that is kept

}  // namespace

void NameTable::Refresh(const Database& store) {
  if (changes_ == store.Changes()) return;
  changes_ = store.Changes();
  places_.clear();
  names_.clear();
}

std::string_view NameTable::Load(Database& store, Code code, DBDatumPtr* held) {
  store.Get(held, AsDatum(NameKey(code)));
  if (held->ptr == nullptr) return {};
  const std::string_view name(held->ptr->data, held->ptr->size);
  if (name.size() > kMaxNameBytes) return name;
  if (places_.empty()) places_.resize(std::size_t{kMaxCode} + 1);
  places_[code] = {static_cast<std::uint32_t>(names_.size()),
                   static_cast<std::uint16_t>(name.size())};
  names_.append(name);
  return At(places_[code]);
}

}  // namespace kestan
