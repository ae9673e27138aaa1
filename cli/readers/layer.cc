// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/readers/layer.h"

#include <algorithm>
#include <cstdio>
#include <new>
#include <utility>

namespace kestan_cli {
namespace {

using namespace std::string_view_literals;

Compression CompressionOf(std::string_view head) {
  const auto begins_with = [&](std::string_view magic) {
    return head.substr(0, magic.size()) == magic;
  };
  if (begins_with("\x1f\x8b\x08"sv)) return Compression::kGzip;
  if (begins_with("\xfd"
                  "7zXZ\0"sv)) {
    return Compression::kXz;
  }
  if (begins_with("\x28\xb5\x2f\xfd"sv)) return Compression::kZstd;
  const std::string_view block = head.substr(std::min<std::size_t>(4, head.size()));
  const bool has_block = block == "1AY&SY"sv || block == "\x17rE8P\x90"sv;
  if (begins_with("BZh"sv) && has_block) return Compression::kBzip2;
  return Compression::kNone;
}

}  // namespace

long SourceLayer::Next(const char** bytes) noexcept {
  const long size = source_.next(source_.context, bytes);
  if (size < 0) failure_.status = ReadStatus::kUnread;
  return size;
}

Compression PeekedLayer::Peek() noexcept {
  while (head_size_ < head_.size() && !is_over_) {
    const char* bytes = nullptr;
    last_ = below_.Next(&bytes);
    is_over_ = last_ <= 0;
    if (is_over_) break;
    rest_ = {bytes, static_cast<std::size_t>(last_)};
    const std::size_t taken = std::min(rest_.size(), head_.size() - head_size_);
    std::copy_n(rest_.begin(), taken, head_.begin() + head_size_);
    head_size_ += taken;
    rest_.remove_prefix(taken);
  }
  return CompressionOf({head_.data(), head_size_});
}

long PeekedLayer::Next(const char** bytes) noexcept {
  if (!std::exchange(is_head_given_, true) && head_size_ > 0) {
    *bytes = head_.data();
    return static_cast<long>(head_size_);
  }
  if (!rest_.empty()) {
    const std::string_view rest = std::exchange(rest_, {});
    *bytes = rest.data();
    return static_cast<long>(rest.size());
  }
  return is_over_ ? last_ : below_.Next(bytes);
}

bool LayerStack::Build(int max_layers) noexcept {
  while (true) {
    OwnedLayer owned(new (std::nothrow) PeekedLayer(*top_));
    auto* const peeked = static_cast<PeekedLayer*>(owned.get());
    const Compression compression = peeked != nullptr ? peeked->Peek() : Compression::kNone;
    if (peeked != nullptr && compression == Compression::kNone) {
      layers_.at(used_++) = std::move(owned);
      top_ = peeked;
      return failure_.status == ReadStatus::kRead;
    }
    if (count_ == std::min(max_layers, kMaxLayers)) {
      failure_.status = ReadStatus::kUnread;
      std::snprintf(&failure_.problem.text[0], sizeof failure_.problem.text, "%s",
                    "compressed too many times");
      return false;
    }
    OwnedLayer layer;
    if (peeked != nullptr) {
      layer = compression == Compression::kGzip ? GzipLayerOn(*peeked, &failure_)
                                                : ArchiveLayerOn(*peeked, compression, &failure_);
    }
    if (layer == nullptr) {
      if (failure_.status == ReadStatus::kRead) failure_.status = ReadStatus::kNoMemory;
      return false;
    }
    ++count_;
    top_ = layer.get();
    layers_.at(used_++) = std::move(owned);
    layers_.at(used_++) = std::move(layer);
  }
}

}  // namespace kestan_cli
