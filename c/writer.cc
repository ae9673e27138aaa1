// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/c.h>
#include <kestan/search/index_writer.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "c/handles/handle.h"
#include "c/input.h"

using kestan::c::Error;
using kestan::c::Input;
using kestan::c::Invalid;
using kestan::c::Status;
using kestan::search::Document;
using kestan::search::IndexWriter;
using kestan::search::WriterOptions;
using kestan::search::WriterProgress;

struct kestan_writer final : kestan::c::Handle {
  std::optional<IndexWriter> writer;     // none if it could not be opened
  std::vector<Status> warnings;          // that are still to be given, the last one first
  std::unique_ptr<Error> given_warning;  // that was given last
  std::atomic<bool> is_at_work{false};   // a call is running
};

namespace {

// Runs `call` unless another call is running.
template <typename Call>
int UseAlone(kestan_writer* handle, Call call) noexcept {
  return kestan::c::Use(handle, [&](kestan_writer& live) {
    if (live.is_at_work.exchange(true)) {
      return live.Return(Invalid("another call with this writer is running"));
    }
    const int code = kestan::c::Guarded(&live, [&] {
      return live.writer ? call(live) : live.Return(Invalid("the writer could not be opened"));
    });
    live.is_at_work = false;
    return code;
  });
}

// The same for a `call` that returns a Status.
template <typename Call>
int Change(kestan_writer* handle, Call call) noexcept {
  return UseAlone(handle, [&](kestan_writer& live) { return live.Return(call(*live.writer)); });
}

std::function<bool(const WriterProgress&)> CallbackOf(const kestan_writer_options& options) {
  if (options.progress == nullptr) return {};
  return [callback = options.progress,
          payload = options.progress_payload](const WriterProgress& progress) {
    const kestan_progress seen = {progress.phase == WriterProgress::Phase::kMerging
                                      ? KESTAN_PHASE_MERGING
                                      : KESTAN_PHASE_WRITING,
                                  progress.done_bytes, progress.all_bytes};
    return callback(&seen, payload) == 0;
  };
}

Status ReadField(const Input& input, std::string* field) {
  std::string_view view;
  Status status = kestan::c::Read(input, &view);
  if (!status.ok()) return status;
  *field = view;
  return {};
}

Status Read(const kestan_document* document, Document* read) {
  if (document == nullptr) return Invalid("the document is null");
  Status status =
      kestan::c::CheckVersion("the document is", document->version, KESTAN_DOCUMENT_VERSION);
  const std::array<std::pair<Input, std::string*>, 5> fields{{
      {{"the name", document->name, document->name_length}, &read->name},
      {{"the text", document->text, document->text_length}, &read->text},
      {{"the title", document->title, document->title_length}, &read->title},
      {{"the summary", document->summary, document->summary_length}, &read->summary},
      {{"the data", document->data, document->data_length}, &read->host_data},
  }};
  for (const auto& [input, field] : fields) {
    if (status.ok()) status = ReadField(input, field);
  }
  return status;
}

}  // namespace

int kestan_writer_options_init(kestan_writer_options* options, unsigned version) {
  return kestan::c::Initialise(options, version, KESTAN_WRITER_OPTIONS_INIT);
}

int kestan_document_init(kestan_document* document, unsigned version) {
  return kestan::c::Initialise(document, version, KESTAN_DOCUMENT_INIT);
}

int kestan_writer_open(kestan_writer** out, const char* path, size_t path_length,
                       const kestan_writer_options* options) {
  return kestan::c::HandOverOpened(out, [&](kestan_writer& handle) {
    std::string folder;
    WriterOptions read;
    Status status = kestan::c::ReadPath(path, path_length, &folder);
    if (status.ok()) status = kestan::c::Read(options, &read);
    if (!status.ok()) return status;
    if (options != nullptr) read.progress = CallbackOf(*options);
    auto writer = IndexWriter::Open(folder, std::move(read));
    if (!writer.ok()) return writer.status();
    handle.writer.emplace(std::move(*writer));
    return Status();
  });
}

void kestan_writer_free(kestan_writer* writer) { kestan::c::Free(writer); }

int kestan_writer_add(kestan_writer* writer, const kestan_document* document) {
  return Change(writer, [&](IndexWriter& index) {
    Document read;
    Status status = Read(document, &read);
    return status.ok() ? index.Add(std::move(read)) : status;
  });
}

int kestan_writer_remove(kestan_writer* writer, const char* name, size_t name_length) {
  return Change(writer, [&](IndexWriter& index) {
    std::string_view view;
    Status status = kestan::c::Read({"the name", name, name_length}, &view);
    return status.ok() ? index.Remove(view) : status;
  });
}

int kestan_writer_rename(kestan_writer* writer, const char* from, size_t from_length,
                         const char* to, size_t to_length) {
  return Change(writer, [&](IndexWriter& index) {
    std::string_view old_name;
    std::string_view new_name;
    Status status = kestan::c::Read({"the old name", from, from_length}, &old_name);
    if (status.ok()) status = kestan::c::Read({"the new name", to, to_length}, &new_name);
    return status.ok() ? index.Rename(old_name, new_name) : status;
  });
}

int kestan_writer_commit(kestan_writer* writer) {
  return Change(writer, [](IndexWriter& index) { return index.Commit(); });
}

int kestan_writer_rollback(kestan_writer* writer) {
  return Change(writer, [](IndexWriter& index) { return index.Rollback(); });
}

int kestan_writer_compact(kestan_writer* writer) {
  return Change(writer, [](IndexWriter& index) { return index.Compact(); });
}

int kestan_writer_warning(const kestan_error** out, kestan_writer* writer) {
  return UseAlone(writer, [&](kestan_writer& live) -> int {
    if (out == nullptr) return live.Return(Invalid("the output is null"));
    if (live.warnings.empty()) {
      live.warnings = live.writer->TakeWarnings();
      std::reverse(live.warnings.begin(), live.warnings.end());
    }
    if (live.warnings.empty()) return KESTAN_ITEROVER;
    live.given_warning = std::make_unique<Error>(std::move(live.warnings.back()));
    live.warnings.pop_back();
    *out = live.given_warning->view();
    return KESTAN_OK;
  });
}
