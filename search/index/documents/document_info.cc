// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/index/documents/document_info.h"

#include <array>
#include <cstddef>
#include <string>
#include <utility>

namespace kestan::search {

Result<DocumentInfo> InfoOf(const Segment& segment, Code code) {
  DocumentInfo info;
  info.name = segment.NameOf(code);
  info.words = segment.table().WordsOf(code);
  info.added = segment.AddedOf(code);
  const std::array<std::string*, kDocumentFields> fields = {&info.title, &info.summary,
                                                            &info.host_data};
  for (std::size_t i = 0; i < fields.size(); ++i) {
    auto text = segment.FieldOf(code, static_cast<DocumentField>(i));
    if (!text.ok()) return text.status();
    *fields[i] = std::move(*text);
  }
  const Status status = segment.status();
  if (!status.ok()) return status;
  return info;
}

}  // namespace kestan::search
