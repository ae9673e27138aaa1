// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/building/gdbm_writer.h>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <numeric>
#include <utility>

namespace kestan::gdbm {
namespace {

constexpr std::size_t kBufferBytes = std::size_t{1} << 18;
constexpr std::size_t kMostReserved = std::size_t{1} << 22;

template <typename T>
std::string_view AsBytes(const T& structure) {
  return {reinterpret_cast<const char*>(&structure), sizeof structure};
}

// Puts elements, which are in order of their hashes, where gdbm looks for them: at the first free
// place from that of the hash on.
void FillTable(const Element* first, const Element* end, Vector<Element>* table) {
  std::size_t place = 0;
  for (const Element* element = first; element != end; ++element) {
    const bool goes_on = element != first && element[-1].hash == element->hash;
    if (!goes_on) place = static_cast<std::size_t>(element->hash) % table->size();
    while ((*table)[place].hash != kNoElement) place = (place + 1) % table->size();
    (*table)[place] = *element;
  }
}

bool IsTooLong(std::string_view bytes) { return bytes.size() > INT_MAX; }

}  // namespace

Writer::~Writer() {
  if (is_open()) close(descriptor_);
}

StoreError Writer::Create(const char* path, std::size_t expected_records) {
  if (is_open()) return StoreError::kNotOpen;
  descriptor_ = open(path, O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_LARGEFILE, 0644);
  if (!is_open()) return StoreError::kFileOpen;
  error_ = StoreError::kNone;
  elements_.reserve(std::min(expected_records, kMostReserved));
  buffer_.reserve(kBufferBytes);
  largest_capacity_ = LargestCapacity(expected_records);
  end_ = 0;
  refused_ = 0;
  AppendZeros(BucketBytes(largest_capacity_));  // the header will be here
  return StoreError::kNone;
}

RecordPlace Writer::Add(std::string_view key, std::string_view value) {
  return AddOfHash(HashOf(key), key, value);
}

RecordPlace Writer::AddIfFits(std::string_view key, std::string_view value) {
  const Hash hash = HashOf(key);
  if (prefix_counts_.IsFull(hash, elements_)) {
    ++refused_;
    return {};
  }
  return AddOfHash(hash, key, value);
}

RecordPlace Writer::AddOfHash(Hash hash, std::string_view key, std::string_view value) {
  if (!is_open() || error_ != StoreError::kNone) return {};
  if (IsTooLong(key) || IsTooLong(value)) {
    Fail(StoreError::kMalformedData);
    return {};
  }
  Element element{};
  element.hash = static_cast<std::int32_t>(hash);
  std::memcpy(element.key_start.data(), key.data(), std::min(key.size(), element.key_start.size()));
  element.data = end_;
  element.key_bytes = static_cast<std::int32_t>(key.size());
  element.value_bytes = static_cast<std::int32_t>(value.size());
  elements_.push_back(element);
  Append(key);
  Append(value);
  if (error_ != StoreError::kNone) return {};
  return {element.data, static_cast<std::uint32_t>(key.size()),
          static_cast<std::uint32_t>(value.size())};
}

bool Writer::Contains(std::string_view key, std::size_t records) {
  records = std::min(records, elements_.size());
  if (by_hash_.size() != records) IndexByHash(records);
  const auto hash = static_cast<std::int32_t>(HashOf(key));
  auto next = std::lower_bound(
      by_hash_.begin(), by_hash_.end(), hash,
      [this](std::uint32_t index, std::int32_t wanted) { return elements_[index].hash < wanted; });
  for (; next != by_hash_.end() && elements_[*next].hash == hash; ++next) {
    if (HasKeyAt(elements_[*next], key)) return true;
  }
  return false;
}

void Writer::IndexByHash(std::size_t records) {
  by_hash_.resize(records);
  std::iota(by_hash_.begin(), by_hash_.end(), 0);
  std::sort(by_hash_.begin(), by_hash_.end(), [this](std::uint32_t left, std::uint32_t right) {
    return elements_[left].hash < elements_[right].hash;
  });
}

StoreError Writer::Finish() {
  if (!is_open()) return StoreError::kNotOpen;
  SortByHash(&elements_);
  CheckKeysDiffer();
  BucketPlan plan;
  if (error_ == StoreError::kNone && !PlanBuckets(elements_, largest_capacity_, &plan)) {
    Fail(StoreError::kDirectoryOverflow);
  }
  if (error_ == StoreError::kNone) WriteTables(plan);
  if (close(std::exchange(descriptor_, -1)) != 0) Fail(StoreError::kFileClose);
  elements_ = {};
  prefix_counts_ = {};
  by_hash_ = {};
  buffer_ = {};
  if (error_ != StoreError::kNone) errno = errno_;
  return error_;
}

// Keeps the first error, and what the system says of it.
void Writer::Fail(StoreError error) {
  if (error_ != StoreError::kNone) return;
  error_ = error;
  errno_ = errno;
}

void Writer::Append(std::string_view bytes) {
  if (buffer_.size() + bytes.size() > kBufferBytes) Flush();
  if (bytes.size() > kBufferBytes) {
    WriteAt(end_, bytes);
  } else {
    buffer_.append(bytes);
  }
  end_ += bytes.size();
}

void Writer::AppendZeros(std::uint64_t count) {
  Append(String(static_cast<std::size_t>(count), '\0'));
}

void Writer::Flush() {
  WriteAt(end_ - buffer_.size(), buffer_);
  buffer_.clear();
}

// Does nothing after an error.
void Writer::WriteAt(std::uint64_t offset, std::string_view bytes) {
  while (!bytes.empty() && error_ == StoreError::kNone) {
    const ssize_t written =
        pwrite64(descriptor_, bytes.data(), bytes.size(), static_cast<off64_t>(offset));
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return Fail(StoreError::kFileWrite);
    bytes.remove_prefix(static_cast<std::size_t>(written));
    offset += static_cast<std::uint64_t>(written);
  }
}

String Writer::Read(std::uint64_t offset, std::size_t size) {
  Flush();
  String bytes(size, '\0');
  std::size_t had = 0;
  while (had < size && error_ == StoreError::kNone) {
    const ssize_t read =
        pread64(descriptor_, bytes.data() + had, size - had, static_cast<off64_t>(offset + had));
    if (read < 0 && errno == EINTR) continue;
    if (read <= 0) {
      Fail(StoreError::kFileRead);
    } else {
      had += static_cast<std::size_t>(read);
    }
  }
  return bytes;
}

// A short key stands in the element as a whole.
String Writer::KeyOf(const Element& element) {
  const auto size = static_cast<std::size_t>(element.key_bytes);
  if (size <= element.key_start.size()) return {element.key_start.data(), size};
  return Read(element.data, size);
}

bool Writer::HasKeyAt(const Element& element, std::string_view key) {
  if (static_cast<std::size_t>(element.key_bytes) != key.size()) return false;
  if (std::memcmp(element.key_start.data(), key.data(),
                  std::min(key.size(), element.key_start.size())) != 0) {
    return false;
  }
  return KeyOf(element) == key;
}

// Keys of one hash stand side by side now. There are few: a hash has 31 bits.
void Writer::CheckKeysDiffer() {
  for (std::size_t first = 0; first < elements_.size() && error_ == StoreError::kNone;) {
    std::size_t end = first + 1;
    while (end < elements_.size() && elements_[end].hash == elements_[first].hash) ++end;
    if (end - first > 1) {
      Vector<String> keys;
      for (std::size_t i = first; i < end; ++i) keys.push_back(KeyOf(elements_[i]));
      std::sort(keys.begin(), keys.end());
      if (std::adjacent_find(keys.begin(), keys.end()) != keys.end()) Fail(StoreError::kUnknown);
    }
    first = end;
  }
}

// Appends again the records that begin in the first `bytes` bytes, and leaves zeros there: nobody
// who has the place of such a record will find its key.
void Writer::MoveRecordsOutOf(std::uint64_t bytes) {
  for (Element& element : elements_) {
    if (element.data >= bytes) continue;
    std::uint64_t next = element.data;
    const std::uint64_t end = next + static_cast<std::uint64_t>(element.key_bytes) +
                              static_cast<std::uint64_t>(element.value_bytes);
    element.data = end_;
    while (next < end && error_ == StoreError::kNone) {
      const auto piece = std::min<std::uint64_t>(end - next, kBufferBytes);
      Append(Read(next, static_cast<std::size_t>(piece)));
      next += piece;
    }
  }
  WriteAt(0, String(static_cast<std::size_t>(bytes), '\0'));
}

// Writes directory and buckets after the records, up to the end of a block, and then the header.
void Writer::WriteTables(const BucketPlan& plan) {
  if (plan.capacity > largest_capacity_) MoveRecordsOutOf(plan.bucket_bytes());
  const Offset directory = end_;
  WriteDirectory(plan);
  WriteBuckets(plan);
  AppendZeros((kBlockBytes - end_ % kBlockBytes) % kBlockBytes);
  Flush();
  WriteHeader(plan, directory);
}

// The buckets come right after it.
void Writer::WriteDirectory(const BucketPlan& plan) {
  Offset offset = end_ + plan.directory_bytes();
  for (const PlannedBucket& bucket : plan.buckets) {
    const std::uint32_t entries = std::uint32_t{1} << (plan.directory_bits - bucket.bits);
    for (std::uint32_t entry = 0; entry < entries; ++entry) Append(AsBytes(offset));
    offset += plan.bucket_bytes();
  }
}

void Writer::WriteBuckets(const BucketPlan& plan) {
  Element unused{};
  unused.hash = kNoElement;
  Vector<Element> table;
  for (const PlannedBucket& bucket : plan.buckets) {
    BucketHead head{};
    head.bits = static_cast<std::int32_t>(bucket.bits);
    head.count = static_cast<std::int32_t>(bucket.end - bucket.first);
    Append(AsBytes(head));
    table.assign(plan.capacity, unused);
    FillTable(elements_.data() + bucket.first, elements_.data() + bucket.end, &table);
    Append({reinterpret_cast<const char*>(table.data()), table.size() * sizeof(Element)});
  }
}

void Writer::WriteHeader(const BucketPlan& plan, Offset directory) {
  Header header{};
  header.magic = kMagic;
  header.block_bytes = kBlockBytes;
  header.directory = directory;
  header.directory_bytes = static_cast<std::int32_t>(plan.directory_bytes());
  header.directory_bits = static_cast<std::int32_t>(plan.directory_bits);
  header.bucket_bytes = static_cast<std::int32_t>(plan.bucket_bytes());
  header.bucket_elements = static_cast<std::int32_t>(plan.capacity);
  header.next_block = end_;
  FreeList free{};
  free.size = (kBlockBytes - sizeof header - sizeof free) / sizeof(FreeSpace);
  String bytes(AsBytes(header));
  bytes.append(AsBytes(free));
  WriteAt(0, bytes);
}

}  // namespace kestan::gdbm
