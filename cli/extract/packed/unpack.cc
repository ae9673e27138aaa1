// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/packed/unpack.h"

#include <algorithm>
#include <cstddef>
#include <exception>
#include <new>
#include <utility>

#include "cli/extract/module/loaded_readers.h"
#include "cli/extract/packed/compressed_name.h"
#include "cli/files/skip.h"

namespace kestan_cli {
namespace {

// What the module calls. No exception may pass through it.
class Unpacking {
 public:
  Unpacking(const PieceSource& source, const UnpackRules& rules) : source_(source), rules_(rules) {}

  ByteSource Source() {
    return {this, [](void* unpacking, const char** bytes) noexcept {
              return static_cast<Unpacking*>(unpacking)->Next(bytes);
            }};
  }

  ByteSink Sink() {
    return {this, [](void* unpacking, const char* bytes, std::size_t size) noexcept {
              return static_cast<Unpacking*>(unpacking)->Take({bytes, size});
            }};
  }

  // Returns what has been unpacked.
  //   Throws   what a function of the caller has thrown.
  Unpacked Finish() {
    if (thrown_ != nullptr) std::rethrow_exception(thrown_);
    return std::move(unpacked_);
  }

  bool has_thrown() const { return thrown_ != nullptr; }

 private:
  long Next(const char** bytes) noexcept {
    try {
      const std::string_view piece = source_();
      packed_bytes_ += piece.size();
      *bytes = piece.data();
      return static_cast<long>(piece.size());
    } catch (...) {
      thrown_ = std::current_exception();
      return -1;
    }
  }

  bool Take(std::string_view piece) noexcept {
    try {
      return Add(piece);
    } catch (...) {
      thrown_ = std::current_exception();
      return false;
    }
  }

  bool Add(std::string_view piece) {
    std::string& bytes = unpacked_.bytes;
    const std::uint64_t size = std::uint64_t{bytes.size()} + piece.size();
    if (size > kRatioFrom && size / kMaxRatio > packed_bytes_) {
      throw SkipFile(SkipKind::kTooLarge,
                     "unpacks to more than " + std::to_string(kMaxRatio) + " times its size");
    }
    unpacked_.is_cut = size > rules_.max_bytes;
    if (unpacked_.is_cut && !rules_.cuts) {
      throw SkipFile(SkipKind::kTooLarge,
                     "unpacks to more than " + std::to_string(rules_.max_bytes) + " bytes");
    }
    if (rules_.check) rules_.check(bytes, piece);
    bytes += piece.substr(0, static_cast<std::size_t>(rules_.max_bytes) - bytes.size());
    return !unpacked_.is_cut;
  }

  const PieceSource& source_;
  const UnpackRules& rules_;
  std::uint64_t packed_bytes_ = 0;
  Unpacked unpacked_;
  std::exception_ptr thrown_;
};

}  // namespace

Unpacked Unpack(const PieceSource& source, const UnpackRules& rules) {
  Unpacking unpacking(source, rules);
  ReadProblem problem{};
  const ReadStatus status =
      LoadedReaders().decompress(unpacking.Source(), unpacking.Sink(), kMaxLayers, &problem);
  if (status == ReadStatus::kRead || unpacking.has_thrown()) return unpacking.Finish();
  if (status == ReadStatus::kNoMemory) throw std::bad_alloc();
  throw SkipFile(SkipKind::kUnreadable, std::string("cannot be unpacked: ") + &problem.text[0]);
}

}  // namespace kestan_cli
