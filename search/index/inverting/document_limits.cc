// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/index/inverting/document_limits.h"

#include <string>

#include "search/index/inverting/segment_maker.h"

namespace kestan::search {
namespace {

constexpr std::size_t kMaxNameBytes = 4096;

}  // namespace

Status CheckName(std::string_view name) {
  const char* const message = name.empty()                  ? "the name of a document is empty"
                              : name.size() > kMaxNameBytes ? "the name of a document is too long"
                              : name.find('\0') != std::string_view::npos
                                  ? "the name of a document has a NUL"
                                  : nullptr;
  return message == nullptr ? Status() : Status(StatusCode::kInvalidArgument, message);
}

Status CheckDocument(const Document& document) {
  Status status = CheckName(document.name);
  if (!status.ok() || BytesOf(document) <= kMaxDocumentBytes) return status;
  return {StatusCode::kInvalidArgument, "the document has more than 1 GB: " + document.name};
}

}  // namespace kestan::search
