// The forms in which documents leave an index.
#ifndef KESTAN_CLI_EXPORT_EXPORT_WRITER_H_
#define KESTAN_CLI_EXPORT_EXPORT_WRITER_H_

#include <kestan/maintenance.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "cli/export/latin1.h"
#include "cli/files/text_hash.h"

namespace kestan_cli {

// Prints "kestan: WHAT" as one line on the standard error stream. The export goes on.
void Warn(const std::string& what);

// Returns a time given in seconds since 1970 as 2026-11-21T16:00:00Z.
std::string IsoTime(std::uint32_t seconds);

// What turned out on the way and is told once, at the end.
struct ExportNotes {
  // Returns `text` in UTF-8.
  std::string Utf8(std::string_view text) { return ToUtf8(text, &document_was_latin1); }

  bool document_was_latin1 = false;  // the one at hand held something that is not UTF-8
  bool document_had_nul = false;
};

// Turns documents into text, one after the other. Each function returns the text that comes next.
class ExportWriter {
 public:
  ExportWriter() = default;
  virtual ~ExportWriter() = default;
  ExportWriter(const ExportWriter&) = delete;
  ExportWriter& operator=(const ExportWriter&) = delete;

  virtual std::string Begin() = 0;
  virtual std::string Add(const kestan::StoredDocument& document, ExportNotes* notes) = 0;
  virtual std::string End() = 0;
};

// Lines of JSON in pairs, as the bulk interface of search servers takes them: what to do, and the
// document.
class JsonWriter : public ExportWriter {
 public:
  // `target` is the name of the index at the server.
  explicit JsonWriter(std::string target) : target_(std::move(target)) {}

  std::string Begin() override { return {}; }
  std::string Add(const kestan::StoredDocument& document, ExportNotes* notes) override;
  std::string End() override { return {}; }

 private:
  bool IsUsableId(const std::string& name);

  const std::string target_;
  std::unordered_set<std::string, TextHash> ids_;
};

// A script for psql, which makes and fills a table.
class SqlWriter : public ExportWriter {
 public:
  // `target` is the name of the table.
  explicit SqlWriter(const std::string& target);

  std::string Begin() override;
  std::string Add(const kestan::StoredDocument& document, ExportNotes* notes) override;
  std::string End() override;

 private:
  const std::string table_;  // quoted
};

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXPORT_EXPORT_WRITER_H_
