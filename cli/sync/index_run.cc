// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/sync/index_run.h"

#include <utility>

#include "cli/console/interruption.h"
#include "cli/files/skip.h"
#include "cli/sync/container_run.h"

namespace kestan_cli {
namespace {

// What to do with a file.
struct Decision {
  enum class Kind { kUpdateFingerprint, kMove, kAdd };
  Kind kind = Kind::kAdd;
  Fingerprint fingerprint;
  std::string moved_from;  // a document of the same bytes whose file has vanished; "" for none
  Document document;       // if it is to be added, under a name that it may have been moved to
};

// Decides what to do with a file that has been read.
//   Throws   SkipFile.
Decision Decide(const Candidate& candidate, LoadedFile loaded, const ReadingRules& rules, bool all,
                VanishedDocuments* vanished) {
  Decision decision;
  decision.fingerprint = loaded.fingerprint;
  const auto is_read_alike = [&](const std::string& name, const Fingerprint& fingerprint) {
    return IsReadAlike(loaded, name, fingerprint, rules);
  };
  const bool is_same = candidate.fingerprint.has_value() &&
                       HaveSameContent(*candidate.fingerprint, loaded.fingerprint) &&
                       is_read_alike(loaded.name, *candidate.fingerprint);
  if (is_same && !all) {
    decision.kind = Decision::Kind::kUpdateFingerprint;
    decision.fingerprint.mail = candidate.fingerprint->mail;
    return decision;
  }
  const auto is_preferred = [&](const KnownDocument& document) {
    return is_read_alike(document.name, *document.fingerprint);
  };
  const KnownDocument* const moved =
      candidate.is_indexed || all ? nullptr : vanished->Find(loaded.fingerprint, is_preferred);
  if (moved != nullptr && is_preferred(*moved)) {
    decision.kind = Decision::Kind::kMove;
    decision.fingerprint.mail = moved->fingerprint->mail;
  } else {
    decision.document = DocumentOf(std::move(loaded), rules);
    decision.fingerprint.mail = decision.document.mail;
  }
  if (moved != nullptr) {
    decision.moved_from = moved->name;
    vanished->Take(*moved);
  }
  return decision;
}

void Apply(const Candidate& candidate, Decision decision, IndexChange& change,
           IndexReport* report) {
  const std::string& name = candidate.file.name;
  const bool is_moved = !decision.moved_from.empty();
  switch (decision.kind) {
    case Decision::Kind::kUpdateFingerprint:
      change.UpdateFingerprint(name, decision.fingerprint, name);
      ++report->unchanged;
      return;
    case Decision::Kind::kMove:
      change.Move(decision.moved_from, name, decision.fingerprint);
      ++report->moved;
      return;
    case Decision::Kind::kAdd:
      break;
  }
  if (!decision.document.note.empty()) report->notes.push_back({name, decision.document.note});
  const std::string earlier = candidate.is_indexed ? name : decision.moved_from;
  change.Add(name, std::move(decision.document), decision.fingerprint, earlier);
  ++(candidate.is_indexed || is_moved ? report->updated : report->added);
}

// Reads a file and carries out what is to be done with it.
//   Throws   SkipFile.
void CarryOutOne(const Candidate& candidate, const ReadingRules& rules, bool all,
                 VanishedDocuments* vanished, IndexChange& change, IndexReport* report) {
  LoadedFile loaded = LoadFile(candidate.file.name, rules);
  const ContainerTask task{rules, all, vanished, &change, report};
  if (loaded.is_mailbox) return CarryOutMailbox(candidate, task);
  if (loaded.is_archive) return CarryOutArchive(candidate, task);
  Decision decision = Decide(candidate, std::move(loaded), rules, all, vanished);
  Interruption::Check();  // which ends converters too
  Apply(candidate, std::move(decision), change, report);
  // It was a mailbox or an archive, and is none any more.
  for (const KnownDocument& part : candidate.parts) change.Remove(part.name);
  report->removed += candidate.parts.size();
}

}  // namespace

void CarryOut(ChangePlan plan, const RunRules& rules, IndexChange& change, Progress& progress,
              IndexReport* report) {
  report->unchanged += plan.unchanged;
  for (const PartRename& rename : plan.renames) {
    change.Move(rename.from, rename.to, rename.fingerprint);
    ++report->moved;
  }
  for (const Candidate& candidate : plan.to_read) {
    const std::string& name = candidate.file.name;
    try {
      CarryOutOne(candidate, rules.reading(name), plan.all, &plan.vanished, change, report);
    } catch (const SkipFile& skip) {
      report->skips.push_back({name, skip.kind(), skip.what(), skip.remedy()});
    }
    Interruption::Check();  // which ends converters too
    progress.Advance(candidate.file.state.bytes);
  }
  for (const std::string& name : plan.vanished.names()) {
    if (!rules.prunes(plan.vanished.FileOf(name))) continue;
    change.Remove(name);
    ++report->removed;
  }
}

}  // namespace kestan_cli
