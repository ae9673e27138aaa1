// SPDX-License-Identifier: GPL-3.0-or-later
// Compressed bytes as layers, each of which reads the one below it.
#ifndef KESTAN_CLI_READERS_LAYER_H_
#define KESTAN_CLI_READERS_LAYER_H_

#include <array>
#include <cstddef>
#include <memory>
#include <string_view>

#include "cli/readers/readers.h"

namespace kestan_cli {

// Gives bytes, in pieces. One thread at a time.
class Layer {
 public:
  Layer() = default;
  virtual ~Layer() = default;
  Layer(const Layer&) = delete;
  Layer& operator=(const Layer&) = delete;

  // Sets `*bytes` to the next piece, which is valid until the next call.
  //   Returns  its size; 0 at the end; -1 if there will be no more: then the LayerFailure of its
  //            stack says why.
  virtual long Next(const char** bytes) noexcept = 0;
};

// What a stack of layers shares: why the first of them failed. The layers borrow it.
struct LayerFailure {
  ReadStatus status = ReadStatus::kRead;
  ReadProblem problem{};  // empty if the source itself has failed, or there is no memory
};

// The bytes of a source.
class SourceLayer : public Layer {
 public:
  // Borrows the context of `source`, and `failure`.
  SourceLayer(const ByteSource& source, LayerFailure* failure)
      : source_(source), failure_(*failure) {}

  long Next(const char** bytes) noexcept override;

 private:
  const ByteSource source_;
  LayerFailure& failure_;
};

enum class Compression { kNone, kGzip, kBzip2, kXz, kZstd };

// The bytes of another layer, whose first ones are known beforehand.
class PeekedLayer : public Layer {
 public:
  explicit PeekedLayer(Layer& below) : below_(below) {}

  // Returns by which program the bytes were written, as far as the first of them tell. To be
  // called before Next().
  Compression Peek() noexcept;

  long Next(const char** bytes) noexcept override;

 private:
  static constexpr std::size_t kHeadBytes = 10;

  Layer& below_;
  std::array<char, kHeadBytes> head_{};
  std::size_t head_size_ = 0;
  std::string_view rest_;  // of the piece of which the last bytes of the head are
  bool is_head_given_ = false;
  bool is_over_ = false;  // the source has ended or failed
  long last_ = 0;         // what it returned then
};

using OwnedLayer = std::unique_ptr<Layer>;

// Returns a layer that decompresses what gzip wrote below, and checks its checksums. Files of gzip
// behind each other are one, and zeros may follow them. Null without memory.
OwnedLayer GzipLayerOn(Layer& below, LayerFailure* failure) noexcept;

// Returns a layer that decompresses what bzip2, xz or zstd wrote below, by libarchive. Null without
// memory.
OwnedLayer ArchiveLayerOn(Layer& below, Compression compression, LayerFailure* failure) noexcept;

// Layers on a source, as many as its bytes ask for.
class LayerStack {
 public:
  static constexpr int kMaxLayers = 8;

  // Borrows the context of `source`.
  explicit LayerStack(const ByteSource& source) noexcept : source_(source, &failure_) {}

  // Puts up to `max_layers` layers on the source, no more than kMaxLayers.
  //   Returns  false if there are too many, or no memory: failure() says so.
  bool Build(int max_layers) noexcept;

  // Returns how many there are.
  int count() const { return count_; }

  // As Layer::Next(), of the uppermost layer. To be called after Build().
  long Next(const char** bytes) noexcept { return top_->Next(bytes); }

  const LayerFailure& failure() const { return failure_; }

 private:
  LayerFailure failure_;
  SourceLayer source_;
  std::array<OwnedLayer, 2 * kMaxLayers + 1> layers_;
  std::size_t used_ = 0;
  int count_ = 0;
  Layer* top_ = &source_;
};

}  // namespace kestan_cli

#endif  // KESTAN_CLI_READERS_LAYER_H_
