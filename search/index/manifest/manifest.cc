// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/index/manifest/manifest.h"

#include <kestan/checksum.h>
#include <kestan/postings.h>

#include <array>
#include <optional>
#include <utility>

#include "search/index/manifest/manifest_text.h"

namespace kestan::search {
namespace {

constexpr std::string_view kProgram = "kestan-index ";
constexpr std::string_view kVersion = "1";

std::uint64_t ChecksumOf(std::string_view bytes) {
  Crc64 checksum;
  checksum.Add(bytes);
  return checksum.Value();
}

void AppendSummary(std::string_view what, const FileSummary& summary, std::string* line) {
  *line += " " + std::string(what) + " " + std::to_string(summary.bytes) + " ";
  AppendHex(summary.checksum, line);
}

void AppendSegment(const SegmentInfo& info, std::string* text) {
  *text += "segment " + std::to_string(info.number) + " documents " +
           std::to_string(info.documents) + " removed " + std::to_string(info.removed);
  AppendSummary("segment", info.segment, text);
  AppendSummary("terms", info.terms, text);
  AppendSummary("documents", info.table, text);
  if (info.edit_number != 0) {
    AppendSummary("edits " + std::to_string(info.edit_number), info.edits, text);
  }
  *text += '\n';
}

bool ReadSummary(LineReader* line, std::string_view what, FileSummary* summary) {
  return line->Skip(what) && line->ReadNumber(&summary->bytes) && line->Skip(" ") &&
         line->ReadHex(&summary->checksum);
}

bool ReadSegment(LineReader* line, SegmentInfo* info) {
  std::uint64_t documents = 0;
  std::uint64_t removed = 0;
  const bool is_read =
      line->ReadNumber(&info->number) && line->Skip(" documents ") &&
      line->ReadNumber(&documents) && line->Skip(" removed ") && line->ReadNumber(&removed) &&
      ReadSummary(line, " segment ", &info->segment) &&
      ReadSummary(line, " terms ", &info->terms) && ReadSummary(line, " documents ", &info->table);
  if (!is_read || documents == 0 || documents > kMaxCode || removed > documents) return false;
  info->documents = static_cast<std::uint32_t>(documents);
  info->removed = static_cast<std::uint32_t>(removed);
  if (line->Skip(" edits ")) {
    return line->ReadNumber(&info->edit_number) && info->edit_number != 0 &&
           ReadSummary(line, " ", &info->edits);
  }
  return removed == 0;  // the edits say which
}

// Reads the lines of a manifest that Encode() wrote, in their order.
class ManifestReader {
 public:
  // `text` has a first line, which says what it is.
  explicit ManifestReader(std::string_view text) : text_(text.substr(text.find('\n') + 1)) {}

  //   Returns  false for anything else.
  bool Read(Manifest* manifest) {
    return Next() && line_.Skip("generation ") && line_.ReadNumber(&manifest->generation) &&
           Next() && line_.Skip("next-segment ") && line_.ReadNumber(&manifest->next_segment) &&
           Next() && line_.Skip("positions ") && ReadYesOrNo(&manifest->with_positions) &&
           ReadProperties(manifest) && ReadSegments(manifest) && line_.Skip("checksum ");
  }

 private:
  // Goes to the next line, if nothing is left of this one.
  bool Next() {
    if (!line_.empty()) return false;
    const std::size_t end = text_.find('\n');
    if (end == std::string_view::npos) return false;
    line_ = LineReader(text_.substr(0, end));
    text_.remove_prefix(end + 1);
    return true;
  }

  bool ReadYesOrNo(bool* answer) {
    *answer = line_.Skip("yes");
    return *answer || line_.Skip("no");
  }

  bool ReadProperties(Manifest* manifest) {
    if (!Next()) return false;
    while (line_.Skip("property ")) {
      std::string key;
      std::string value;
      if (!line_.ReadEscaped(&key) || !line_.Skip(" ") || !line_.ReadEscaped(&value)) return false;
      manifest->properties.insert_or_assign(std::move(key), std::move(value));
      if (!Next()) return false;
    }
    return true;
  }

  bool ReadSegments(Manifest* manifest) {
    while (line_.Skip("segment ")) {
      SegmentInfo info;
      if (!ReadSegment(&line_, &info) || info.number >= manifest->next_segment) return false;
      if (manifest->segments.size() == kMaxSegments) return false;
      manifest->segments.push_back(info);
      if (!Next()) return false;
    }
    return HasNumbersThatDiffer(*manifest);
  }

  static bool HasNumbersThatDiffer(const Manifest& manifest) {
    std::map<std::uint64_t, int> numbers;
    for (const SegmentInfo& info : manifest.segments) {
      if (info.number == 0 || ++numbers[info.number] > 1) return false;
    }
    return true;
  }

  std::string_view text_;
  LineReader line_{{}};
};

// Returns the version that `bytes` names in its first line; nothing for what is no manifest.
std::optional<std::string_view> VersionOf(std::string_view bytes) {
  if (bytes.substr(0, kProgram.size()) != kProgram) return std::nullopt;
  bytes.remove_prefix(kProgram.size());
  const std::size_t end = bytes.find('\n');
  if (end == 0 || end > 9) return std::nullopt;
  const std::string_view version = bytes.substr(0, end);
  if (version.find_first_not_of("0123456789") != std::string_view::npos) return std::nullopt;
  return version;
}

}  // namespace

std::string Manifest::Encode() const {
  std::string text(kProgram);
  text.append(kVersion) += "\ngeneration " + std::to_string(generation) + "\nnext-segment " +
                           std::to_string(next_segment) + "\npositions " +
                           (with_positions ? "yes" : "no") + "\n";
  for (const auto& [key, value] : properties) {
    text += "property ";
    AppendEscaped(key, &text);
    text += ' ';
    AppendEscaped(value, &text);
    text += '\n';
  }
  for (const SegmentInfo& info : segments) AppendSegment(info, &text);
  const std::uint64_t checksum = ChecksumOf(text);
  text += "checksum ";
  AppendHex(checksum, &text);
  return text += '\n';
}

Result<Manifest> Manifest::Decode(std::string_view bytes) {
  const std::optional<std::string_view> version = VersionOf(bytes);
  if (!version) return Status(StatusCode::kDamaged, "it is no manifest of an index");
  if (*version != kVersion) {
    return Status(StatusCode::kVersion, "it is of version " + std::string(*version) +
                                            "; this program reads version " +
                                            std::string(kVersion));
  }
  Manifest manifest;
  // A manifest has one spelling: the checksum, the order of properties and every blank count.
  if (!ManifestReader(bytes).Read(&manifest) || manifest.Encode() != bytes) {
    return Status(StatusCode::kDamaged, "it is damaged");
  }
  return manifest;
}

}  // namespace kestan::search
