// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/index/document_names.h"

#include <filesystem>
#include <system_error>

#include "cli/index/index_errors.h"

namespace kestan_cli {
namespace {

namespace fs = std::filesystem;

bool HasDocument(const kestan::search::IndexReader& reader, const std::string& name,
                 const std::string& index) {
  const auto found = reader.FindDocument(name);
  if (found.status().code() == kestan::search::StatusCode::kNotFound) return false;
  CheckStatus(found.status(), index);
  return true;
}

// Does what CanonicalPath() does; where that fails, the result is "" and `*error` says why.
std::string CanonicalPathOf(const std::string& path, std::error_code* error) {
  const fs::path absolute = fs::absolute(path, *error);
  if (*error) return "";
  fs::path canonical = fs::weakly_canonical(absolute, *error);
  if (*error) return "";
  if (!canonical.has_filename() && canonical.has_relative_path()) {
    canonical = canonical.parent_path();  // of what does not exist, the slash at the end stays
  }
  return canonical.string();
}

}  // namespace

std::string CanonicalPath(const std::string& path) {
  std::error_code error;
  std::string canonical = CanonicalPathOf(path, &error);
  if (error) throw CommandError("cannot examine " + Quoted(path) + ": " + ReasonOf(error.value()));
  return canonical;
}

ShownNames::ShownNames() {
  std::error_code error;
  directory_ = fs::current_path(error).string();
  if (!directory_.empty() && directory_.back() != '/') directory_ += '/';
}

std::string ShownNames::operator()(const std::string& name) const {
  const bool is_below = !directory_.empty() && name.size() > directory_.size() &&
                        name.compare(0, directory_.size(), directory_) == 0;
  if (!is_below) return name;
  std::string path = name.substr(directory_.size());
  return path.front() == '-' ? "./" + path : path;  // no command is to take it for an option
}

std::string StoredName(const kestan::search::IndexReader& reader, const std::string& argument,
                       const std::string& index) {
  if (HasDocument(reader, argument, index)) return argument;
  std::error_code ignored;  // what is no path can be no name of a file either
  std::string path = argument.empty() ? "" : CanonicalPathOf(argument, &ignored);
  if (!path.empty() && HasDocument(reader, path, index)) return path;
  throw CommandError("no document " + Quoted(argument) + " in index " + Quoted(index) +
                     "; see kestan list");
}

}  // namespace kestan_cli
