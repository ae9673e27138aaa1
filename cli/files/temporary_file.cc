// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/files/temporary_file.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include "cli/console/message.h"
#include "cli/files/open_file.h"
#include "cli/files/skip.h"

namespace kestan_cli {
namespace {

auto CannotWrite(int error) {
  return SkipFile(SkipKind::kConversion, "cannot write a temporary file: " + ReasonOf(error));
}

std::string TemporaryFolder() {
  const char* const set = std::getenv("TMPDIR");  // NOLINT(concurrency-mt-unsafe)
  return set != nullptr && *set == '/' ? set : "/tmp";
}

}  // namespace

TemporaryFile::TemporaryFile(const std::string& extension, std::string_view bytes)
    : folder_(TemporaryFolder() + "/kestan-XXXXXX") {
  if (mkdtemp(folder_.data()) == nullptr) throw CannotWrite(errno);
  path_ = folder_ + "/file" + extension;
  OpenFile file(std::fopen(path_.c_str(), "wbxe"));
  const bool is_written = file != nullptr &&
                          std::fwrite(bytes.data(), 1, bytes.size(), file.get()) == bytes.size() &&
                          std::fflush(file.get()) == 0;
  if (is_written) return;
  const int error = errno;
  Remove();
  throw CannotWrite(error);
}

TemporaryFile::~TemporaryFile() { Remove(); }

void TemporaryFile::Remove() const {
  unlink(path_.c_str());
  rmdir(folder_.c_str());
}

}  // namespace kestan_cli
