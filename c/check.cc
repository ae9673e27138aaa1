// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/search/check.h>

#include <string>
#include <utility>
#include <vector>

#include "c/input.h"

using kestan::c::Invalid;
using kestan::c::Status;
using kestan::search::CheckReport;
using kestan::search::IndexFinding;

struct kestan_report final : kestan::c::Handle {
  CheckReport report;
  std::size_t next = 0;
  kestan_finding view = {};
};

int kestan_check(kestan_report** out, const char* path, size_t path_length) {
  return kestan::c::HandOverOpened(out, [&](kestan_report& handle) {
    std::string folder;
    Status status = kestan::c::ReadPath(path, path_length, &folder);
    if (!status.ok()) return status;
    auto report = kestan::search::CheckIndex(folder);
    if (!report.ok()) return report.status();
    handle.report = std::move(*report);
    return Status();
  });
}

int kestan_report_next(const kestan_finding** out, kestan_report* report) {
  return kestan::c::Use(report, [&](kestan_report& live) -> int {
    if (out == nullptr) return live.Return(Invalid("the output is null"));
    if (live.next == live.report.findings.size()) return KESTAN_ITEROVER;
    const IndexFinding& finding = live.report.findings[live.next++];
    live.view = {finding.is_fault ? 1 : 0, finding.file.c_str(), finding.file.size(),
                 finding.key.c_str(),      finding.key.size(),   finding.text.c_str(),
                 finding.text.size()};
    *out = &live.view;
    return KESTAN_OK;
  });
}

int kestan_report_counts(uint64_t* faults, uint64_t* notes, kestan_report* report) {
  return kestan::c::Use(report, [&](kestan_report& live) -> int {
    if (faults != nullptr) *faults = live.report.faults;
    if (notes != nullptr) *notes = live.report.notes;
    return KESTAN_OK;
  });
}

void kestan_report_free(kestan_report* report) { kestan::c::Free(report); }
