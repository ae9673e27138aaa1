// The lines of a repair.
#ifndef KESTAN_MAINTENANCE_REPORT_REPAIR_REPORT_H_
#define KESTAN_MAINTENANCE_REPORT_REPAIR_REPORT_H_

#include <kestan/maintenance/report/findings.h>
#include <kestan/storage/memory.h>

#include <initializer_list>

namespace kestan {

// Makes lines and hands them out. Texts that come from files are to be escaped first.
class RepairReport {
 public:
  // Borrows `take`, which may be empty.
  explicit RepairReport(const TakeLine& take) : take_(take) {}

  void Say(std::initializer_list<LinePart> parts) {
    if (!take_) return;
    String line;
    for (const LinePart& part : parts) line += part.Text();
    take_(line);
  }

 private:
  const TakeLine& take_;
};

}  // namespace kestan

#endif  // KESTAN_MAINTENANCE_REPORT_REPAIR_REPORT_H_
