// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/maintenance/check.h>
#include <kestan/maintenance/check/code_check.h>
#include <kestan/maintenance/check/form_check.h>
#include <kestan/maintenance/check/lookup_check.h>
#include <kestan/maintenance/check/posting_check.h>
#include <kestan/maintenance/check/space_check.h>
#include <kestan/maintenance/check/tables.h>
#include <kestan/maintenance/report/findings.h>
#include <kestan/maintenance/salvage/file_reading.h>
#include <kestan/storage/walk/record_iterator.h>

namespace kestan {
namespace {

// Returns the first error that gdbm has met, having reported each.
int CheckFile(Database& store, int walk_error, Findings* findings) {
  int first = 0;
  const auto report = [&](int error, const char* what) {
    if (error == 0) return;
    findings->Fault(kWholeFile, what, Database::ErrorString(error));
    if (first == 0) first = error;
  };
  report(walk_error, "not all records could be found -- ");
  report(store.FileError(), "reading or writing failed -- ");
  report(store.Verify(), "damaged -- ");
  return first;
}

// Checks the layout of the file, independently of what gdbm reads from it.
void CheckLayout(const Database& store, Findings* findings) {
  const MappedFile file(store.Descriptor());
  if (!file.is_mapped()) {
    findings->Fault(kWholeFile, "cannot be mapped, so that its buckets were not looked at");
    return;
  }
  const gdbm::Bytes bytes(file.bytes());
  LookupCheck(bytes, findings).Run();
  SpaceCheck(bytes, findings).Run();
}

}  // namespace

std::int64_t CheckStructureWithFindings(const Database& store, const TakeFinding& report) {
  if (store.FileBytes() == -1) return -1;
  Findings findings(report);
  CheckLayout(store, &findings);
  return static_cast<std::int64_t>(findings.faults());
}

CheckResult CheckIndexWithFindings(Database& store, const TakeFinding& report, CodeReuse reuse) {
  if (store.Flush() == -1) return {0, 0, StoreError::kNotOpen};
  Findings findings(report);
  CheckLayout(store, &findings);
  const IndexTables tables = ReadTables(store);
  CheckLengths(tables, &findings);
  if (!tables.IsIncomplete()) CheckCodes(tables, &findings);

  PostingCheck postings(tables, reuse, &findings);
  FormCheck forms(store, tables, &findings);
  RecordIterator record(store, WalkOptions::BoundedMemory());
  for (; record.Valid(); record.Next()) {
    if (record.error() != 0) continue;
    postings.Visit(record.key(), *record.value().ptr);
    forms.Visit(record.key(), *record.value().ptr);
  }
  if (record.all_read() && !tables.IsIncomplete()) postings.CheckDocuments();
  postings.NoteUnusedWords();
  const int walk_error = tables.walk_error != 0 ? tables.walk_error : record.walk_error();
  const int error = CheckFile(store, walk_error, &findings);
  return {findings.faults(), findings.notes(), StoreError{error}};
}

CheckResult CheckIndex(Database& store, const TakeLine& report) {
  return CheckIndexWithFindings(store, AsLines(report));
}

std::int64_t CheckStructure(const Database& store, const TakeLine& report) {
  return CheckStructureWithFindings(store, AsLines(report));
}

}  // namespace kestan
