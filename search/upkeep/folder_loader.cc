// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/upkeep/folder_loader.h"

#include <kestan/index_file.h>
#include <kestan/maintenance.h>
#include <kestan/postings.h>

#include <cerrno>
#include <limits>
#include <utility>

#include "search/files/descriptor.h"
#include "search/index/manifest/manifest_text.h"
#include "search/index/merging/merger.h"
#include "search/upkeep/dump_text.h"
#include "search/upkeep/loose_segment.h"

namespace kestan::search {
namespace {

constexpr std::string_view kEndOfFile = "end ";  // begins the last line of the dump of a file
constexpr std::size_t kMaxNameBytes = 4096;

// All properties fit into a manifest, of which each byte takes four at most.
constexpr std::size_t kMaxPropertyBytes = std::size_t{kMaxManifestBytes} * 4;

bool StartsWith(std::string_view text, std::string_view start) {
  return text.substr(0, start.size()) == start;
}

// Tells where the dump of an index file ends: with a line that has no tab and belongs to no record.
class PartEnd {
 public:
  bool IsAt(std::string_view line) {
    const bool goes_on = !line.empty() && line.back() == kGoesOn;
    const bool is_end =
        !is_first_ && !is_within_record_ && !goes_on && line.find('\t') == std::string_view::npos;
    is_within_record_ = goes_on;
    is_first_ = false;
    return is_end;
  }

 private:
  bool is_first_ = true;
  bool is_within_record_ = false;
};

// Returns "line N: WHAT" of a part with the number that the line has in the whole.
std::string WithLineOfWhole(const std::string& what, std::uint64_t first_line) {
  LineReader reader(what);
  std::uint64_t line = 0;
  if (!reader.Skip("line ") || !reader.ReadNumber(&line)) return what;
  const std::string_view rest =
      std::string_view(what).substr(std::string("line " + std::to_string(line)).size());
  return ("line " + std::to_string(line + first_line - 1)).append(rest);
}

// Returns whether the index file at `path` has the dump that ends with the line `last`. Not every
// error of gdbm's last writes comes out of it.
bool IsLoaded(const std::string& path, const std::string& last) {
  IndexFile file;
  if (file.Open(path.c_str()) != StoreError::kNone) return false;
  std::string line_of_file;
  const StoreError error = kestan::DumpIndex(file.store(), [&](std::string_view line) {
    if (StartsWith(line, kEndOfFile)) line_of_file = line;
  });
  return error == StoreError::kNone && line_of_file == last;
}

}  // namespace

Status DumpLines::Refuse(std::string_view what) const {
  return {StatusCode::kInvalidArgument, ("line " + std::to_string(number_) + ": ").append(what)};
}

Status LoadFile(const GiveDumpLine& give, const std::string& path, std::uint64_t first_line) {
  Database target;
  errno = 0;
  const int error = target.Open(path.c_str(), 1);
  if (error != 0) {
    if (errno != 0) return SystemError(errno, path);
    return {StatusCode::kSystem, ErrorString(StoreError{error}), path};
  }
  std::string reason;
  std::string last;
  const auto give_and_keep = [&](std::string_view* line) {
    const bool is_given = give(line);
    if (is_given && StartsWith(*line, kEndOfFile)) last = line->substr(0, kMaxDumpLineBytes);
    return is_given;
  };
  const bool is_loaded =
      kestan::LoadIndex(give_and_keep, target, [&reason](std::string_view line) { reason = line; });
  target.Close();
  if (target.FileError() != 0) {
    return {StatusCode::kSystem, ErrorString(StoreError{target.FileError()}), path};
  }
  if (is_loaded && IsLoaded(path, last)) return {};
  if (is_loaded) return {StatusCode::kSystem, "not all was written", path};
  return {StatusCode::kInvalidArgument, WithLineOfWhole(reason, first_line)};
}

Status FolderLoader::Next() {
  if (!lines_.Next()) return lines_.Refuse("the dump ends here, without its last line");
  if (lines_.line().size() > kMaxDumpLineBytes) {
    return lines_.Refuse("longer than any line of a dump");
  }
  last_checksum_ = checksum_.Value();
  checksum_.Add(lines_.line());
  checksum_.Add("\n");
  return {};
}

Status FolderLoader::Load() {
  manifest_.generation = 1;
  Status status = ReadHead();
  while (status.ok() && StartsWith(lines_.line(), kPropertyLine)) status = ReadProperty();
  while (status.ok() && StartsWith(lines_.line(), kPartLine)) status = ReadPart();
  if (status.ok()) status = ReadEnd();
  if (!status.ok()) return status;
  return WriteManifest(folder_, manifest_, {}, Syncing::kLater);
}

Status FolderLoader::ReadHead() {
  const std::string_view version = lines_.line().substr(kFolderDumpName.size());
  if (version != kFolderDumpVersion)
    return lines_.Refuse("a dump in a form that is not known here");
  checksum_.Add(lines_.line());
  checksum_.Add("\n");
  Status status = Next();
  if (!status.ok()) return status;
  LineReader line(lines_.line());
  const bool has_start = line.Skip(kPositionsLine);
  manifest_.with_positions = line.Skip("yes");
  const bool is_read = has_start && (manifest_.with_positions || line.Skip("no")) && line.empty();
  return is_read ? Next() : lines_.Refuse("it does not say whether there are positions");
}

Status FolderLoader::ReadProperty() {
  std::string text(lines_.line());
  Status status;
  while (status.ok() && text.back() == kGoesOn) {
    text.pop_back();
    status = Next();
    if (status.ok() && lines_.line().empty()) return lines_.Refuse("it is no property");
    if (status.ok()) text.append(lines_.line());
    if (text.size() > kMaxPropertyBytes) return lines_.Refuse("the property is too large");
  }
  if (!status.ok()) return status;
  LineReader line(text);
  std::string key;
  std::string value;
  const bool is_read = line.Skip(kPropertyLine) && line.ReadEscaped(&key) && line.Skip(" ") &&
                       line.ReadEscaped(&value) && line.empty();
  if (!is_read) return lines_.Refuse("it is no property");
  const auto& properties = manifest_.properties;
  if (!properties.empty() && properties.rbegin()->first >= key) {
    return lines_.Refuse("the properties are not in order");
  }
  manifest_.properties.emplace(std::move(key), std::move(value));
  return Next();
}

Status FolderLoader::ReadPart() {
  LineReader line(lines_.line());
  std::uint64_t count = 0;
  const bool is_read = line.Skip(kPartLine) && line.ReadNumber(&count) && line.empty();
  if (!is_read || count == 0 || count > kMaxCode) {
    return lines_.Refuse("it does not say how many documents the part has");
  }
  Status status = ReadDocuments(count);
  const std::uint64_t first_line = lines_.number();
  if (status.ok()) status = LoadPart();
  if (status.ok()) status = AddSegment(count, first_line);
  return status.ok() ? Next() : status;
}

// Goes to the line after those of the documents.
Status FolderLoader::ReadDocuments(std::uint64_t count) {
  known_.assign(1, {});
  for (std::uint64_t i = 0; i < count; ++i) {
    Status status = Next();
    if (!status.ok()) return status;
    LineReader line(lines_.line());
    std::uint64_t words = 0;
    std::uint64_t fields = 0;
    const bool is_read = line.Skip(kDocumentLine) && line.ReadNumber(&words) && line.Skip(" ") &&
                         line.ReadNumber(&fields) && line.empty();
    const bool is_possible =
        words <= std::numeric_limits<std::uint32_t>::max() && fields < 1U << kDocumentFields;
    if (!is_read || !is_possible) return lines_.Refuse("it is no document of the part");
    KnownDocument known;
    known.is_known = true;
    known.words = static_cast<std::uint32_t>(words);
    for (std::size_t field = 0; field < kDocumentFields; ++field) {
      known.fields[field] = (fields >> field & 1) != 0;
    }
    known_.push_back(known);
  }
  return Next();
}

// Loads the dump of an index file that begins at this line. Goes to its last line.
Status FolderLoader::LoadPart() {
  PartEnd end;
  Status status;
  bool is_given = true;  // this line waits
  bool is_over = false;
  const auto give = [&](std::string_view* line) {
    if (is_over) return false;
    if (!is_given) status = Next();
    is_given = false;
    if (!status.ok()) return false;
    *line = lines_.line();
    is_over = end.IsAt(*line);
    return true;
  };
  Status loaded = LoadFile(give, LooseFile(folder_), lines_.number());
  return status.ok() ? loaded : status;
}

// Makes a segment of the part.
Status FolderLoader::AddSegment(std::uint64_t count, std::uint64_t first_line) {
  const auto part = OpenLooseSegment(folder_, known_);
  const auto refuse = [first_line](const std::string& what) {
    return Status(StatusCode::kInvalidArgument, "line " + std::to_string(first_line) + ": " + what);
  };
  if (!part.ok()) {
    const bool is_damaged = part.status().code() == StatusCode::kDamaged;
    return is_damaged ? refuse("the part contradicts itself: " + part.status().message())
                      : part.status();
  }
  const bool agrees = (*part)->size() == count && (*part)->living_documents() == count &&
                      (*part)->with_positions() == manifest_.with_positions;
  if (!agrees) return refuse("the part contradicts what is said of it");
  for (std::size_t i = 1; i <= count; ++i) {
    const std::string_view name = (*part)->NameOf(static_cast<Code>(i));
    const bool is_name = name.size() <= kMaxNameBytes && name.find('\0') == std::string_view::npos;
    if (!is_name) return refuse("a name that no document can have");
    if (!names_.emplace(name).second) return refuse("a document is in two parts");
  }
  const auto info = MergeSegments({*part}, folder_, manifest_.next_segment, nullptr);
  if (!info.ok()) {
    const bool is_damaged = info.status().code() == StatusCode::kDamaged;
    return is_damaged ? refuse("the part contradicts itself") : info.status();
  }
  RemoveLooseSegment(folder_);
  manifest_.segments.push_back(*info);
  ++manifest_.next_segment;
  ++parts_;
  return {};
}

Status FolderLoader::ReadEnd() {
  std::string last = std::string(kLastLine) + std::to_string(parts_) + " ";
  AppendHex(last_checksum_, &last);
  if (lines_.line() != last) {
    const bool is_last = StartsWith(lines_.line(), kLastLine);
    return lines_.Refuse(is_last ? "number of parts or checksum differ from what was read"
                                 : "neither a part nor the last line");
  }
  return lines_.Next() ? lines_.Refuse("something follows the last line") : Status();
}

}  // namespace kestan::search
