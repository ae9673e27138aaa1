// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/maintenance/check/lookup_check.h>

#include <algorithm>

namespace kestan {
namespace {

constexpr std::uint64_t kMostNamed = 1000;
constexpr std::size_t kMostKeyBytes = 1024;  // of a key in a line

bool IsUsed(const gdbm::Element& element) { return element.hash != gdbm::kNoElement; }

}  // namespace

void LookupCheck::Run() {
  if (!ReadHeader(file_, &header_, &shape_)) {
    findings_.Fault(kWholeFile, "the header makes no sense");
    return;
  }
  ForEachRun(file_, header_, [this](const gdbm::DirectoryRun& run) { CheckRun(run); });
  if (lost_ > kMostNamed) {
    findings_.Fault(kWholeFile, "more records that no look-up finds: ", lost_ - kMostNamed);
  }
  if (bad_runs_ > kMostNamed) {
    findings_.Fault(kWholeFile, "more such entries: ", bad_runs_ - kMostNamed);
  }
}

void LookupCheck::CheckRun(const gdbm::DirectoryRun& run) {
  gdbm::BucketHead head{};
  const bool is_inside = run.bucket >= sizeof(gdbm::Header) &&
                         file_.Holds(run.bucket, shape_.bucket_bytes) &&
                         file_.Read(run.bucket, &head);
  if (!is_inside || !IsHead(head, shape_)) return ReportRun(run, " lead to no bucket");
  if (!BelongsTo(run, header_, head)) ReportRun(run, " lead to the bucket of others");
  CheckElements(run, static_cast<std::uint32_t>(head.count));
}

void LookupCheck::CheckElements(const gdbm::DirectoryRun& run, std::uint32_t counted) {
  ReadElements(run.bucket);
  if (used_ != counted) ReportRun(run, " lead to a bucket that counts its records wrongly");
  found_.clear();
  for (std::uint32_t place = 0; used_ != 0 && place < elements_.size(); ++place) {
    if (!IsUsed(elements_[place])) continue;
    if (IsFound(run, place)) {
      found_.push_back(place);
    } else {
      ReportLost(elements_[place]);
    }
  }
  ReportSeconds();
}

void LookupCheck::ReadElements(gdbm::Offset bucket) {
  elements_.resize(shape_.elements);
  used_before_.assign(shape_.elements, 0);
  used_ = 0;
  for (std::uint32_t place = 0; place < shape_.elements; ++place) {
    file_.Read(gdbm::ElementAt(bucket, place), &elements_[place]);
    if (IsUsed(elements_[place])) ++used_;
  }
  std::uint32_t row = 0;  // the first place follows the last, so two rounds find every row
  for (std::uint32_t step = 0; step < 2 * shape_.elements; ++step) {
    const std::uint32_t place = step % shape_.elements;
    row = IsUsed(elements_[place]) ? std::min(row + 1, shape_.elements) : 0;
    used_before_[place] = row;
  }
}

// Checks what needs no key first, since the key is read from elsewhere.
bool LookupCheck::IsFound(const gdbm::DirectoryRun& run, std::uint32_t place) const {
  const gdbm::Element& element = elements_[place];
  if (element.hash < 0) return false;
  const auto hash = static_cast<gdbm::Hash>(element.hash);
  const auto entry = gdbm::PrefixOf(hash, static_cast<unsigned>(header_.directory_bits));
  if (entry < run.first || entry >= run.end) return false;
  const std::uint32_t home = hash % shape_.elements;
  const std::uint32_t steps = (place + shape_.elements - home) % shape_.elements;
  return steps < used_before_[place] && file_.IsValid(element);
}

// Of two elements with the same key, a look-up finds the one that it meets first, and a walk shows
// both.
void LookupCheck::ReportSeconds() {
  std::sort(found_.begin(), found_.end(), [this](std::uint32_t left, std::uint32_t right) {
    const gdbm::Element& one = elements_[left];
    const gdbm::Element& other = elements_[right];
    return one.hash != other.hash ? one.hash < other.hash : KeyOf(one) < KeyOf(other);
  });
  for (std::size_t i = 1; i < found_.size(); ++i) {
    const gdbm::Element& one = elements_[found_[i - 1]];
    const gdbm::Element& other = elements_[found_[i]];
    if (one.hash == other.hash && KeyOf(one) == KeyOf(other)) ReportLost(other);
  }
}

// Returns what a walk takes for the key; nothing where that would lie outside the file.
std::string_view LookupCheck::KeyOf(const gdbm::Element& element) const {
  if (element.key_bytes < 0) return {};
  const auto bytes = static_cast<gdbm::Offset>(element.key_bytes);
  return file_.Holds(element.data, bytes) ? file_.View(element.data, bytes) : std::string_view();
}

void LookupCheck::ReportLost(const gdbm::Element& element) {
  if (++lost_ > kMostNamed) return;
  findings_.Fault(KeyOf(element).substr(0, kMostKeyBytes), "no look-up finds the record");
}

void LookupCheck::ReportRun(const gdbm::DirectoryRun& run, const char* what) {
  if (++bad_runs_ > kMostNamed) return;
  findings_.Fault(kWholeFile, "entries ", std::uint64_t{run.first}, " to ",
                  std::uint64_t{run.end - 1}, " of the directory", what);
}

}  // namespace kestan
