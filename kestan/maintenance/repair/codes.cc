// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/maintenance/repair/codes.h>

#include <algorithm>

namespace kestan {
namespace {

template <typename Visit>
void ForEachCode(const std::optional<DBDatum>& list, Visit visit) {
  for (std::size_t i = 0; list && i < CountCodes(*list); ++i) visit(CodeAt(*list, i));
}

Code HighestCodeNamed(const DocumentCandidates& candidates, const SystemRecords& system) {
  Code highest = 0;
  const auto take = [&](Code code) { highest = std::max(highest, code); };
  for (const DocumentCandidate& document : candidates.documents) take(document.code);
  for (const NameCandidate& name : candidates.names) take(name.code);
  ForEachCode(system.reusable, take);
  ForEachCode(system.removed, take);
  return highest;
}

Code HighestCodeAgreed(const DocumentCandidates& candidates) {
  Vector<const NameCandidate*> names(std::size_t{kMaxCode} + 1);
  for (const NameCandidate& name : candidates.names) names[name.code] = &name;
  Code highest = 0;
  for (const DocumentCandidate& document : candidates.documents) {
    const NameCandidate* const name = names[document.code];
    if (name != nullptr && name->name == document.name) highest = std::max(highest, document.code);
  }
  return highest;
}

class Assignment {
 public:
  Assignment(const CodeSet& in_use, const CodeSet& retired)
      : retired_(retired), assigned_(in_use) {}

  AssignedCodes Run(const CodeSet& posted, const SystemRecords& system) {
    AssignedCodes codes;
    Vector<Code> removed;
    Vector<Code> reusable;
    AddListed(system.removed, &removed);
    for (std::size_t code = 1; code < posted.size(); ++code) {
      if (posted[code] && Add(static_cast<Code>(code), &removed)) codes.orphans.set(code);
    }
    AddListed(system.reusable, &reusable);
    const Code counter = HighestAssigned();
    for (Code code = 1; code < counter; ++code) Add(code, &reusable);
    if (counter != 0 || system.counter) codes.counter = counter;
    if (!reusable.empty() || system.reusable) codes.reusable = std::move(reusable);
    if (!removed.empty() || system.removed) codes.removed = std::move(removed);
    return codes;
  }

 private:
  //   Returns  whether the code was not assigned yet.
  bool Add(Code code, Vector<Code>* list) {
    if (assigned_[code]) return false;
    assigned_.set(code);
    list->push_back(code);
    return true;
  }

  // Keeps the order of the list, in which the engine hands out its codes.
  void AddListed(const std::optional<DBDatum>& found, Vector<Code>* list) {
    ForEachCode(found, [&](Code code) {
      if (retired_[code]) Add(code, list);
    });
  }

  Code HighestAssigned() const {
    Code code = kMaxCode;
    while (code > 0 && !assigned_[code]) --code;
    return code;
  }

  const CodeSet& retired_;
  CodeSet assigned_;
};

}  // namespace

Code HighestCode(const SystemRecords& system, const DocumentCandidates& candidates,
                 Code highest_posted) {
  const Code recorded = system.counter
                            ? DecodeCounter(*system.counter)
                            : std::max(HighestCodeNamed(candidates, system), highest_posted);
  return std::max(recorded, HighestCodeAgreed(candidates));
}

CodeSet RetiredCodes(const SystemRecords& system, Code highest) {
  CodeSet retired;
  const auto take = [&](Code code) {
    if (code != 0 && code <= highest) retired.set(code);
  };
  ForEachCode(system.reusable, take);
  ForEachCode(system.removed, take);
  return retired;
}

AssignedCodes AssignCodes(const CodeSet& in_use, const CodeSet& posted, const CodeSet& retired,
                          const SystemRecords& system) {
  return Assignment(in_use, retired).Run(posted, system);
}

}  // namespace kestan
