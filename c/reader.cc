// SPDX-License-Identifier: GPL-3.0-or-later
#include <mutex>
#include <string>
#include <vector>

#include "c/input.h"
#include "c/reader_handle.h"

using kestan::c::Invalid;
using kestan::c::OpenReader;
using kestan::c::Status;
using kestan::search::IndexReader;
using kestan::search::IndexStatistics;

namespace {

// More are not opened at once: a number beyond may be no number at all.
constexpr std::size_t kMaxIndexes = 10000;

thread_local const kestan::c::CallbackMark* innermost_callback = nullptr;

Status Open(const std::vector<std::string>& paths, kestan_reader* handle) {
  auto opened = IndexReader::Open(paths);
  if (!opened.ok()) return opened.status();
  handle->reader = std::make_shared<OpenReader>(std::move(*opened));
  return {};
}

}  // namespace

namespace kestan::c {

CallbackMark::CallbackMark(const OpenReader* reader, const kestan_filtered* document) noexcept
    : reader_(reader), document_(document), outer_(innermost_callback) {
  innermost_callback = this;
}

CallbackMark::~CallbackMark() { innermost_callback = outer_; }

bool CallbackMark::IsSet(const OpenReader* reader) noexcept {
  const CallbackMark* mark = innermost_callback;
  while (mark != nullptr && mark->reader_ != reader) mark = mark->outer_;
  return mark != nullptr;
}

bool CallbackMark::IsAnySet() noexcept { return innermost_callback != nullptr; }

bool CallbackMark::HasDocument(const kestan_filtered* document) noexcept {
  const CallbackMark* mark = innermost_callback;
  while (mark != nullptr && mark->document_ != document) mark = mark->outer_;
  return mark != nullptr;
}

}  // namespace kestan::c

int kestan_reader_open(kestan_reader** out, const char* path, size_t path_length) {
  return kestan_reader_open_many(out, &path, &path_length, 1);
}

int kestan_reader_open_many(kestan_reader** out, const char* const* paths,
                            const size_t* path_lengths, size_t count) {
  return kestan::c::HandOverOpened(out, [&](kestan_reader& handle) {
    if (paths == nullptr || path_lengths == nullptr) return Invalid("the paths are null");
    if (count == 0) return Invalid("there is no path");
    if (count > kMaxIndexes) return Invalid("there are more than 10,000 paths");
    std::vector<std::string> folders(count);
    for (std::size_t i = 0; i < count; ++i) {
      Status status = kestan::c::ReadPath(paths[i], path_lengths[i], &folders[i]);
      if (!status.ok()) return status;
    }
    return Open(folders, &handle);
  });
}

void kestan_reader_free(kestan_reader* reader) { kestan::c::Free(reader); }

int kestan_reader_refresh(int* changed, kestan_reader* reader) {
  return kestan::c::Use(reader, [&](kestan_reader& live) -> int {
    OpenReader* const open = live.reader.get();
    if (open == nullptr) return live.Return(Invalid("the reader could not be opened"));
    if (kestan::c::CallbackMark::IsSet(open)) {
      return live.Return(Invalid("a filter cannot use the reader that it filters for"));
    }
    const std::lock_guard<std::mutex> turn(open->turn);
    const std::unique_lock<std::shared_mutex> lock(open->mutex);
    const auto refreshed = open->index.Refresh();
    if (!refreshed.ok()) return live.Return(refreshed.status());
    if (changed != nullptr) *changed = *refreshed ? 1 : 0;
    return KESTAN_OK;
  });
}

int kestan_statistics_init(kestan_statistics* statistics, unsigned version) {
  return kestan::c::Initialise(statistics, version, KESTAN_STATISTICS_INIT);
}

int kestan_reader_statistics(kestan_statistics* out, kestan_reader* reader) {
  return kestan::c::Ask(out, reader, [&](kestan_reader& live, const IndexReader& index) {
    Status status =
        kestan::c::CheckVersion("the statistics are", out->version, KESTAN_STATISTICS_VERSION);
    if (!status.ok()) return live.Return(std::move(status));
    const IndexStatistics statistics = index.Statistics();
    out->with_positions = statistics.with_positions ? 1 : 0;
    out->documents = statistics.documents;
    out->removed_documents = statistics.removed_documents;
    out->words = statistics.words;
    out->segments = statistics.segments;
    out->bytes = statistics.bytes;
    return live.Return({});
  });
}
