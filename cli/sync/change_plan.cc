// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/sync/change_plan.h"

#include <algorithm>
#include <utility>

namespace kestan_cli {
namespace {

std::string ContentKey(const Fingerprint& fingerprint) {
  return std::to_string(fingerprint.state.bytes) + " " + fingerprint.hash;
}

// The documents that were made of the parts of files, by the paths of these files.
using Parts = std::map<std::string, std::vector<KnownDocument>>;

std::string ContainerOf(const KnownDocument& document) {
  if (!document.fingerprint.has_value()) return "";
  return ContainerOf(document.name, *document.fingerprint);
}

Parts PartsAmong(const std::vector<KnownDocument>& documents) {
  Parts parts;
  for (const KnownDocument& document : documents) {
    const std::string container = ContainerOf(document);
    if (!container.empty()) parts[container].push_back(document);
  }
  return parts;
}

// Returns whether `parts` are those of a file that was then as it is now.
bool AreOf(const std::vector<KnownDocument>& parts, const FileState& state) {
  return std::any_of(parts.begin(), parts.end(), [&](const KnownDocument& part) {
    const auto& container = part.fingerprint->container;
    return container.has_value() && *container == state;
  });
}

void AddFile(const FoundFile& file, const KnownDocument* document, Parts* parts, ChangePlan* plan) {
  const Fingerprint* const known =
      document != nullptr && document->fingerprint ? &*document->fingerprint : nullptr;
  std::vector<KnownDocument> own_parts;
  if (const auto found = parts->find(file.name); found != parts->end()) {
    own_parts = std::move(found->second);
    parts->erase(found);
  }
  const bool is_known = known != nullptr && known->state == file.state && own_parts.empty();
  const bool are_known = document == nullptr && AreOf(own_parts, file.state);
  if (!plan->all && (is_known || are_known)) {
    plan->unchanged += is_known ? 1 : static_cast<unsigned long>(own_parts.size());
    return;
  }
  Candidate candidate{file, document != nullptr, std::nullopt, std::move(own_parts)};
  if (known != nullptr) candidate.fingerprint = *known;
  plan->bytes_to_read += file.state.bytes;
  plan->to_read.push_back(std::move(candidate));
}

bool IsFileAmong(const std::vector<FoundFile>& files, const std::string& name) {
  const auto found = std::lower_bound(
      files.begin(), files.end(), name,
      [](const FoundFile& file, const std::string& sought) { return file.name < sought; });
  return found != files.end() && found->name == name;
}

bool IsAmong(const std::vector<KnownDocument>& documents, const std::string& name) {
  return std::any_of(documents.begin(), documents.end(),
                     [&](const KnownDocument& document) { return document.name == name; });
}

// Renames the parts of containers that have the names of files.
//   Returns  the documents in order of their names.
std::vector<KnownDocument> WithoutNamesOf(const std::vector<FoundFile>& files,
                                          std::vector<KnownDocument> documents,
                                          std::vector<PartRename>* renames) {
  for (KnownDocument& document : documents) {
    const std::string container = ContainerOf(document);
    if (container.empty() || !IsFileAmong(files, document.name)) continue;
    std::string name = document.name;
    while (IsFileAmong(files, name) || IsAmong(documents, name)) name.insert(container.size(), "#");
    renames->push_back({document.name, name, *document.fingerprint});
    document.name = name;
  }
  if (renames->empty()) return documents;
  std::sort(
      documents.begin(), documents.end(),
      [](const KnownDocument& left, const KnownDocument& right) { return left.name < right.name; });
  return documents;
}

}  // namespace

void VanishedDocuments::Add(const KnownDocument& document) {
  names_.insert(document.name);
  if (!document.fingerprint.has_value()) return;
  by_content_.emplace(ContentKey(*document.fingerprint), document);
  const std::string container = ContainerOf(document);
  if (!container.empty()) containers_[document.name] = container;
}

std::string VanishedDocuments::FileOf(const std::string& name) const {
  const auto found = containers_.find(name);
  return found != containers_.end() ? found->second : name;
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
                       std::vector<KnownDocument> all_documents,
                       const std::function<bool(const std::string&)>& has_vanished, bool all) {
  ChangePlan plan;
  plan.all = all;
  const std::vector<KnownDocument> documents =
      WithoutNamesOf(files, std::move(all_documents), &plan.renames);
  Parts parts = PartsAmong(documents);
  auto document = documents.begin();
  const auto pass_documents_before = [&](const FoundFile* file) {
    for (; document != documents.end() && (file == nullptr || document->name < file->name);
         ++document) {
      if (!ContainerOf(*document).empty()) continue;
      if (has_vanished(document->name)) plan.vanished.Add(*document);
    }
  };
  for (const FoundFile& file : files) {
    pass_documents_before(&file);
    const bool is_indexed = document != documents.end() && document->name == file.name;
    AddFile(file, is_indexed ? &*document : nullptr, &parts, &plan);
    if (is_indexed) ++document;
  }
  pass_documents_before(nullptr);
  for (const auto& [container, of_container] : parts) {
    if (!has_vanished(container)) continue;
    for (const KnownDocument& part : of_container) plan.vanished.Add(part);
  }
  return plan;
}

}  // namespace kestan_cli
