// SPDX-License-Identifier: GPL-3.0-or-later
// Checks by the bytes of a gdbm file that a look-up finds every record that a walk shows.
//
// A walk takes each key from the place that an element of a bucket names. A look-up starts from the
// key: its hash names an entry of the directory, which names a bucket; there the search begins
// at the place that the hash names, ends at the first unused one, and takes the element that gives
// the same hash, length and first bytes. Right after a walk has shown a key, gdbm answers for it
// without all that. So fetching the records of a walk proves nothing.
#ifndef KESTAN_MAINTENANCE_CHECK_LOOKUP_CHECK_H_
#define KESTAN_MAINTENANCE_CHECK_LOOKUP_CHECK_H_

#include <kestan/maintenance/report/findings.h>
#include <kestan/maintenance/salvage/gdbm_layout.h>
#include <kestan/storage/memory/memory.h>

#include <cstdint>
#include <string_view>

namespace kestan {

class LookupCheck {
 public:
  // Borrows both.
  LookupCheck(const gdbm::Bytes& file, Findings* findings) : file_(file), findings_(*findings) {}

  // Reports each record that a walk shows and no look-up finds, by its key; where there are more
  // than 1,000, the number of the others. Reports entries of the directory and buckets that do not
  // belong together.
  void Run();

 private:
  void CheckRun(const gdbm::DirectoryRun& run);
  void CheckElements(const gdbm::DirectoryRun& run, std::uint32_t counted);
  void ReadElements(gdbm::Offset bucket);
  bool IsFound(const gdbm::DirectoryRun& run, std::uint32_t place) const;
  void ReportSeconds();
  std::string_view KeyOf(const gdbm::Element& element) const;
  void ReportLost(const gdbm::Element& element);
  void ReportRun(const gdbm::DirectoryRun& run, const char* what);

  const gdbm::Bytes& file_;
  Findings& findings_;
  gdbm::Header header_{};
  gdbm::Shape shape_;
  Vector<gdbm::Element> elements_;     // of the bucket that is looked at
  Vector<std::uint32_t> used_before_;  // by place: how many used ones end there, without a gap
  Vector<std::uint32_t> found_;        // places of elements that a look-up may find
  std::uint32_t used_ = 0;
  std::uint64_t lost_ = 0;
  std::uint64_t bad_runs_ = 0;
};

}  // namespace kestan

#endif  // KESTAN_MAINTENANCE_CHECK_LOOKUP_CHECK_H_
