// SPDX-License-Identifier: GPL-3.0-or-later
// Detects keys that a walk meets twice.
#ifndef KESTAN_STORAGE_CYCLE_DETECTOR_H_
#define KESTAN_STORAGE_CYCLE_DETECTOR_H_

#include <kestan/storage/dbdatum.h>
#include <kestan/storage/owned_datum.h>

#include <cstdint>

namespace kestan {

// Each key of a walk is compared with one that was met before, and after twice as many keys with a
// later one, so that a cycle is noticed within three rounds. In a file that does not change between
// the steps, a key that comes twice proves a cycle. In one that does, it may not.
class CycleDetector {
 public:
  // Forgets all keys, at the start of a walk.
  void Restart() {
    steps_ = 0;
    landmark_.Free();
  }

  // Notes that the walk has come to `key`, which is copied.
  //   Returns  whether the walk is known to have met it before. After that the detector takes keys
  //            for new until the walk is twice as long, so that long walks get few alarms.
  bool HasMet(const DBDatum& key) {
    const bool is_landmark = landmark_.ptr != nullptr && *landmark_.ptr == key;
    if (is_landmark) landmark_.Free();
    ++steps_;
    if ((steps_ & (steps_ - 1)) == 0) landmark_ = CopyDatum(key);
    return is_landmark;
  }

 private:
  DBDatumPtr landmark_;
  std::uint64_t steps_ = 0;
};

}  // namespace kestan

#endif  // KESTAN_STORAGE_CYCLE_DETECTOR_H_
