#include <kestan/maintenance/repair/document_repair.h>

#include <algorithm>
#include <tuple>

namespace kestan {
namespace {

class Resolver {
 public:
  Resolver(Vector<DocumentClaim> documents, const Vector<NameClaim>& names, const CodeSet& retired)
      : claims_(std::move(documents)), name_of_(EndOfCodes(names)), retired_(retired) {
    std::sort(claims_.begin(), claims_.end(),
              [](const auto& left, const auto& right) { return left.name < right.name; });
    is_settled_.assign(claims_.size(), 0);
    for (const NameClaim& name : names) {
      if (IsRetired(name.is_current, name.code) || name.code == 0) continue;
      name_of_[name.code] = &name;
      by_name_.push_back(&name);
    }
    std::sort(by_name_.begin(), by_name_.end(), [](const NameClaim* left, const NameClaim* right) {
      return std::make_tuple(left->name, !left->is_current, left->code) <
             std::make_tuple(right->name, !right->is_current, right->code);
    });
  }

  RepairedDocuments Run() {
    for (std::size_t i = 0; i < claims_.size(); ++i) TakeAgreed(i);
    for (const std::size_t i : InOrderOfTrust()) TakeByDocumentRecord(i);
    for (const NameClaim* name : by_name_) TakeByNameRecord(*name);
    for (std::size_t i = 0; i < claims_.size(); ++i) {
      if (is_settled_[i] == 0) Lose(claims_[i]);
    }
    std::sort(result_.documents.begin(), result_.documents.end(),
              [](const auto& left, const auto& right) { return left.name < right.name; });
    return std::move(result_);
  }

 private:
  bool IsRetired(bool is_current, Code code) const { return !is_current && retired_[code]; }

  const NameClaim* NameOf(Code code) const {
    return code < name_of_.size() ? name_of_[code] : nullptr;
  }

  void Add(std::size_t claim) {
    const DocumentClaim& document = claims_[claim];
    result_.documents.push_back({document.name, document.timestamp, document.code});
    is_used_.set(document.code);
    is_settled_[claim] = 1;
  }

  void TakeAgreed(std::size_t i) {
    const DocumentClaim& document = claims_[i];
    if (document.code == 0 || IsRetired(document.is_current, document.code)) return;
    const NameClaim* const name = NameOf(document.code);
    if (name != nullptr && name->name == document.name) Add(i);
  }

  Vector<std::size_t> InOrderOfTrust() const {
    Vector<std::size_t> order;
    for (std::size_t i = 0; i < claims_.size(); ++i) {
      if (is_settled_[i] == 0) order.push_back(i);
    }
    std::stable_sort(order.begin(), order.end(), [this](std::size_t left, std::size_t right) {
      return std::make_tuple(claims_[left].is_current, claims_[left].timestamp) >
             std::make_tuple(claims_[right].is_current, claims_[right].timestamp);
    });
    return order;
  }

  void TakeByDocumentRecord(std::size_t i) {
    const DocumentClaim& document = claims_[i];
    if (document.code == 0 || IsRetired(document.is_current, document.code)) return;
    if (is_used_[document.code] || IsNamedByOther(document)) return;
    const NameClaim* const name = NameOf(document.code);
    if (name != nullptr && !(document.is_current && FindClaim(name->name) == claims_.size()))
      return;
    Add(i);
  }

  // A name record of another code says that the document has that one.
  bool IsNamedByOther(const DocumentClaim& document) const {
    const auto found = std::lower_bound(
        by_name_.begin(), by_name_.end(), document.name,
        [](const NameClaim* name, std::string_view wanted) { return name->name < wanted; });
    return found != by_name_.end() && (*found)->name == document.name;
  }

  // Returns the index of the document record of `name`; the number of all if there is none.
  std::size_t FindClaim(std::string_view name) const {
    const auto found = std::lower_bound(
        claims_.begin(), claims_.end(), name,
        [](const DocumentClaim& claim, std::string_view wanted) { return claim.name < wanted; });
    if (found == claims_.end() || found->name != name) return claims_.size();
    return static_cast<std::size_t>(found - claims_.begin());
  }

  void TakeByNameRecord(const NameClaim& name) {
    if (is_used_[name.code]) return;
    const std::size_t claim = FindClaim(name.name);
    if (claim != claims_.size() && is_settled_[claim] != 0) return;
    if (!result_.documents.empty() && result_.documents.back().name == name.name) return;
    if (claim != claims_.size()) is_settled_[claim] = 1;
    result_.documents.push_back({name.name, 0, name.code});
    is_used_.set(name.code);
  }

  void Lose(const DocumentClaim& document) {
    if (IsRetired(document.is_current, document.code)) return;
    result_.lost.push_back({document.name, document.code == 0 ? "its record is damaged"
                                                              : "another document has its code"});
  }

  Vector<DocumentClaim> claims_;
  Vector<char> is_settled_;
  Vector<const NameClaim*> name_of_;  // by code
  Vector<const NameClaim*> by_name_;
  const CodeSet& retired_;
  CodeSet is_used_;
  RepairedDocuments result_;
};

}  // namespace

std::size_t EndOfCodes(const Vector<NameClaim>& names) {
  std::size_t end = 0;
  for (const NameClaim& name : names) end = std::max(end, std::size_t{name.code} + 1);
  return end;
}

RepairedDocuments RepairDocuments(Vector<DocumentClaim> documents, const Vector<NameClaim>& names,
                                  const CodeSet& retired) {
  return Resolver(std::move(documents), names, retired).Run();
}

}  // namespace kestan
