#include "cli/sync/index_run.h"

#include <optional>
#include <utility>

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

// Reads a file and decides what to do with it.
//   Throws   SkipFile.
Decision Decide(const Candidate& candidate, const ReadingRules& rules, bool all,
                VanishedDocuments* vanished) {
  LoadedFile loaded = LoadFile(candidate.file.name, rules);
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
    return decision;
  }
  const auto is_preferred = [&](const IndexedDocument& document) {
    return is_read_alike(document.name, *document.fingerprint);
  };
  const IndexedDocument* const moved =
      candidate.is_indexed || all ? nullptr : vanished->Find(loaded.fingerprint, is_preferred);
  if (moved != nullptr && is_preferred(*moved)) {
    decision.kind = Decision::Kind::kMove;
  } else {
    decision.document = DocumentOf(std::move(loaded), rules);
  }
  if (moved != nullptr) {
    decision.moved_from = moved->name;
    vanished->Take(*moved);
  }
  return decision;
}

void Apply(const Candidate& candidate, const Decision& decision, IndexWriter& writer,
           IndexReport* report) {
  const std::string& name = candidate.file.name;
  const bool is_moved = !decision.moved_from.empty();
  if (is_moved) MoveDocument(writer.index(), decision.moved_from, name);
  if (decision.kind == Decision::Kind::kAdd) {
    writer.batch().Add(name, decision.document, decision.fingerprint);
    ++(candidate.is_indexed || is_moved ? report->updated : report->added);
    if (!decision.document.note.empty()) report->notes.push_back({name, decision.document.note});
    return;
  }
  writer.batch().UpdateFingerprint(name, decision.fingerprint);
  ++(is_moved ? report->moved : report->unchanged);
}

}  // namespace

unsigned long CountCodesNeeded(const ChangePlan& plan, const ReadingRules& rules,
                               Progress& progress) {
  VanishedDocuments vanished = plan.vanished;
  unsigned long count = 0;
  for (const Candidate& candidate : plan.to_read) {
    try {
      const Decision decision = Decide(candidate, rules, plan.all, &vanished);
      if (decision.kind == Decision::Kind::kAdd) ++count;
    } catch (const SkipFile&) {
      // It takes no code.
    }
    progress.Advance(candidate.file.state.bytes);
  }
  return count;
}

void CarryOut(ChangePlan plan, const ReadingRules& rules, bool prune, IndexWriter& writer,
              Progress& progress, IndexReport* report) {
  report->unchanged += plan.unchanged;
  for (const Candidate& candidate : plan.to_read) {
    std::optional<Decision> decision;
    try {
      decision = Decide(candidate, rules, plan.all, &plan.vanished);
    } catch (const SkipFile& skip) {
      report->skips.push_back({candidate.file.name, skip.kind(), skip.what()});
    }
    if (decision.has_value()) Apply(candidate, *decision, writer, report);
    progress.Advance(candidate.file.state.bytes);
  }
  if (!prune) return;
  for (const std::string& name : plan.vanished.names()) {
    RemoveDocument(writer.index(), name);
    ++report->removed;
  }
}

}  // namespace kestan_cli
