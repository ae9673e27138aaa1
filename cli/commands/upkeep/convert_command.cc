// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/search.h>

#include <string>

#include "cli/commands/commands.h"
#include "cli/console/json.h"
#include "cli/console/message.h"
#include "cli/index/index_errors.h"
#include "cli/index/index_kind.h"
#include "cli/index/new_index.h"

namespace kestan_cli {
namespace {

using kestan::search::ConversionReport;

std::string JsonOf(std::uint64_t documents, const ConversionReport& report) {
  return JsonReport({{"documents", documents},
                     {"words_left_out", report.words_left_out},
                     {"texts_left_out", report.texts_left_out}});
}

std::string TextOf(std::uint64_t documents, const ConversionReport& report) {
  std::string text = "converted " + Counted(documents, "document") + "\n";
  if (report.words_left_out != 0) {
    text += "left out: " + Counted(report.words_left_out, "word") +
            " with a hyphen as the second letter; index the documents again for them\n";
  }
  if (report.texts_left_out != 0) {
    text += "left out: " + Counted(report.texts_left_out, "text") + " of no document\n";
  }
  return text;
}

int RunConvert(const Values& values) {
  const std::string file = values.Text("FILE");
  const std::string folder = values.Text("FOLDER");
  const IndexKind kind = KindOfIndex(file);
  if (kind == IndexKind::kNone) throw CannotOpen(file, kNoSuchIndex);
  if (kind == IndexKind::kFolder) throw CannotOpen(file, "it is a folder already");
  NewIndex made(file, folder, "converting", StyleOfStandardError(values.Has("--quiet")));
  ConversionReport report;
  made.Check(kestan::search::ConvertIndexFile(file, folder, &report, made.progress()));
  const auto reader = ValueOf(kestan::search::IndexReader::Open(folder), folder);
  const std::uint64_t documents = reader.Statistics().documents;
  PrintReport(
      ReportFormatOf(values), [&] { return JsonOf(documents, report); },
      [&] { return TextOf(documents, report); });
  return kDone;
}

}  // namespace

Command ConvertCommand() {
  return {"convert",
          "Make an index folder of an index of one file.",
          {{"FILE", "the index of one file, which stays as it is"},
           {"FOLDER", "the folder to make, which must not be there"}},
          {JsonOption(), QuietOption()},
          "Indexes of one file are only read by this command, and hold at most 65,535 documents. A "
          "folder can be changed and grow. The other way goes `kestan compact --one-file`.",
          {"kestan convert old.index my.index"},
          RunConvert};
}

}  // namespace kestan_cli
