// The option flags, which the index file keeps.
#include <kestan/engine/kestan.h>
#include <kestan/engine/keys.h>
#include <kestan/engine/records.h>

namespace {

// Takes the positions out of every word's record; they reach the file at the next flush.
void DropAllPositions(Database& store) {
  DBDatumPtr key;
  DBDatumPtr value;
  for (int end = store.First(&key, &value); end == 0; end = store.Next(&key, &value)) {
    if (kestan::IsSystemKey(*key.ptr)) continue;
    kestan::DropPositions(value.ptr);
    value.ptr->dirty = true;
  }
}

}  // namespace

unsigned long Kestan::Options() const { return OptionFlags; }

void Kestan::GetOptions() { LoadOptions(); }

// Flags that cannot be read stay as they are in the file: without them its records mean nothing.
bool Kestan::LoadOptions() {
  bool is_unreadable = false;
  const DBDatumPtr stored = kestan::Fetch(store_, kestan::kOptionsKey, &is_unreadable);
  if (stored.ptr != nullptr) {
    OptionFlags = kestan::DecodeOptions(*stored.ptr);
  } else if (!is_unreadable) {
    OptionFlags = 0;
    PutOptions();
  }
  return !is_unreadable;
}

int Kestan::PutOptions() {
  const auto encoded = kestan::EncodeOptions(OptionFlags);
  return store_.Put(kestan::AsDatum(kestan::kOptionsKey), kestan::AsDatum(encoded));
}

int Kestan::SetOptionFlag(unsigned long flags) {
  const auto mask = static_cast<std::uint32_t>(flags);
  if (mask == 0) return -1;
  if ((OptionFlags & mask) != 0) return 0;
  OptionFlags |= mask;
  PutOptions();
  if ((mask & kestan::kFlagNoPositions) != 0) DropAllPositions(store_);
  return 0;
}

int Kestan::UnsetOptionFlag(unsigned long flags) {
  const auto mask = static_cast<std::uint32_t>(flags);
  if (mask == 0) return -1;
  if ((OptionFlags & mask) == 0) return 0;
  if ((mask & kestan::kFlagNoPositions) != 0) return -2;
  OptionFlags &= ~mask;
  PutOptions();
  return 0;
}
