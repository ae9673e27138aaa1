// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/export/json_writer.h"

#include <optional>

#include "cli/console/diagnostics.h"
#include "cli/console/json.h"
#include "cli/console/message.h"
#include "cli/export/iso_time.h"

namespace kestan_cli {
namespace {

constexpr std::size_t kMaxIdBytes = 512;

void AddText(const char* field, const std::string& text, Json* source, ExportNotes* notes) {
  if (!text.empty()) (*source)[field] = notes->Utf8(text);
}

std::string TextOf(const ExportedDocument& document, ExportNotes* notes) {
  std::string text;
  for (const kestan::search::PlacedWord& word : document.words) {
    if (!text.empty()) text += ' ';
    text += notes->Utf8(word.word);
  }
  return text;
}

}  // namespace

std::string JsonWriter::Add(const ExportedDocument& document, ExportNotes* notes) {
  const std::string name = notes->Utf8(document.info.name);
  Json action;
  action["index"]["_index"] = target_;
  if (IsUsableId(name)) action["index"]["_id"] = name;
  Json source;
  source["name"] = name;
  AddText("title", document.info.title, &source, notes);
  AddText("summary", document.info.summary, &source, notes);
  AddText("user", document.info.host_data, &source, notes);
  source["time"] = IsoTime(document.info.added);
  source["text"] = TextOf(document, notes);
  source["in_order"] = document.has_positions;
  return JsonLine(action) + JsonLine(source);
}

// The server would take two documents with one id for one.
bool JsonWriter::IsUsableId(const std::string& name) {
  const bool fits = !name.empty() && name.size() <= kMaxIdBytes;
  if (fits && ids_.insert(name).second) return true;
  ReportProblem(Quoted(name) + ": no _id, for it would be " +
                (name.empty() ? "empty"
                 : fits       ? "that of an earlier document"
                              : "longer than 512 bytes"));
  return false;
}

}  // namespace kestan_cli
