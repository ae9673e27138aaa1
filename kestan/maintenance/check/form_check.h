// Whether the case-folded form of a word stands wherever the word does.
#ifndef KESTAN_MAINTENANCE_CHECK_FORM_CHECK_H_
#define KESTAN_MAINTENANCE_CHECK_FORM_CHECK_H_

#include <kestan/maintenance/check/tables.h>
#include <kestan/maintenance/report/findings.h>
#include <kestan/storage/database.h>
#include <kestan/storage/dbdatum.h>
#include <kestan/storage/flush_policy.h>

#include <string_view>

namespace kestan {

// Tells whether every byte of the word has bit 5 set. Such a word is recorded once; any other is
// recorded in this form too, at the same positions.
bool IsFolded(std::string_view word);

// Every word that is not folded is recorded a second time in its folded form, so that its entries
// are among those of that form, in the same order, and so are the positions of each.
class FormCheck {
 public:
  // Borrows all three. `store` is flushed now and then.
  FormCheck(Database& store, const IndexTables& tables, Findings* findings)
      : store_(store), tables_(tables), findings_(*findings), cadence_(store) {}

  // Looks at a record of the index, and at that of the folded form if it is a word's that has one.
  // Nothing is said of words that no shrink purges, nor where the other record cannot be read.
  void Visit(const DBDatum& key, const DBDatum& value);

 private:
  Database& store_;
  const IndexTables& tables_;
  Findings& findings_;
  PeriodicFlush cadence_;
};

}  // namespace kestan

#endif  // KESTAN_MAINTENANCE_CHECK_FORM_CHECK_H_
