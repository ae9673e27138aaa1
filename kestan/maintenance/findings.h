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

// Each kind has one severity.
enum class FindingKind : std::uint8_t {
  // Of a check. The key is that of a record, or kWholeFile.
  kCheckFault,
  kCheckNote,

  // Of a repair, one for each document. The key is the document's name.
  kSaved,         // nothing of it is seen to be missing; there is no text
  kWordsMissing,  // positions of its text have no word
  kHalfWritten,   // its words had not all been written
  kLost,          // only its name was found
  kLostCode,      // only words of it were found; the key is its code, in decimal digits

  // Of a repair: what else was restored or dropped. All are notes.
  kRepairNote,  // the key is that of a record
  kDropped,     // the key is that of a record, which the new index does not have; there is no text
  kFileNote,    // the key is kWholeFile

  // Of a repair: why there is no new index. The key is a path, the text is the reason.
  kCannotRead,   // the damaged file
  kCannotWrite,  // the new file
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

using TakeFinding = std::function<void(const Finding& finding)>;

// Hands the line of `finding` to `take`, as CheckIndex() and RepairIndex() would. In a line, bytes
// of the key that are not printable ASCII, and backslashes, are spelled \xHH.
KESTAN_EXPORT void ReportAsLine(const Finding& finding, const TakeLine& take);

}  // namespace kestan

#endif  // KESTAN_MAINTENANCE_FINDINGS_H_
