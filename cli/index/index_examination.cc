// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/index/index_examination.h"

#include <cerrno>
#include <string_view>

#include "cli/index/index_errors.h"

namespace kestan_cli {
namespace {

using kestan::IndexFile;
using kestan::StoreError;

// Returns whether there is the record of a document. An undamaged index without a counter of
// documents has none, and is small.
bool HasDocuments(IndexFile& file) {
  bool found = false;
  file.ForEachDocument([&](std::string_view name) {
    found = file.CodeOf(name) != 0;
    return !found;
  });
  return found;
}

}  // namespace

void OpenIndexFile(IndexFile& file, const std::string& path) {
  errno = 0;
  const StoreError error = file.Open(path.c_str());
  if (error != StoreError::kNone) throw StoreNotOpened(path, error, errno);
  const bool has_options = file.OptionFlags().has_value();
  const bool lacks_counter = !file.CountDocuments().had_documents && HasDocuments(file);
  if (file.FileError() != StoreError::kNone) throw CannotRead(path, file.FileError());
  if (lacks_counter) {
    throw CannotOpen(path, std::string("its counter of documents is lost; ") + kSeeRepair);
  }
  // Every index has option flags; a gdbm file of another program has not.
  if (!has_options) throw CannotOpen(path, std::string("not an index file") + kIfItWasOne);
}

}  // namespace kestan_cli
