// SPDX-License-Identifier: GPL-3.0-or-later
#include <zlib.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <new>

#include "cli/readers/layer.h"

namespace kestan_cli {
namespace {

constexpr int kGzipWindow = 15 + 16;  // the largest window, with the header of gzip
constexpr std::size_t kPieceBytes = std::size_t{1} << 16;

// zlib compares the checksum and the size at the end of each file with what it has unpacked.
class GzipLayer : public Layer {
 public:
  GzipLayer(Layer& below, LayerFailure* failure) : below_(below), failure_(*failure) {}
  ~GzipLayer() override {
    if (is_ready_) inflateEnd(&stream_);
  }

  // Returns false if there is no memory.
  bool Prepare() noexcept { return is_ready_ = inflateInit2(&stream_, kGzipWindow) == Z_OK; }

  long Next(const char** bytes) noexcept override {
    stream_.next_out = piece_.data();
    stream_.avail_out = static_cast<uInt>(piece_.size());
    while (stream_.avail_out == piece_.size() && step_ != Step::kFailed) {
      if (stream_.avail_in == 0 && !is_at_end_) Fill();
      if (step_ == Step::kBetween && !FindNextFile()) continue;
      if (step_ == Step::kEnd) break;
      if (step_ == Step::kInside) Inflate();
    }
    *bytes = reinterpret_cast<const char*>(piece_.data());
    const auto size = static_cast<long>(piece_.size() - stream_.avail_out);
    if (size > 0 || step_ != Step::kFailed) return size;
    Report();
    return -1;
  }

 private:
  enum class Step { kInside, kBetween, kEnd, kFailed };

  // What was unpacked before is given first.
  void Fail(const char* reason) noexcept {
    step_ = Step::kFailed;
    reason_ = reason;
  }

  void Report() noexcept {
    if (failure_.status != ReadStatus::kRead) return;  // below
    failure_.status = reason_ != nullptr ? ReadStatus::kUnread : ReadStatus::kNoMemory;
    if (reason_ == nullptr) return;
    std::snprintf(&failure_.problem.text[0], sizeof failure_.problem.text, "%s", reason_);
  }

  void Fill() noexcept {
    const char* bytes = nullptr;
    const long size = below_.Next(&bytes);
    if (size < 0) return Fail("it ends too early");
    is_at_end_ = size == 0;
    stream_.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes));
    stream_.avail_in = static_cast<uInt>(size);
  }

  // Passes over zeros, with which some media are filled.
  //   Returns  false if more bytes are needed to know what follows.
  bool FindNextFile() noexcept {
    while (stream_.avail_in > 0 && *stream_.next_in == 0) {
      ++stream_.next_in;
      --stream_.avail_in;
      has_zeros_ = true;
    }
    if (stream_.avail_in > 0) {
      if (has_zeros_ || inflateReset(&stream_) != Z_OK) Fail("it is followed by something else");
      if (step_ == Step::kBetween) step_ = Step::kInside;
    } else if (is_at_end_) {
      step_ = Step::kEnd;
    }
    return step_ != Step::kBetween;
  }

  void Inflate() noexcept {
    if (stream_.avail_in == 0 && is_at_end_) return Fail("it ends too early");
    const int result = inflate(&stream_, Z_NO_FLUSH);
    if (result == Z_STREAM_END) {
      step_ = Step::kBetween;
    } else if (result == Z_MEM_ERROR) {
      Fail(nullptr);
    } else if (result != Z_OK && result != Z_BUF_ERROR) {
      Fail(stream_.msg != nullptr ? stream_.msg : "broken");
    }
  }

  Layer& below_;
  LayerFailure& failure_;
  z_stream stream_{};
  bool is_ready_ = false;
  bool is_at_end_ = false;
  bool has_zeros_ = false;
  Step step_ = Step::kInside;
  const char* reason_ = nullptr;  // for kFailed; null: no memory
  std::array<Bytef, kPieceBytes> piece_{};
};

}  // namespace

OwnedLayer GzipLayerOn(Layer& below, LayerFailure* failure) noexcept {
  OwnedLayer layer(new (std::nothrow) GzipLayer(below, failure));
  if (layer != nullptr && !static_cast<GzipLayer*>(layer.get())->Prepare()) layer.reset();
  return layer;
}

}  // namespace kestan_cli
