#include "cli/sync/mailbox_run.h"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include "cli/console/interruption.h"
#include "cli/extract/mail/mailbox.h"
#include "cli/files/skip.h"
#include "cli/files/stable_file.h"

namespace kestan_cli {
namespace {

// What to do with one message.
struct Step {
  enum class Kind { kKeep, kMove, kAdd };
  Kind kind = Kind::kKeep;
  std::string name;
  Fingerprint fingerprint;
  const KnownDocument* known = nullptr;  // of that name
  std::string from;                      // what is moved, or has the user's lines
  Document document;
};

class MailboxRun {
 public:
  MailboxRun(const Candidate& candidate, const MailboxTask& task)
      : candidate_(candidate), task_(task) {
    for (const KnownDocument& part : candidate.parts) {
      by_name_[part.name] = &part;
      by_hash_[part.fingerprint->hash] = &part;
    }
  }

  void Run() {
    StableFile file(candidate_.file.name);
    const PieceSource source = [&] {
      std::string_view piece;
      return file.Read(&piece) ? piece : std::string_view();
    };
    Mailbox mailbox(source, static_cast<std::size_t>(task_.rules.max_bytes));
    for (MailboxMessage message; mailbox.Next(&message);) {
      Interruption::Check();
      ApplyWaiting(std::nullopt);
      Take(std::move(message));
    }
    file.Finish();
    ApplyWaiting(has_failed_ ? std::nullopt : std::optional(file.state()));
    RemoveOthers();
  }

 private:
  void Take(MailboxMessage message) {
    const std::string& path = candidate_.file.name;
    const std::string name = path + "#" + std::to_string(message.number);
    seen_.insert(name);
    try {
      if (message.is_too_large) throw SkipFile(SkipKind::kTooLarge, "a message that is too large");
      LoadedFile file = MessageOf(name, path, message.offset, std::move(message.bytes));
      if (!IsReadByName(name, file.head, task_.rules)) {
        file.fingerprint.reading = ReadingDigits(name, file.head, task_.rules);
      }
      waiting_ = Decide(std::move(file));
    } catch (const SkipFile& skip) {
      has_failed_ = true;
      task_.report->skips.push_back({name, skip.kind(), skip.what()});
    }
  }

  Step Decide(LoadedFile file) {
    Step step;
    step.name = file.name;
    step.fingerprint = file.fingerprint;
    const auto found = by_name_.find(file.name);
    step.known = found != by_name_.end() ? found->second : nullptr;
    const auto is_same = [&](const KnownDocument& document) {
      return HaveSameContent(*document.fingerprint, file.fingerprint) &&
             IsReadAlike(file, document.name, *document.fingerprint, task_.rules);
    };
    if (!task_.all && step.known != nullptr && is_same(*step.known)) {
      step.fingerprint.mail = step.known->fingerprint->mail;
      return step;
    }
    const auto same_hash = by_hash_.find(file.fingerprint.hash);
    if (same_hash != by_hash_.end()) step.from = same_hash->second->name;
    const bool may_move = !task_.all && step.known == nullptr && step.from.empty();
    const KnownDocument* const moved =
        may_move ? task_.vanished->Find(file.fingerprint, is_same) : nullptr;
    if (moved != nullptr && is_same(*moved)) {
      step.kind = Step::Kind::kMove;
      step.from = moved->name;
      step.fingerprint.mail = moved->fingerprint->mail;
      task_.vanished->Take(*moved);
      return step;
    }
    step.kind = Step::Kind::kAdd;
    step.document = DocumentOf(std::move(file), task_.rules);
    step.fingerprint.mail = step.document.mail;
    return step;
  }

  // Carries out the last step. `container` is the state of the mailbox, if this message is to
  // remember it.
  void ApplyWaiting(const std::optional<FileState>& container) {
    if (!waiting_.has_value()) return;
    Step step = std::move(*waiting_);
    waiting_.reset();
    step.fingerprint.container = container;
    IndexReport& report = *task_.report;
    if (step.kind == Step::Kind::kKeep) {
      ++report.unchanged;
      const Fingerprint& known = *step.known->fingerprint;
      const bool is_as_known =
          known.offset == step.fingerprint.offset && known.container == container;
      if (!is_as_known) task_.change->UpdateFingerprint(step.name, step.fingerprint);
    } else if (step.kind == Step::Kind::kMove) {
      ++report.moved;
      task_.change->Move(step.from, step.name, step.fingerprint);
    } else {
      ++(step.known != nullptr ? report.updated : report.added);
      if (!step.document.note.empty()) report.notes.push_back({step.name, step.document.note});
      task_.change->AddPart(step.name, std::move(step.document), step.fingerprint, step.from);
    }
  }

  void RemoveOthers() {
    for (const KnownDocument& part : candidate_.parts) {
      if (seen_.count(part.name) != 0) continue;
      task_.change->Remove(part.name);
      ++task_.report->removed;
    }
    if (!candidate_.is_indexed) return;
    task_.change->Remove(candidate_.file.name);
    ++task_.report->removed;
  }

  const Candidate& candidate_;
  const MailboxTask& task_;
  std::map<std::string, const KnownDocument*> by_name_;
  std::map<std::string, const KnownDocument*> by_hash_;
  std::set<std::string> seen_;
  std::optional<Step> waiting_;
  bool has_failed_ = false;
};

}  // namespace

void CarryOutMailbox(const Candidate& candidate, const MailboxTask& task) {
  MailboxRun(candidate, task).Run();
}

}  // namespace kestan_cli
