#include "index_run.h"

#include <optional>
#include <utility>

namespace kestan_cli {
namespace {

// What is to become of a file.
struct Decision {
  enum class Kind { kRenew, kMove, kAdd };
  Kind kind = Kind::kAdd;
  Fingerprint fingerprint;
  std::string moved_from;
  Document document;
};

// Reads a file and finds out what to do with it.
//   Throws   SkipFile.
Decision Decide(const Candidate& candidate, const ReadingRules& rules, bool all,
                VanishedDocuments* vanished) {
  LoadedFile loaded = LoadFile(candidate.file.name, rules);
  Decision decision;
  decision.fingerprint = loaded.fingerprint;
  const bool is_same = candidate.fingerprint.has_value() &&
                       HaveSameContent(*candidate.fingerprint, loaded.fingerprint);
  if (is_same && !all) {
    decision.kind = Decision::Kind::kRenew;
    return decision;
  }
  const std::optional<std::string> moved_from =
      candidate.is_indexed || all ? std::nullopt : vanished->Take(loaded.fingerprint);
  if (moved_from.has_value()) {
    decision.kind = Decision::Kind::kMove;
    decision.moved_from = *moved_from;
    return decision;
  }
  decision.document = DocumentOf(std::move(loaded), rules);
  return decision;
}

void Apply(const Candidate& candidate, const Decision& decision, IndexWriter& writer,
           IndexReport* report) {
  const std::string& name = candidate.file.name;
  if (decision.kind == Decision::Kind::kAdd) {
    writer.adder().Add(name, decision.document, decision.fingerprint);
    ++(candidate.is_indexed ? report->updated : report->added);
    return;
  }
  if (decision.kind == Decision::Kind::kMove)
    MoveDocument(writer.index(), decision.moved_from, name);
  writer.adder().Renew(name, decision.fingerprint);
  ++(decision.kind == Decision::Kind::kMove ? report->moved : report->unchanged);
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
      // Left out, so it takes none.
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
    RemoveDocument(writer.index().engine(), name);
    ++report->removed;
  }
}

}  // namespace kestan_cli
