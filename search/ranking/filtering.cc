// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/ranking/filtering.h"

#include <kestan/search/index_writer.h>

#include <algorithm>
#include <utility>

namespace kestan::search {

struct FilteredDocument::Source {
  const Segment& segment;
  std::size_t index;
  Code code = 0;
  Status error;  // the first one of reading a text

  std::string Read(DocumentField field) {
    auto text = segment.FieldOf(code, field);
    if (text.ok()) return std::move(*text);
    if (error.ok()) error = text.status();
    return "";
  }
};

std::string_view FilteredDocument::name() const { return source_->segment.NameOf(source_->code); }
std::size_t FilteredDocument::index() const { return source_->index; }
std::uint32_t FilteredDocument::added() const { return source_->segment.AddedOf(source_->code); }
std::string FilteredDocument::title() const { return source_->Read(DocumentField::kTitle); }
std::string FilteredDocument::summary() const { return source_->Read(DocumentField::kSummary); }
std::string FilteredDocument::host_data() const { return source_->Read(DocumentField::kHostData); }

Status Filter(const DocumentFilter& filter, const Segment& segment, std::size_t index,
              std::vector<Code>* codes) {
  FilteredDocument::Source source{segment, index, 0, {}};
  const FilteredDocument document(&source);
  const auto is_unwanted = [&](Code code) {
    source.code = code;
    return !source.error.ok() || !filter(document);
  };
  codes->erase(std::remove_if(codes->begin(), codes->end(), is_unwanted), codes->end());
  return source.error.ok() ? segment.status() : source.error;  // names may have been read
}

}  // namespace kestan::search
