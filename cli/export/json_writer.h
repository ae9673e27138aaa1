// SPDX-License-Identifier: GPL-3.0-or-later
// Documents as the bulk interface of search servers takes them.
#ifndef KESTAN_CLI_EXPORT_JSON_WRITER_H_
#define KESTAN_CLI_EXPORT_JSON_WRITER_H_

#include <kestan/storage/hash.h>

#include <string>
#include <unordered_set>
#include <utility>

#include "cli/export/export_writer.h"

namespace kestan_cli {

// Writes lines of JSON in pairs: what to do, and the document.
class JsonWriter : public ExportWriter {
 public:
  // `target` is the name of the index at the server.
  explicit JsonWriter(std::string target) : target_(std::move(target)) {}

  std::string Begin() override { return {}; }
  std::string Add(const ExportedDocument& document, ExportNotes* notes) override;
  std::string End() override { return {}; }

 private:
  bool IsUsableId(const std::string& name);

  const std::string target_;
  std::unordered_set<std::string, kestan::Hasher> ids_;
};

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXPORT_JSON_WRITER_H_
