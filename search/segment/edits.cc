// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/segment/edits.h"

#include <utility>

#include "search/files/file_header.h"
#include "search/files/numbers.h"

namespace kestan::search {
namespace {

constexpr FileKind kKind = {"KestEdit", 1, "a file of edits"};
constexpr std::size_t kChecksumBytes = 8;

// What an edit has. The bits of the fields follow.
constexpr unsigned kHasName = 1;
constexpr unsigned kFirstField = 2;
constexpr unsigned kAllBits = kFirstField << kDocumentFields;

unsigned BitsOf(const DocumentEdit& edit) {
  unsigned bits = edit.name.has_value() ? kHasName : 0;
  for (std::size_t i = 0; i < kDocumentFields; ++i) {
    if (edit.fields[i].has_value()) bits |= kFirstField << i;
  }
  return bits;
}

void AppendText(std::string_view text, std::string* bytes) {
  AppendVarint(text.size(), bytes);
  bytes->append(text);
}

void AppendEdit(const DocumentEdit& edit, std::string* bytes) {
  AppendVarint(BitsOf(edit), bytes);
  if (edit.name.has_value()) {
    AppendText(*edit.name, bytes);
    AppendVarint(edit.renamed, bytes);
  }
  for (const std::optional<std::string>& field : edit.fields) {
    if (field.has_value()) AppendText(*field, bytes);
  }
}

bool ReadText(ByteReader* reader, std::string* text) {
  std::uint64_t size = 0;
  std::string_view bytes;
  if (!reader->Varint(&size) || !reader->Bytes(size, &bytes)) return false;
  text->assign(bytes);
  return true;
}

bool ReadEdit(ByteReader* reader, DocumentEdit* edit) {
  unsigned bits = 0;
  if (!reader->Varint(&bits) || bits == 0 || bits >= kAllBits) return false;
  if ((bits & kHasName) != 0) {
    edit->name.emplace();
    if (!ReadText(reader, &*edit->name) || !reader->Varint(&edit->renamed)) return false;
  }
  for (std::size_t i = 0; i < kDocumentFields; ++i) {
    if ((bits & kFirstField << i) == 0) continue;
    edit->fields[i].emplace();
    if (!ReadText(reader, &*edit->fields[i])) return false;
  }
  return true;
}

}  // namespace

// ---- Changes ----

void Edits::Remove(Code code) {
  if (removed_[code]) return;
  removed_[code] = true;
  ++removed_count_;
  const auto edit = edited_.find(code);
  if (edit == edited_.end()) return;
  if (edit->second.name.has_value()) renamed_.erase(*edit->second.name);
  edited_.erase(edit);
}

void Edits::Rename(Code code, std::string_view name, std::uint32_t now) {
  DocumentEdit& edit = edited_[code];
  if (edit.name.has_value()) renamed_.erase(*edit.name);
  edit.name = name;
  edit.renamed = now;
  renamed_[std::string(name)] = code;
}

void Edits::SetField(Code code, DocumentField field, std::string_view value) {
  edited_[code].fields[static_cast<std::size_t>(field)] = value;
}

const DocumentEdit* Edits::EditOf(Code code) const {
  const auto found = edited_.find(code);
  return found == edited_.end() ? nullptr : &found->second;
}

std::optional<Code> Edits::FindRenamed(std::string_view name) const {
  const auto found = renamed_.find(name);
  if (found == renamed_.end()) return std::nullopt;
  return found->second;
}

// ---- Bytes ----

// Removed codes are runs: how many living ones come before, how many removed ones follow.
std::string Edits::Encode() const {
  std::string bytes = FileHeader(kKind);
  AppendVarint(removed_.size() - 1, &bytes);
  AppendVarint(removed_count_, &bytes);
  std::size_t last_end = 1;
  for (std::size_t code = 1; code < removed_.size(); ++code) {
    if (!removed_[code]) continue;
    const std::size_t first = code;
    while (code < removed_.size() && removed_[code]) ++code;
    AppendVarint(first - last_end, &bytes);
    AppendVarint(code - first, &bytes);
    last_end = code;
  }
  AppendVarint(edited_.size(), &bytes);
  Code last = 0;
  for (const auto& [code, edit] : edited_) {
    AppendVarint(static_cast<std::uint64_t>(code - last), &bytes);
    AppendEdit(edit, &bytes);
    last = code;
  }
  AppendChecksumOf(bytes, &bytes);
  return bytes;
}

bool Edits::ReadRemoved(ByteReader* reader) {
  std::size_t count = 0;
  if (!reader->Varint(&count) || count >= removed_.size()) return false;
  std::size_t code = 1;
  while (removed_count_ < count) {
    std::size_t living = 0;
    std::size_t removed = 0;
    if (!reader->Varint(&living) || !reader->Varint(&removed) || removed == 0) return false;
    if (living > removed_.size() - code || removed > removed_.size() - code - living) return false;
    code += living;
    for (const std::size_t end = code + removed; code < end; ++code) {
      removed_[code] = true;
      ++removed_count_;
    }
  }
  return removed_count_ == count;
}

bool Edits::ReadEdited(ByteReader* reader) {
  std::size_t count = 0;
  if (!reader->Varint(&count)) return false;
  std::size_t code = 0;
  for (; count > 0; --count) {
    std::size_t step = 0;
    if (!reader->Varint(&step) || step == 0 || step >= removed_.size() - code) return false;
    code += step;
    if (removed_[code]) return false;
    DocumentEdit edit;
    if (!ReadEdit(reader, &edit)) return false;
    const auto edited = static_cast<Code>(code);
    if (edit.name.has_value() && !renamed_.emplace(*edit.name, edited).second) return false;
    edited_.emplace_hint(edited_.end(), edited, std::move(edit));
  }
  return true;
}

Result<Edits> Edits::Decode(std::string_view bytes, std::size_t documents) {
  const Status damaged(StatusCode::kDamaged, "the edits are damaged");
  Status status = CheckFileHeader(bytes, kKind, "");
  if (!status.ok()) return status;
  if (bytes.size() < kFileHeaderBytes + kChecksumBytes) return damaged;
  const std::string_view checked = bytes.substr(0, bytes.size() - kChecksumBytes);
  if (!IsChecksumOf(checked, checked.data() + checked.size())) return damaged;
  ByteReader reader(checked.substr(kFileHeaderBytes));
  std::size_t count = 0;
  if (!reader.Varint(&count) || count != documents || count > kMaxCode) return damaged;
  Edits edits(documents);
  const bool is_whole =
      edits.ReadRemoved(&reader) && edits.ReadEdited(&reader) && reader.rest() == 0;
  if (!is_whole) return damaged;
  return edits;
}

}  // namespace kestan::search
