// SPDX-License-Identifier: GPL-3.0-or-later
// The option flags, which the index file keeps.
#include <kestan/engine/kestan.h>
#include <kestan/format/keys.h>
#include <kestan/format/option_flags.h>
#include <kestan/format/posting.h>
#include <kestan/indexing/drop_positions.h>
#include <kestan/storage/memory/memory.h>

using namespace kestan;

unsigned long Kestan::Options() const { return OptionFlags; }

bool Kestan::KeepsPositions() const { return kestan::KeepsPositions(OptionFlags); }

void Kestan::GetOptions() { LoadOptions(); }

// Flags that cannot be read stay as they are in the file: without them its records mean nothing.
bool Kestan::LoadOptions() {
  bool is_unreadable = false;
  const DBDatumPtr stored = Fetch(store_, kOptionsKey, &is_unreadable);
  if (stored.ptr != nullptr) {
    OptionFlags = DecodeOptions(*stored.ptr);
  } else if (!is_unreadable) {
    OptionFlags = 0;
    PutOptions();
  }
  return !is_unreadable;
}

int Kestan::PutOptions() {
  const auto encoded = EncodeOptions(OptionFlags);
  return store_.Put(AsDatum(kOptionsKey), AsDatum(encoded));
}

int Kestan::SetOptionFlag(unsigned long flags) {
  const auto mask = static_cast<std::uint32_t>(flags);
  if (mask == 0) return -1;
  if ((OptionFlags & mask) != 0) return 0;
  const bool drops_positions = (mask & kFlagNoPositions) != 0;
  Vector<DBDatumPtr> records;
  // All are read before the flag is stored: with it, positions that stay would be read as codes.
  if (drops_positions && IsOpen() && !FetchPostingRecords(store_, &records)) return -3;
  OptionFlags |= mask;
  PutOptions();
  // With no index open, for the message of the store.
  if (drops_positions && !IsOpen()) FetchPostingRecords(store_, &records);
  DropAllPositions(records);
  return 0;
}

int Kestan::UnsetOptionFlag(unsigned long flags) {
  const auto mask = static_cast<std::uint32_t>(flags);
  if (mask == 0) return -1;
  if ((OptionFlags & mask) == 0) return 0;
  if ((mask & kFlagNoPositions) != 0) return -2;
  OptionFlags &= ~mask;
  PutOptions();
  return 0;
}
