// SPDX-License-Identifier: GPL-3.0-or-later
// Checks that the case-folded form of a word is wherever the word is.
#ifndef KESTAN_MAINTENANCE_CHECK_FORM_CHECK_H_
#define KESTAN_MAINTENANCE_CHECK_FORM_CHECK_H_

#include <kestan/maintenance/check/tables.h>
#include <kestan/maintenance/report/findings.h>
#include <kestan/storage/database.h>
#include <kestan/storage/dbdatum.h>
#include <kestan/storage/walk/flush_policy.h>

namespace kestan {

// Every word that is not folded is recorded a second time in its folded form. So the postings of
// that form include those of the word, in the same order, and so do the positions of each.
class FormCheck {
 public:
  // Borrows all three. Flushes `store` now and then.
  FormCheck(Database& store, const IndexTables& tables, Findings* findings)
      : store_(store), tables_(tables), findings_(*findings), flush_(store) {}

  // Looks at a record of the index. If it is that of a word that is not folded, compares it with
  // the record of the folded form. Reports nothing of words that no shrink purges, nor where the
  // other record cannot be read.
  void Visit(const DBDatum& key, const DBDatum& value);

 private:
  Database& store_;
  const IndexTables& tables_;
  Findings& findings_;
  PeriodicFlush flush_;
};

}  // namespace kestan

#endif  // KESTAN_MAINTENANCE_CHECK_FORM_CHECK_H_
