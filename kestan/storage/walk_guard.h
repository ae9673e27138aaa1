// Notices a walk that goes in circles.
#ifndef KESTAN_STORAGE_WALK_GUARD_H_
#define KESTAN_STORAGE_WALK_GUARD_H_

#include <kestan/storage/dbdatum.h>
#include <kestan/storage/owned_datum.h>

#include <cstdint>

namespace kestan {

// In a file whose directory is damaged, gdbm may come to the same keys again and again. Each key of
// a walk is compared with one that was met before, and after twice as many keys with a later one,
// so that any circle is found within three rounds.
class WalkGuard {
 public:
  // Forgets what was met, at the start of a walk or when keys are added or taken away: gdbm may
  // then come to a key twice without going in circles.
  void Restart() {
    steps_ = 0;
    landmark_.Free();
  }

  // Tells whether the walk has come to `key` before. Copies `key`.
  bool IsCircle(const DBDatum& key) {
    if (landmark_.ptr != nullptr && *landmark_.ptr == key) return true;
    ++steps_;
    if ((steps_ & (steps_ - 1)) == 0) landmark_ = CopyDatum(key);
    return false;
  }

 private:
  DBDatumPtr landmark_;
  std::uint64_t steps_ = 0;
};

}  // namespace kestan

#endif  // KESTAN_STORAGE_WALK_GUARD_H_
