// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/packed/archive.h"

#include <algorithm>
#include <exception>
#include <memory>
#include <new>
#include <utility>

#include "cli/extract/converter/converter.h"
#include "cli/extract/module/loaded_readers.h"

namespace kestan_cli {
namespace {

// Ends the reading of all archives around it.
class ArchiveExceedsLimit : public SkipFile {
 public:
  explicit ArchiveExceedsLimit(const std::string& reason) : SkipFile(SkipKind::kTooLarge, reason) {}
};

// What is left of the limits, for an archive and all within it.
struct Budget {
  std::uint64_t bytes;
  std::uint64_t members;
  const std::uint64_t all_bytes = bytes;
  const std::uint64_t all_members = members;
  std::string too_deep{};          // the first archive that was not opened
  std::uint64_t too_deep_count{};  // of such archives

  void TakeMember() {
    if (members-- != 0) return;
    throw ArchiveExceedsLimit("has more than " + std::to_string(all_members) + " members");
  }

  void TakeBytes(std::uint64_t taken) {
    if (taken > bytes) {
      throw ArchiveExceedsLimit("its members unpack to more than " + std::to_string(all_bytes) +
                                " bytes");
    }
    bytes -= taken;
  }
};

// Reads one archive. What the module calls lets no exception pass.
class Reading {
 public:
  Reading(const ArchiveBytes& bytes, const ArchiveLimits& limits, MemberVisitor& visitor)
      : bytes_(bytes), limits_(limits), visitor_(visitor) {}

  // Reads the archive of which the members' names begin with `start`, at `depth` from 1.
  //   Returns  false if the visitor wants no more.
  bool Run(const std::string& start, int depth, Budget* budget) {
    start_ = start;
    depth_ = depth;
    budget_ = budget;
    ReadProblem problem{};
    const ReadStatus status =
        LoadedReaders().read_archive(Source(), budget->bytes, Events(), &problem);
    if (thrown_ != nullptr) std::rethrow_exception(thrown_);
    if (status == ReadStatus::kNoMemory) throw std::bad_alloc();
    if (status == ReadStatus::kUnread) {
      throw SkipFile(SkipKind::kUnreadable, std::string("cannot be unpacked: ") + &problem.text[0]);
    }
    return !is_over_;
  }

 private:
  static Reading& Of(void* context) { return *static_cast<Reading*>(context); }

  // Returns what `step` returns; `if_thrown` if it throws, and keeps what it has thrown.
  template <typename Result, typename Step>
  Result Caught(Result if_thrown, const Step& step) noexcept {
    try {
      return step();
    } catch (...) {
      thrown_ = std::current_exception();
      return if_thrown;
    }
  }

  ArchiveSource Source() {
    return {{this,
             [](void* context, const char** bytes) noexcept {
               return Of(context).Caught(-1L, [&] {
                 const std::string_view piece = Of(context).bytes_.next();
                 *bytes = piece.data();
                 return static_cast<long>(piece.size());
               });
             }},
            bytes_.size,
            [](void* context, unsigned long long at) noexcept {
              return Of(context).Caught(false, [&] {
                Of(context).bytes_.move_to(at);
                return true;
              });
            }};
  }

  ArchiveEvents Events() {
    return {this,
            [](void* context, const char* name, long long seconds) noexcept {
              return Of(context).Caught(MemberChoice::kStop,
                                        [&] { return Of(context).Begin(name, seconds); });
            },
            [](void* context, const char* bytes, std::size_t size) noexcept {
              return Of(context).Caught(false, [&] { return Of(context).Add({bytes, size}); });
            },
            [](void* context, const char* problem) noexcept {
              return Of(context).Caught(false, [&] { return Of(context).End(problem); });
            }};
  }

  MemberChoice Begin(const std::string& name, std::int64_t seconds) {
    if (thrown_ != nullptr || is_over_) return MemberChoice::kStop;
    budget_->TakeMember();
    ++number_;
    name_ = start_ + (name.empty() ? "member " + std::to_string(number_) : name);
    member_.clear();
    seconds_ = seconds;
    return visitor_.Wants(name_) ? MemberChoice::kRead : MemberChoice::kPass;
  }

  bool Add(std::string_view piece) {
    budget_->TakeBytes(piece.size());
    if (member_.size() + piece.size() > limits_.max_member_bytes) {
      visitor_.Skip(name_, SkipKind::kTooLarge,
                    "larger than " + std::to_string(limits_.max_member_bytes) + " bytes");
      return false;
    }
    const std::string reason = visitor_.ReasonToSkip(name_, member_, piece);
    if (!reason.empty()) {
      visitor_.Skip(name_, SkipKind::kBinary, reason);
      return false;
    }
    member_ += piece;
    return true;
  }

  bool End(const char* problem) {
    if (problem != nullptr) {
      visitor_.Skip(name_, SkipKind::kUnreadable, std::string("cannot be unpacked: ") + problem);
    } else if (limits_.is_archive(name_, std::string_view(member_).substr(0, kHeadBytes))) {
      ReadInner();
    } else {
      is_over_ = !visitor_.Take(name_, std::exchange(member_, {}), seconds_);
    }
    return !is_over_;
  }

  void ReadInner() {
    if (depth_ == kMaxArchiveDepth) {
      if (budget_->too_deep_count++ == 0) budget_->too_deep = name_;
      return;
    }
    const std::string inner = std::exchange(member_, {});
    const ArchiveBytes bytes = ArchiveBytesOf(std::string_view(inner));
    Reading reading(bytes, limits_, visitor_);
    try {
      is_over_ = !reading.Run(name_ + "#", depth_ + 1, budget_);
    } catch (const ArchiveExceedsLimit&) {
      throw;
    } catch (const SkipFile& skip) {
      visitor_.Skip(name_, skip.kind(), skip.what());
    }
  }

  const ArchiveBytes& bytes_;
  const ArchiveLimits& limits_;
  MemberVisitor& visitor_;
  std::string start_;
  int depth_ = 1;
  Budget* budget_ = nullptr;
  std::string name_;    // of the current member
  std::string member_;  // what there is of it
  std::int64_t seconds_ = 0;
  std::uint64_t number_ = 0;
  bool is_over_ = false;
  std::exception_ptr thrown_;
};

// Bombs hold archives by the thousand.
void TellWhatIsTooDeep(const Budget& budget, MemberVisitor& visitor) {
  if (budget.too_deep_count == 0) return;
  std::string reason =
      "an archive within " + std::to_string(kMaxArchiveDepth) + " others is not opened";
  if (budget.too_deep_count > 1) {
    reason += ", nor are " + std::to_string(budget.too_deep_count - 1) + " more in the same file";
  }
  visitor.Skip(budget.too_deep, SkipKind::kTooLarge, reason);
}

}  // namespace

ArchiveBytes ArchiveBytesOf(StableFile& file) {
  return {[&file] {
            std::string_view piece;
            return file.Read(&piece) ? piece : std::string_view();
          },
          [&file](std::uint64_t at) { file.MoveTo(at); }, file.state().bytes};
}

ArchiveBytes ArchiveBytesOf(std::string_view bytes) {
  constexpr std::size_t kPieceBytes = std::size_t{1} << 20;
  const auto at = std::make_shared<std::size_t>(0);
  return {[bytes, at] {
            const std::string_view piece = bytes.substr(*at, kPieceBytes);
            *at += piece.size();
            return piece;
          },
          [at](std::uint64_t place) { *at = static_cast<std::size_t>(place); }, bytes.size()};
}

void ReadMembers(const ArchiveBytes& bytes, const ArchiveLimits& limits, MemberVisitor& visitor) {
  const std::uint64_t by_ratio =
      std::max(kRatioFrom, bytes.size > kMaxArchiveBytes / kMaxRatio ? kMaxArchiveBytes
                                                                     : bytes.size * kMaxRatio);
  Budget budget{std::min(limits.max_bytes, by_ratio), limits.max_members};
  try {
    Reading(bytes, limits, visitor).Run("", 1, &budget);
  } catch (const SkipFile&) {
    TellWhatIsTooDeep(budget, visitor);
    throw;
  }
  TellWhatIsTooDeep(budget, visitor);
}

}  // namespace kestan_cli
