// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/maintenance/repair/documents.h>

#include <algorithm>
#include <tuple>

namespace kestan {
namespace {

// Returns the highest code of the names plus 1.
std::size_t EndOfCodes(const Vector<NameCandidate>& names) {
  std::size_t end = 0;
  for (const NameCandidate& name : names) end = std::max(end, std::size_t{name.code} + 1);
  return end;
}

class Resolver {
 public:
  // Borrows `names` and `retired`.
  Resolver(Vector<DocumentCandidate> documents, const Vector<NameCandidate>& names,
           const CodeSet& retired)
      : candidates_(std::move(documents)), name_of_(EndOfCodes(names)), retired_(retired) {
    std::sort(candidates_.begin(), candidates_.end(),
              [](const auto& left, const auto& right) { return left.name < right.name; });
    is_settled_.assign(candidates_.size(), 0);
    for (const NameCandidate& name : names) {
      if (IsRetired(name.is_current, name.code) || name.code == 0) continue;
      name_of_[name.code] = &name;
      by_name_.push_back(&name);
    }
    std::sort(by_name_.begin(), by_name_.end(),
              [](const NameCandidate* left, const NameCandidate* right) {
                return std::make_tuple(left->name, !left->is_current, left->code) <
                       std::make_tuple(right->name, !right->is_current, right->code);
              });
  }

  RepairedDocuments Run() {
    for (std::size_t i = 0; i < candidates_.size(); ++i) TakeAgreed(i);
    for (const std::size_t i : InOrderOfTrust()) TakeByDocumentRecord(i);
    for (const NameCandidate* name : by_name_) TakeByNameRecord(*name);
    for (std::size_t i = 0; i < candidates_.size(); ++i) {
      if (is_settled_[i] == 0) Lose(candidates_[i]);
    }
    std::sort(result_.documents.begin(), result_.documents.end(),
              [](const auto& left, const auto& right) { return left.name < right.name; });
    return std::move(result_);
  }

 private:
  bool IsRetired(bool is_current, Code code) const { return !is_current && retired_[code]; }

  const NameCandidate* NameOf(Code code) const {
    return code < name_of_.size() ? name_of_[code] : nullptr;
  }

  void Add(std::size_t candidate) {
    const DocumentCandidate& document = candidates_[candidate];
    result_.documents.push_back({document.name, document.timestamp, document.code});
    result_.codes.set(document.code);
    is_settled_[candidate] = 1;
  }

  void TakeAgreed(std::size_t i) {
    const DocumentCandidate& document = candidates_[i];
    if (document.code == 0 || IsRetired(document.is_current, document.code)) return;
    const NameCandidate* const name = NameOf(document.code);
    if (name != nullptr && name->name == document.name) Add(i);
  }

  Vector<std::size_t> InOrderOfTrust() const {
    Vector<std::size_t> order;
    for (std::size_t i = 0; i < candidates_.size(); ++i) {
      if (is_settled_[i] == 0) order.push_back(i);
    }
    std::stable_sort(order.begin(), order.end(), [this](std::size_t left, std::size_t right) {
      return std::make_tuple(candidates_[left].is_current, candidates_[left].timestamp) >
             std::make_tuple(candidates_[right].is_current, candidates_[right].timestamp);
    });
    return order;
  }

  void TakeByDocumentRecord(std::size_t i) {
    const DocumentCandidate& document = candidates_[i];
    if (document.code == 0 || IsRetired(document.is_current, document.code)) return;
    if (result_.codes[document.code] || IsNamedByOther(document)) return;
    const NameCandidate* const name = NameOf(document.code);
    if (name != nullptr &&
        !(document.is_current && FindCandidate(name->name) == candidates_.size()))
      return;
    Add(i);
  }

  // Returns whether a name record of another code gives the document that code.
  bool IsNamedByOther(const DocumentCandidate& document) const {
    const auto found = std::lower_bound(
        by_name_.begin(), by_name_.end(), document.name,
        [](const NameCandidate* name, std::string_view wanted) { return name->name < wanted; });
    return found != by_name_.end() && (*found)->name == document.name;
  }

  // Returns the index of the document record of `name`; the number of all if there is none.
  std::size_t FindCandidate(std::string_view name) const {
    const auto found =
        std::lower_bound(candidates_.begin(), candidates_.end(), name,
                         [](const DocumentCandidate& candidate, std::string_view wanted) {
                           return candidate.name < wanted;
                         });
    if (found == candidates_.end() || found->name != name) return candidates_.size();
    return static_cast<std::size_t>(found - candidates_.begin());
  }

  void TakeByNameRecord(const NameCandidate& name) {
    if (result_.codes[name.code]) return;
    const std::size_t candidate = FindCandidate(name.name);
    if (candidate != candidates_.size() && is_settled_[candidate] != 0) return;
    if (!result_.documents.empty() && result_.documents.back().name == name.name) return;
    if (candidate != candidates_.size()) is_settled_[candidate] = 1;
    result_.documents.push_back({name.name, 0, name.code});
    result_.codes.set(name.code);
  }

  void Lose(const DocumentCandidate& document) {
    if (IsRetired(document.is_current, document.code)) return;
    result_.lost.push_back({document.name, document.code == 0 ? "its record is damaged"
                                                              : "another document has its code"});
  }

  Vector<DocumentCandidate> candidates_;
  Vector<char> is_settled_;
  Vector<const NameCandidate*> name_of_;  // by code
  Vector<const NameCandidate*> by_name_;
  const CodeSet& retired_;
  RepairedDocuments result_;
};

}  // namespace

RepairedDocuments ResolveDocuments(DocumentCandidates candidates, const CodeSet& retired) {
  return Resolver(std::move(candidates.documents), candidates.names, retired).Run();
}

}  // namespace kestan
