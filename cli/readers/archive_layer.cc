// SPDX-License-Identifier: GPL-3.0-or-later
#include <archive.h>
#include <archive_entry.h>

#include <cerrno>
#include <cstdio>
#include <new>

#include "cli/readers/archive_problem.h"
#include "cli/readers/layer.h"

namespace kestan_cli {
namespace {

// Has `opened` read what one program writes. Where libarchive was built without it, it would start
// the program.
bool Prepare(archive* opened, Compression compression) {
  const int result = compression == Compression::kBzip2 ? archive_read_support_filter_bzip2(opened)
                     : compression == Compression::kXz  ? archive_read_support_filter_xz(opened)
                                                        : archive_read_support_filter_zstd(opened);
  return result == ARCHIVE_OK && archive_read_support_format_raw(opened) == ARCHIVE_OK &&
         archive_read_support_format_empty(opened) == ARCHIVE_OK;
}

class ArchiveLayer : public Layer {
 public:
  ArchiveLayer(Layer& below, Compression compression, LayerFailure* failure)
      : below_(below), compression_(compression), failure_(*failure), opened_(archive_read_new()) {}

  bool has_memory() const { return opened_ != nullptr; }

  long Next(const char** bytes) noexcept override {
    if (step_ == Step::kClosed) Open();
    if (step_ == Step::kFailed) return -1;
    if (step_ == Step::kEnd) return 0;
    const void* piece = nullptr;
    std::size_t size = 0;
    la_int64_t offset = 0;
    do {
      const int result = archive_read_data_block(opened_.get(), &piece, &size, &offset);
      if (result == ARCHIVE_EOF) return Finish();
      if (result != ARCHIVE_OK) return Fail();
    } while (size == 0);
    *bytes = static_cast<const char*>(piece);
    return static_cast<long>(size);
  }

 private:
  enum class Step { kClosed, kOpen, kEnd, kFailed };

  long Fail(const char* reason = nullptr) noexcept {
    step_ = Step::kFailed;
    if (failure_.status != ReadStatus::kRead) return -1;  // below
    failure_.status = reason != nullptr ? Refuse(reason, &failure_.problem)
                                        : StatusOfError(opened_.get(), &failure_.problem);
    return -1;
  }

  // libarchive leaves unread what it does not know.
  long Finish() noexcept {
    step_ = Step::kEnd;
    const char* ignored = nullptr;
    while (true) {
      const long size = below_.Next(&ignored);
      if (size < 0) return Fail();
      if (size == 0) break;
      given_ += size;
    }
    if (archive_filter_bytes(opened_.get(), -1) < given_) {
      return Fail("it is followed by something else");
    }
    return 0;
  }

  void Open() noexcept {
    archive* const opened = opened_.get();
    if (!Prepare(opened, compression_)) {
      Fail("libarchive lacks a decoder");
      return;
    }
    const int result = archive_read_open(
        opened, this, nullptr,
        [](archive*, void* layer, const void** bytes) -> la_ssize_t {
          return static_cast<ArchiveLayer*>(layer)->ReadBelow(bytes);
        },
        nullptr);
    // Bytes that are broken from the start look like none.
    if (result != ARCHIVE_OK || archive_errno(opened) != 0) {
      Fail();
      return;
    }
    if (archive_filter_count(opened) != 2) {  // the program's own, and the one that reads
      Fail(archive_filter_count(opened) > 2 ? "compressed too many times" : "it ends too early");
      return;
    }
    archive_entry* entry = nullptr;
    const int found = archive_read_next_header(opened, &entry);
    step_ = found == ARCHIVE_OK ? Step::kOpen : Step::kEnd;
    if (found != ARCHIVE_OK && found != ARCHIVE_EOF) Fail();
  }

  la_ssize_t ReadBelow(const void** bytes) noexcept {
    const char* piece = nullptr;
    const long size = below_.Next(&piece);
    *bytes = piece;
    if (size > 0) given_ += size;
    return size;
  }

  Layer& below_;
  const Compression compression_;
  LayerFailure& failure_;
  const OwnedArchive opened_;
  Step step_ = Step::kClosed;
  la_int64_t given_ = 0;  // bytes from below
};

}  // namespace

OwnedLayer ArchiveLayerOn(Layer& below, Compression compression, LayerFailure* failure) noexcept {
  OwnedLayer layer(new (std::nothrow) ArchiveLayer(below, compression, failure));
  if (layer != nullptr && !static_cast<ArchiveLayer*>(layer.get())->has_memory()) layer.reset();
  return layer;
}

}  // namespace kestan_cli
