// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/module/loaded_mail_reader.h"

#include <filesystem>
#include <system_error>

#include "cli/console/message.h"
#include "cli/extract/module/module_file.h"
#include "cli/files/paths.h"
#include "cli/files/skip.h"

namespace kestan_cli {
namespace {

struct Loading {
  const MailReader* reader = nullptr;
  std::string problem;
};

Loading& TheLoading() {
  static Loading loading;
  return loading;
}

void Load(Loading* loading) {
  constexpr const char* kProgram = "/proc/self/exe";
  std::error_code error;
  const std::string program = std::filesystem::read_symlink(kProgram, error).string();
  if (error) {
    loading->problem = std::string("cannot find the module that reads mail: ") + kProgram + ": " +
                       ReasonOf(error.value());
    return;
  }
  const ModulePlace place{program, KESTAN_MAIL_READER_PATH};
  std::string reason;
  loading->reader = OpenMailModule(place, KESTAN_MAIL_READER_VERSION, &reason);
  if (loading->reader != nullptr) return;
  loading->problem = "cannot load " + Quoted(place.Path()) + ", which reads mail: " + reason;
}

}  // namespace

const MailReader& LoadedMailReader() {
  Loading& loading = TheLoading();
  if (loading.reader == nullptr && loading.problem.empty()) Load(&loading);
  if (loading.reader != nullptr) return *loading.reader;
  const std::string module(LastPart(KESTAN_MAIL_READER_PATH));
  throw SkipFile(SkipKind::kUnreadable, "needs " + module + ", which cannot be loaded",
                 "install " + module + " again: the last line says what is wrong with it");
}

std::string MailReaderProblem() { return TheLoading().problem; }

void UseMailReader(const MailReader& reader) { TheLoading().reader = &reader; }

}  // namespace kestan_cli
