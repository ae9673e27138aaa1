// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/maintenance/report/findings.h>

#include <kestan/text/escape.h>

namespace kestan {
namespace {

// What a line has before the key and between key and text, and whether it has a key.
struct LineForm {
  const char* start;
  const char* middle;
  bool has_key = true;
};

LineForm FormOf(FindingKind kind) {
  switch (kind) {
    case FindingKind::kCheckFault:
    case FindingKind::kCheckWordsMissing:
    case FindingKind::kCannotRead:
    case FindingKind::kCannotWrite:
      return {"", ": "};
    case FindingKind::kCheckNote:
      return {"", ": note: "};
    case FindingKind::kSaved:
      return {"saved: ", ""};
    case FindingKind::kWordsMissing:
      return {"words missing: ", ": "};
    case FindingKind::kHalfWritten:
      return {"half-written: ", ": "};
    case FindingKind::kLost:
      return {"lost: ", ": "};
    case FindingKind::kLostCode:
      return {"lost: code ", ": "};
    case FindingKind::kRepairNote:
      return {"note: ", ": "};
    case FindingKind::kDropped:
      return {"note: dropped: ", ""};
    default:
      return {"note: ", "", false};
  }
}

}  // namespace

Severity SeverityOf(FindingKind kind) {
  switch (kind) {
    case FindingKind::kSaved:
      return Severity::kInfo;
    case FindingKind::kCheckNote:
    case FindingKind::kRepairNote:
    case FindingKind::kDropped:
    case FindingKind::kFileNote:
      return Severity::kNote;
    default:
      return Severity::kFault;
  }
}

void Findings::HandOut(FindingKind kind, std::string_view key,
                       std::initializer_list<TextPart> parts) {
  const Severity severity = SeverityOf(kind);
  if (severity == Severity::kFault) ++faults_;
  if (severity == Severity::kNote) ++notes_;
  if (!take_) return;
  String text;
  for (const TextPart& part : parts) text += part.Text();
  take_({severity, kind, key, text});
}

void ReportAsLine(const Finding& finding, const TakeLine& take) {
  if (!take) return;
  const LineForm form = FormOf(finding.kind);
  String line = form.start;
  if (form.has_key) line += Escaped(finding.key);
  line += form.middle;
  line += finding.text;
  take(line);
}

TakeFinding AsLines(const TakeLine& take) {
  if (!take) return {};
  return [&take](const Finding& finding) { ReportAsLine(finding, take); };
}

}  // namespace kestan
