// SPDX-License-Identifier: GPL-3.0-or-later
#include "c/filter.h"

#include <new>
#include <string>

#include "c/reader_handle.h"

// Lives on the stack of a call of the filter. Each text is kept for as long.
struct kestan_filtered {
  const kestan::search::FilteredDocument& document;
  std::string name{};
  std::string title{};
  std::string summary{};
  std::string data{};
};

namespace kestan::c {

search::DocumentFilter Filter::function() {
  if (callback_ == nullptr) return {};
  return [this](const search::FilteredDocument& document) { return Passes(document); };
}

// The search goes on without documents once the function has asked to stop.
bool Filter::Passes(const search::FilteredDocument& document) {
  if (has_stopped_) return false;
  kestan_filtered filtered{document};
  const CallbackMark mark(reader_, &filtered);
  const int answer = callback_(&filtered, payload_);
  if (answer < 0) has_stopped_ = true;
  return answer > 0;
}

}  // namespace kestan::c

namespace {

// Reads a text into `kept` with `read`, and lends it.
template <typename Read>
int Lend(const char** out, size_t* length, kestan_filtered* document,
         std::string kestan_filtered::*kept, Read read) noexcept {
  if (!kestan::c::CallbackMark::HasDocument(document)) return KESTAN_EHANDLE;
  if (out == nullptr || length == nullptr) return KESTAN_EINVALID;
  try {
    std::string& text = document->*kept;
    text = read(document->document);
    *out = text.c_str();
    *length = text.size();
    return KESTAN_OK;
  } catch (const std::bad_alloc&) {
    return KESTAN_ENOMEM;
  }
}

}  // namespace

int kestan_filtered_name(const char** out, size_t* length, kestan_filtered* document) {
  return Lend(out, length, document, &kestan_filtered::name,
              [](const auto& filtered) { return filtered.name(); });
}

int kestan_filtered_title(const char** out, size_t* length, kestan_filtered* document) {
  return Lend(out, length, document, &kestan_filtered::title,
              [](const auto& filtered) { return filtered.title(); });
}

int kestan_filtered_summary(const char** out, size_t* length, kestan_filtered* document) {
  return Lend(out, length, document, &kestan_filtered::summary,
              [](const auto& filtered) { return filtered.summary(); });
}

int kestan_filtered_data(const char** out, size_t* length, kestan_filtered* document) {
  return Lend(out, length, document, &kestan_filtered::data,
              [](const auto& filtered) { return filtered.host_data(); });
}

int kestan_filtered_added(uint32_t* out, kestan_filtered* document) {
  if (!kestan::c::CallbackMark::HasDocument(document)) return KESTAN_EHANDLE;
  if (out == nullptr) return KESTAN_EINVALID;
  *out = document->document.added();
  return KESTAN_OK;
}

int kestan_filtered_index(size_t* out, kestan_filtered* document) {
  if (!kestan::c::CallbackMark::HasDocument(document)) return KESTAN_EHANDLE;
  if (out == nullptr) return KESTAN_EINVALID;
  *out = document->document.index();
  return KESTAN_OK;
}
