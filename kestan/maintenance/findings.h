// SPDX-License-Identifier: GPL-3.0-or-later
// What a check or a repair finds, as values.
#ifndef KESTAN_MAINTENANCE_FINDINGS_H_
#define KESTAN_MAINTENANCE_FINDINGS_H_

#include <kestan/maintenance/lines.h>
#include <kestan/storage/export.h>

#include <cstdint>
#include <functional>
#include <string_view>

namespace kestan {

enum class Severity : std::uint8_t {
  kInfo,   // nothing is wrong
  kNote,   // harms nothing, but may be worth a look
  kFault,  // something is wrong, or lost
};

// Each kind has one severity, whatever its text says.
enum class FindingKind : std::uint8_t {
  // Of a check. The key is that of a record, or kWholeFile.
  kCheckFault,  // kFault: the engine never writes this, or answers wrongly for it
  kCheckNote,   // kNote

  // Of a repair, one for each document. The key is the document's name.
  kSaved,         // kInfo: nothing of it is seen to be missing; there is no text
  kWordsMissing,  // kFault: positions of its text have no word
  kHalfWritten,   // kFault: its words had not all been written
  kLost,          // kFault: only its name was found
  kLostCode,      // kFault: only words of it were found; the key is its code, in decimal digits

  // Of a repair: what else was restored or dropped.
  kRepairNote,  // kNote: the key is that of a record
  kDropped,     // kNote: the new index does not have the record of the key; there is no text
  kFileNote,    // kNote: the key is kWholeFile

  // Of a repair: why there is no new index. The key is a path, the text is the reason.
  kCannotRead,   // kFault: the damaged file
  kCannotWrite,  // kFault: the new file

  // Of a check: positions of the text of a document have no word. The key is that of its record.
  kCheckWordsMissing,  // kFault
};

// Stands for a key in findings about the index as a whole. No record has this key.
inline constexpr std::string_view kWholeFile = "index file";

// Both texts are lent for the call that hands out the finding.
struct Finding {
  Severity severity;
  FindingKind kind;
  std::string_view key;   // bytes as they are in the file
  std::string_view text;  // printable ASCII
};

// Takes one finding. A check or a repair calls it while it works, on the thread that it runs on,
// once for each finding. An empty function is not called: findings are only counted.
//
//   Order       A check hands out what it finds as it goes through the file, and errors of the file
//               itself last. A repair hands out its notes first, then one finding for each
//               document. A repair that fails ends with kCannotRead or kCannotWrite.
//   Allowed     to copy what it needs of the finding, whose texts do not outlive the call. Not to
//               use the store that is checked: that would lead its walk elsewhere.
//   Exceptions  pass through and end the check or the repair. A repair then leaves an unfinished
//               new file behind.
using TakeFinding = std::function<void(const Finding& finding)>;

// Hands the line of `finding` to `take`, as CheckIndex() and RepairIndex() would. In a line, bytes
// of the key that are not printable ASCII, and backslashes, are spelled \xHH.
KESTAN_EXPORT void ReportAsLine(const Finding& finding, const TakeLine& take);

}  // namespace kestan

#endif  // KESTAN_MAINTENANCE_FINDINGS_H_
