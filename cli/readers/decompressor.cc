// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/readers/decompressor.h"

#include "cli/readers/archive_problem.h"
#include "cli/readers/layer.h"

namespace kestan_cli {
namespace {

ReadStatus Failed(const LayerStack& layers, ReadProblem* problem) {
  *problem = layers.failure().problem;
  return layers.failure().status;
}

}  // namespace

ReadStatus Decompress(const ByteSource& source, const ByteSink& sink, int max_layers,
                      ReadProblem* problem) noexcept {
  LayerStack layers(source);
  if (!layers.Build(max_layers)) return Failed(layers, problem);
  if (layers.count() < 1) return Refuse("it ends too early, or is not compressed", problem);
  while (true) {
    const char* bytes = nullptr;
    const long size = layers.Next(&bytes);
    if (size < 0) return Failed(layers, problem);
    if (size == 0) return ReadStatus::kRead;
    if (!sink.add(sink.context, bytes, static_cast<std::size_t>(size))) return ReadStatus::kRead;
  }
}

}  // namespace kestan_cli
