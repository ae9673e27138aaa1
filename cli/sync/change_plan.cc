#include "cli/sync/change_plan.h"

#include <algorithm>
#include <utility>

#include "cli/files/paths.h"

namespace kestan_cli {
namespace {

std::string ContentKey(const Fingerprint& fingerprint) {
  return std::to_string(fingerprint.state.bytes) + " " + fingerprint.hash;
}

template <typename Named>
auto FindName(const std::vector<Named>& all, const std::string& name) {
  return std::lower_bound(
      all.begin(), all.end(), name,
      [](const Named& left, const std::string& right) { return left.name < right; });
}

bool HasName(const std::vector<FoundFile>& files, const std::string& name) {
  const auto found = FindName(files, name);
  return found != files.end() && found->name == name;
}

void AddFile(const FoundFile& file, const IndexedDocument* document, ChangePlan* plan) {
  Candidate candidate{file, document != nullptr, std::nullopt};
  if (document != nullptr) candidate.fingerprint = document->fingerprint;
  const bool is_known = candidate.fingerprint.has_value();
  if (!plan->all && is_known && candidate.fingerprint->state == file.state) {
    ++plan->unchanged;
    return;
  }
  plan->bytes_to_read += file.state.bytes;
  plan->to_read.push_back(std::move(candidate));
}

}  // namespace

void VanishedDocuments::Add(const IndexedDocument& document) {
  names_.insert(document.name);
  if (!document.fingerprint.has_value()) return;
  by_content_.emplace(ContentKey(*document.fingerprint), document);
}

const IndexedDocument* VanishedDocuments::Find(
    const Fingerprint& fingerprint,
    const std::function<bool(const IndexedDocument&)>& is_preferred) const {
  const auto [first, last] = by_content_.equal_range(ContentKey(fingerprint));
  if (first == last) return nullptr;
  const auto found =
      std::find_if(first, last, [&](const auto& content) { return is_preferred(content.second); });
  return found != last ? &found->second : &first->second;
}

void VanishedDocuments::Take(const IndexedDocument& document) {
  names_.erase(document.name);
  const auto [first, last] = by_content_.equal_range(ContentKey(*document.fingerprint));
  by_content_.erase(
      std::find_if(first, last, [&](const auto& content) { return &content.second == &document; }));
}

ChangePlan PlanChanges(const std::vector<FoundFile>& files,
                       const std::vector<IndexedDocument>& documents,
                       const std::set<std::string>& roots,
                       const std::function<bool(const std::string&)>& has_vanished, bool all) {
  ChangePlan plan;
  plan.all = all;
  for (const FoundFile& file : files) {
    const auto document = FindName(documents, file.name);
    const bool is_indexed = document != documents.end() && document->name == file.name;
    AddFile(file, is_indexed ? &*document : nullptr, &plan);
  }
  for (const IndexedDocument& document : documents) {
    const bool gone = !HasName(files, document.name) && IsBelow(document.name, roots) &&
                      has_vanished(document.name);
    if (gone) plan.vanished.Add(document);
  }
  return plan;
}

}  // namespace kestan_cli
