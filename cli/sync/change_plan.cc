#include "cli/sync/change_plan.h"

#include <algorithm>
#include <utility>

namespace kestan_cli {
namespace {

std::string ContentKey(const Fingerprint& fingerprint) {
  return std::to_string(fingerprint.state.bytes) + " " + fingerprint.hash;
}

void AddFile(const FoundFile& file, const KnownDocument* document, ChangePlan* plan) {
  const Fingerprint* const known =
      document != nullptr && document->fingerprint ? &*document->fingerprint : nullptr;
  if (!plan->all && known != nullptr && known->state == file.state) {
    ++plan->unchanged;
    return;
  }
  Candidate candidate{file, document != nullptr, std::nullopt};
  if (known != nullptr) candidate.fingerprint = *known;
  plan->bytes_to_read += file.state.bytes;
  plan->to_read.push_back(std::move(candidate));
}

}  // namespace

void VanishedDocuments::Add(const KnownDocument& document) {
  names_.insert(document.name);
  if (!document.fingerprint.has_value()) return;
  by_content_.emplace(ContentKey(*document.fingerprint), document);
}

const KnownDocument* VanishedDocuments::Find(
    const Fingerprint& fingerprint,
    const std::function<bool(const KnownDocument&)>& is_preferred) const {
  const auto [first, last] = by_content_.equal_range(ContentKey(fingerprint));
  if (first == last) return nullptr;
  const auto found =
      std::find_if(first, last, [&](const auto& content) { return is_preferred(content.second); });
  return found != last ? &found->second : &first->second;
}

void VanishedDocuments::Take(const KnownDocument& document) {
  names_.erase(document.name);
  const auto [first, last] = by_content_.equal_range(ContentKey(*document.fingerprint));
  by_content_.erase(
      std::find_if(first, last, [&](const auto& content) { return &content.second == &document; }));
}

ChangePlan PlanChanges(const std::vector<FoundFile>& files,
                       const std::vector<KnownDocument>& documents,
                       const std::function<bool(const std::string&)>& has_vanished, bool all) {
  ChangePlan plan;
  plan.all = all;
  auto document = documents.begin();
  const auto pass_documents_before = [&](const FoundFile* file) {
    for (; document != documents.end() && (file == nullptr || document->name < file->name);
         ++document) {
      if (has_vanished(document->name)) plan.vanished.Add(*document);
    }
  };
  for (const FoundFile& file : files) {
    pass_documents_before(&file);
    const bool is_indexed = document != documents.end() && document->name == file.name;
    AddFile(file, is_indexed ? &*document : nullptr, &plan);
    if (is_indexed) ++document;
  }
  pass_documents_before(nullptr);
  return plan;
}

}  // namespace kestan_cli
