// SPDX-License-Identifier: GPL-3.0-or-later
// Every record that can be read from a damaged index file.
#ifndef KESTAN_MAINTENANCE_SALVAGE_SALVAGE_H_
#define KESTAN_MAINTENANCE_SALVAGE_SALVAGE_H_

#include <kestan/storage/memory/memory.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kestan {

struct SalvagedRecord {
  std::uint64_t at;  // where in the file the key lies; the value follows it
  std::uint32_t key_bytes;
  std::uint32_t value_bytes;
  // It comes from the newest bucket for its key. Otherwise it comes from an older one, for the
  // newer one is damaged: the record may have been changed or removed since.
  bool is_current;
  bool is_cut;  // it would have reached into the next one or past the end of the file
};

// What a file still holds. Takes memory for the whole file and for some 100 bytes a record.
class Salvage {
 public:
  // Reads the file at `path` and finds its records, each key once, in the order in which they lie
  // in the file, no two in the same bytes. Reads without gdbm, which would stop at the first
  // damage, and takes no lock. Bytes that the system cannot read count as zeros. Values are as they
  // are: nothing in the file shows whether they are damaged.
  //   Returns  0; or the system's error number if there is no such file, or none that fits memory.
  int Read(const char* path);

  const Vector<SalvagedRecord>& records() const { return records_; }
  std::string_view KeyOf(const SalvagedRecord& record) const;
  std::string_view ValueOf(const SalvagedRecord& record) const;

  // What is wrong with the file besides the records.
  struct Damage {
    bool header = false;             // it is not that of an index
    bool directory = false;          // some of it is dangling, or leads to a damaged bucket
    std::size_t orphan_buckets = 0;  // believed, though the directory does not reach them
    std::size_t old_records = 0;     // that are not current
    std::size_t cut_records = 0;     // see SalvagedRecord
    std::uint64_t unreadable_bytes = 0;

    bool IsAny() const { return header || directory || cut_records != 0 || unreadable_bytes != 0; }
  };
  const Damage& damage() const { return damage_; }

 private:
  friend class SalvageRun;

  String bytes_;
  Vector<SalvagedRecord> records_;
  Damage damage_;
};

}  // namespace kestan

#endif  // KESTAN_MAINTENANCE_SALVAGE_SALVAGE_H_
