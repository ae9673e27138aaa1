// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/sync/container_run.h"

#include <sys/stat.h>

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include "cli/console/interruption.h"
#include "cli/extract/mail/mailbox.h"
#include "cli/extract/packed/archive.h"
#include "cli/files/skip.h"
#include "cli/files/stable_file.h"
#include "cli/index/index_errors.h"

namespace kestan_cli {
namespace {

// What to do with one part of a container.
struct Step {
  enum class Kind { kKeep, kMove, kAdd };
  Kind kind = Kind::kKeep;
  std::string name;
  Fingerprint fingerprint;
  const KnownDocument* known = nullptr;  // of that name
  std::string from;                      // what is moved, or has the user's lines
  Document document;
};

bool IsPathOfSomething(const std::string& name) {
  struct stat status {};
  return lstat(name.c_str(), &status) == 0;
}

constexpr int kMaxMarks = 16;  // "#" in a name, where others have the shorter ones

// The parts of one container, as they are found.
class Parts {
 public:
  // `keeps_names` says whether the name of a part stays the same when its content changes.
  Parts(const Candidate& candidate, const ContainerTask& task, bool keeps_names)
      : candidate_(candidate), task_(task), keeps_names_(keeps_names) {
    for (const KnownDocument& part : candidate.parts) {
      by_name_[part.name] = &part;
      by_hash_[part.fingerprint->hash] = &part;
    }
  }

  // Takes the part called `inner`, which `load` reads under the name that it gets.
  void Take(const std::string& inner,
            const std::function<LoadedFile(const std::string& name)>& load) {
    Interruption::Check();
    const std::string name = NameOf(inner);
    if (name.empty()) return;
    try {
      Apply(Decide(load(name)));
    } catch (const SkipFile& skip) {
      Report(name, skip.kind(), skip.what(), skip.remedy());
    }
  }

  // Leaves out the part called `inner`. What the index holds of it, and of parts of it, stays.
  void Skip(const std::string& inner, SkipKind kind, const std::string& reason) {
    const std::size_t path_bytes = candidate_.file.name.size();
    std::string name = candidate_.file.name + "#" + inner;
    Report(name, kind, reason);
    for (int i = 0; i < kMaxMarks; ++i) {
      KeepAll(name);
      name.insert(path_bytes, 1, '#');
    }
  }

  // Carries out the rest. `state` is that of the container.
  void Finish(const FileState& state) {
    Remember(has_failed_ ? std::nullopt : std::optional(state));
    RemoveOthers();
  }

  // Leaves it at what was carried out, when the container cannot be read to its end.
  void Abandon() { Remember(std::nullopt); }

 private:
  void Report(const std::string& name, SkipKind kind, const std::string& reason,
              const std::string& remedy = "") {
    has_failed_ = has_failed_ || IsFailure(kind);
    task_.report->skips.push_back({name, kind, reason, remedy});
  }

  // Keeps what is known as `name`, and as parts of that.
  void KeepAll(const std::string& name) {
    for (auto known = by_name_.lower_bound(name); known != by_name_.end(); ++known) {
      const std::string& found = known->first;
      if (found.compare(0, name.size(), name) != 0) return;
      if (found.size() == name.size() || found[name.size()] == '#') seen_.insert(found);
    }
  }

  // Returns whether something else has the name.
  bool IsTaken(const std::string& name) const {
    if (seen_.count(name) != 0 || IsPathOfSomething(name)) return true;
    if (by_name_.count(name) != 0 || task_.change->before() == nullptr) return false;
    const auto found = task_.change->before()->FindDocument(name);
    if (found.status().code() == kestan::search::StatusCode::kNotFound) return false;
    CheckStatus(found.status(), task_.change->path());
    return true;
  }

  // Returns the name of the document of `inner`; "" if it can have none.
  std::string NameOf(const std::string& inner) {
    constexpr std::size_t kMaxNameBytes = 4096;  // of a document
    std::string name = candidate_.file.name;
    const bool is_too_long = name.size() + kMaxMarks + inner.size() > kMaxNameBytes;
    if (is_too_long || inner.find('\n') != std::string::npos) {
      Skip(inner.substr(0, kMaxNameBytes / 2), SkipKind::kName,
           is_too_long ? "its name is too long" : "its name holds a line feed");
      return "";
    }
    for (int marks = 1; marks <= kMaxMarks; ++marks) {
      name += '#';
      if (IsTaken(name + inner)) continue;
      seen_.insert(name + inner);
      return name + inner;
    }
    Skip(inner, SkipKind::kName, "too many others have its name");
    return "";
  }

  Step Decide(LoadedFile file) {
    if (!IsReadByName(file.name, file.head, task_.rules)) {
      file.fingerprint.reading = ReadingDigits(file.name, file.head, task_.rules);
    }
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

  void Apply(Step step) {
    Remember(std::nullopt);
    IndexReport& report = *task_.report;
    if (step.kind == Step::Kind::kKeep) {
      ++report.unchanged;
    } else if (step.kind == Step::Kind::kMove) {
      ++report.moved;
      task_.change->Move(step.from, step.name, step.fingerprint);
    } else {
      ++(step.known != nullptr ? report.updated : report.added);
      if (!step.document.note.empty()) report.notes.push_back({step.name, step.document.note});
      task_.change->AddPart(step.name, std::move(step.document), step.fingerprint, NotedIn(step));
      step.document = {};
    }
    last_ = std::move(step);
  }

  // Has the document of the last step remember the state `container`, or none.
  void Remember(const std::optional<FileState>& container) {
    if (!last_.has_value()) return;
    Step step = std::move(*last_);
    last_.reset();
    step.fingerprint.container = container;
    if (step.kind == Step::Kind::kKeep) {
      const Fingerprint& known = *step.known->fingerprint;
      const bool is_as_known = known.offset == step.fingerprint.offset &&
                               known.state == step.fingerprint.state &&
                               known.container == container;
      if (!is_as_known) task_.change->UpdateFingerprint(step.name, step.fingerprint, step.name);
    } else if (container.has_value()) {
      const bool is_moved = step.kind == Step::Kind::kMove;
      task_.change->UpdateFingerprint(step.name, step.fingerprint,
                                      is_moved ? step.from : NotedIn(step));
    }
  }

  // Returns the document whose lines of the user go to the one that is added. A message is known
  // by its content alone, as its number may change; a member also by its name.
  std::string NotedIn(const Step& step) const {
    return step.from.empty() && keeps_names_ && step.known != nullptr ? step.name : step.from;
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
  const ContainerTask& task_;
  const bool keeps_names_;
  std::map<std::string, const KnownDocument*> by_name_;
  std::map<std::string, const KnownDocument*> by_hash_;
  std::set<std::string> seen_;
  std::optional<Step> last_;  // without its document
  bool has_failed_ = false;
};

// Takes the messages of a mailbox, each under `start` and its number.
void TakeMessages(const PieceSource& source, const std::string& start, const std::string& path,
                  const ReadingRules& rules, Parts* parts) {
  Mailbox mailbox(source, static_cast<std::size_t>(rules.max_bytes));
  for (MailboxMessage message; mailbox.Next(&message);) {
    parts->Take(start + std::to_string(message.number), [&](const std::string& name) {
      if (message.is_too_large) throw SkipFile(SkipKind::kTooLarge, "a message that is too large");
      return MessageOf(name, path, message.offset, std::move(message.bytes));
    });
  }
}

class ArchiveParts : public MemberVisitor {
 public:
  ArchiveParts(const Candidate& candidate, const ContainerTask& task, Parts* parts)
      : path_(candidate.file.name), rules_(task.rules), parts_(*parts) {}

  bool Wants(const std::string& /*name*/) override {
    Interruption::Check();
    return true;
  }

  std::string ReasonToSkip(const std::string& name, const std::string& before,
                           std::string_view piece) override {
    Interruption::Check();
    const bool is_binary = IsBinaryMember(path_ + "#" + name, before, piece, rules_.converters);
    return is_binary ? "binary file" : "";
  }

  bool Take(const std::string& name, std::string bytes, std::int64_t seconds) override {
    LoadedFile seen;
    seen.name = path_ + "#" + name;
    seen.head.packed = bytes.substr(0, kHeadBytes);
    ChooseReading(rules_.converters, &seen);
    if (IsReadAsMailbox(seen)) {
      TakeMessages(ArchiveBytesOf(std::string_view(bytes)).next, name + "#", path_, rules_,
                   &parts_);
    } else {
      parts_.Take(name, [&](const std::string& full_name) {
        LoadedFile member = MemberOf(full_name, path_, std::move(bytes), rules_);
        member.fingerprint.state.mtime_seconds = seconds;
        return member;
      });
    }
    return true;
  }

  void Skip(const std::string& name, SkipKind kind, const std::string& reason) override {
    parts_.Skip(name, kind, reason);
  }

 private:
  const std::string& path_;
  const ReadingRules& rules_;
  Parts& parts_;
};

}  // namespace

void CarryOutMailbox(const Candidate& candidate, const ContainerTask& task) {
  Parts parts(candidate, task, false);
  StableFile file(candidate.file.name);
  TakeMessages(ArchiveBytesOf(file).next, "", candidate.file.name, task.rules, &parts);
  file.Finish();
  parts.Finish(file.state());
}

void CarryOutArchive(const Candidate& candidate, const ContainerTask& task) {
  Parts parts(candidate, task, true);
  ArchiveParts visitor(candidate, task, &parts);
  StableFile file(candidate.file.name);
  const Converters& converters = task.rules.converters;
  ArchiveLimits limits;
  limits.max_member_bytes = task.rules.max_bytes;
  limits.is_archive = [&](const std::string& name, std::string_view head) {
    return IsReadAsArchive(name, head, converters);
  };
  try {
    ReadMembers(ArchiveBytesOf(file), limits, visitor);
    file.CheckUnchanged();
  } catch (const SkipFile&) {
    parts.Abandon();
    throw;
  }
  parts.Finish(file.state());
}

}  // namespace kestan_cli
