#include <kestan/storage/gdbm/gdbm_writer.h>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cmath>
#include <cstring>
#include <utility>

namespace kestan::gdbm {
namespace {

constexpr std::size_t kBufferBytes = 1 << 20;
// About so many records go into a bucket, and into a sixteenth of a small file.
constexpr std::size_t kLeastInBucket = 64;
constexpr std::size_t kMostInBucket = 512;
constexpr std::uint32_t kSmallestBlock = 1024;
constexpr std::uint32_t kLargestBlock = 1 << 20;
constexpr unsigned kLeastDirectoryBits = 3;
constexpr unsigned kMostDirectoryBits = 24;

std::uint32_t ElementsIn(std::uint32_t block_bytes) {
  return static_cast<std::uint32_t>((block_bytes - sizeof(BucketHead)) / sizeof(Element));
}

// Returns how large a block must be for a bucket of so many records.
std::uint32_t BlockFor(std::size_t records) {
  constexpr std::uint32_t kStep = 512;
  const std::size_t bytes = sizeof(BucketHead) + records * sizeof(Element);
  const std::size_t blocks =
      std::max((bytes + kStep - 1) / kStep * kStep, static_cast<std::size_t>(kSmallestBlock));
  return static_cast<std::uint32_t>(std::min<std::size_t>(blocks, kLargestBlock));
}

// Returns a size with which few buckets of so many records must be split further: records fall into
// 2^n buckets by chance, and three standard deviations above the mean are rare.
std::uint32_t ChooseBlock(std::size_t records) {
  const std::size_t most = std::clamp(records / 16, kLeastInBucket, kMostInBucket);
  auto mean = static_cast<double>(records);
  while (mean > static_cast<double>(most)) mean /= 2;
  return BlockFor(static_cast<std::size_t>(mean + 3 * std::sqrt(mean)) + 1);
}

template <typename T>
std::string_view AsBytes(const T& structure) {
  return {reinterpret_cast<const char*>(&structure), sizeof structure};
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
  block_bytes_ = ChooseBlock(expected_records);
  elements_.clear();
  elements_.reserve(expected_records);
  by_hash_.clear();
  end_ = 0;
  AppendZeros(block_bytes_);  // where the header will be
  return StoreError::kNone;
}

RecordPlace Writer::Add(std::string_view key, std::string_view value) {
  if (!is_open() || error_ != StoreError::kNone) return {};
  if (IsTooLong(key) || IsTooLong(value)) {
    Fail(StoreError::kMalformedData);
    return {};
  }
  Element element{};
  element.hash = static_cast<std::int32_t>(HashOf(key));
  std::memcpy(element.key_start.data(), key.data(), std::min(key.size(), element.key_start.size()));
  element.data = end_;
  element.key_bytes = static_cast<std::int32_t>(key.size());
  element.value_bytes = static_cast<std::int32_t>(value.size());
  elements_.push_back(element);
  Append(key);
  Append(value);
  return {element.data, static_cast<std::uint32_t>(key.size()),
          static_cast<std::uint32_t>(value.size())};
}

bool Writer::Contains(std::string_view key, std::size_t records) {
  records = std::min(records, elements_.size());
  if (by_hash_.size() != records) {
    by_hash_.resize(records);
    for (std::uint32_t i = 0; i < records; ++i) by_hash_[i] = i;
    std::sort(by_hash_.begin(), by_hash_.end(), [this](std::uint32_t left, std::uint32_t right) {
      return elements_[left].hash < elements_[right].hash;
    });
  }
  const auto hash = static_cast<std::int32_t>(HashOf(key));
  auto next = std::lower_bound(
      by_hash_.begin(), by_hash_.end(), hash,
      [this](std::uint32_t index, std::int32_t wanted) { return elements_[index].hash < wanted; });
  for (; next != by_hash_.end() && elements_[*next].hash == hash; ++next) {
    if (HasKeyAt(elements_[*next], key)) return true;
  }
  return false;
}

StoreError Writer::Finish() {
  if (!is_open()) return StoreError::kNotOpen;
  SortElements();
  CheckKeysDiffer();
  MakeBuckets();
  AppendZeros((block_bytes_ - end_ % block_bytes_) % block_bytes_);
  const Offset directory = end_;
  WriteDirectory();
  WriteBuckets();
  Flush();
  WriteHeader(directory);
  if (close(std::exchange(descriptor_, -1)) != 0) Fail(StoreError::kFileClose);
  elements_ = {};
  buckets_ = {};
  return error_;
}

void Writer::Fail(StoreError error) {
  if (error_ == StoreError::kNone) error_ = error;
}

void Writer::Append(std::string_view bytes) {
  end_ += bytes.size();
  buffer_.append(bytes);
  if (buffer_.size() >= kBufferBytes) Flush();
}

void Writer::AppendZeros(std::uint64_t count) {
  buffer_.append(static_cast<std::size_t>(count), '\0');
  end_ += count;
}

void Writer::Flush() {
  if (error_ == StoreError::kNone) WriteAt(end_ - buffer_.size(), buffer_);
  buffer_.clear();
}

void Writer::WriteAt(std::uint64_t offset, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written =
        pwrite64(descriptor_, bytes.data(), bytes.size(), static_cast<off64_t>(offset));
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return Fail(StoreError::kFileWrite);
    bytes.remove_prefix(static_cast<std::size_t>(written));
    offset += static_cast<std::uint64_t>(written);
  }
}

String Writer::KeyOf(const Element& element) {
  Flush();
  String key(static_cast<std::size_t>(element.key_bytes), '\0');
  std::size_t had = 0;
  while (had < key.size()) {
    const ssize_t read = pread64(descriptor_, key.data() + had, key.size() - had,
                                 static_cast<off64_t>(element.data + had));
    if (read < 0 && errno == EINTR) continue;
    if (read <= 0) {
      Fail(StoreError::kFileRead);
      break;
    }
    had += static_cast<std::size_t>(read);
  }
  return key;
}

bool Writer::HasKeyAt(const Element& element, std::string_view key) {
  if (static_cast<std::size_t>(element.key_bytes) != key.size()) return false;
  if (std::memcmp(element.key_start.data(), key.data(),
                  std::min(key.size(), element.key_start.size())) != 0) {
    return false;
  }
  return KeyOf(element) == key;
}

void Writer::SortElements() {
  std::sort(elements_.begin(), elements_.end(), [](const Element& left, const Element& right) {
    return left.hash != right.hash ? left.hash < right.hash : left.data < right.data;
  });
}

// Keys of one hash stand side by side now. There are few: a hash has 31 bits.
void Writer::CheckKeysDiffer() {
  for (std::size_t first = 0; first < elements_.size();) {
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

void Writer::MakeBuckets() {
  do {
    buckets_.clear();
    SplitInto(&buckets_, {0, 0, 0, elements_.size()});
    directory_bits_ = kLeastDirectoryBits;
    while ((sizeof(Offset) << directory_bits_) < block_bytes_) ++directory_bits_;
    for (const Bucket& bucket : buckets_) directory_bits_ = std::max(directory_bits_, bucket.bits);
  } while (directory_bits_ > kMostDirectoryBits && EnlargeBuckets());
}

// Splits `bucket` until each part fits a block, and appends the parts in order of their hashes.
void Writer::SplitInto(Vector<Bucket>* buckets, const Bucket& bucket) const {
  if (bucket.end - bucket.first <= ElementsIn(block_bytes_) || bucket.bits > kMostDirectoryBits) {
    buckets->push_back(bucket);
    return;
  }
  const unsigned bits = bucket.bits + 1;
  const Hash high = bucket.prefix << 1 | 1;
  const auto begin = elements_.begin();
  const auto middle = std::partition_point(
      begin + static_cast<std::ptrdiff_t>(bucket.first),
      begin + static_cast<std::ptrdiff_t>(bucket.end), [bits, high](const Element& element) {
        return PrefixOf(static_cast<Hash>(element.hash), bits) < high;
      });
  const auto split = static_cast<std::size_t>(middle - begin);
  SplitInto(buckets, {bucket.prefix << 1, bits, bucket.first, split});
  SplitInto(buckets, {high, bits, split, bucket.end});
}

// Makes blocks large enough for the keys that no splitting can part.
//   Returns  whether it could.
bool Writer::EnlargeBuckets() {
  std::size_t most = 0;
  for (const Bucket& bucket : buckets_) {
    if (bucket.bits > kMostDirectoryBits) most = std::max(most, bucket.end - bucket.first);
  }
  const std::uint32_t block_bytes = BlockFor(most);
  if (ElementsIn(block_bytes) < most) {
    Fail(StoreError::kDirectoryOverflow);
    return false;
  }
  MoveRecordsOutOf(block_bytes);
  block_bytes_ = block_bytes;
  return true;
}

// Appends again the records that lie where a larger header will be.
void Writer::MoveRecordsOutOf(std::uint64_t first_bytes) {
  for (Element& element : elements_) {
    if (element.data >= first_bytes) continue;
    Element whole = element;
    whole.key_bytes += element.value_bytes;
    const String record = KeyOf(whole);
    element.data = end_;
    Append(record);
  }
}

// The buckets come right after it.
void Writer::WriteDirectory() {
  Offset offset = end_ + (sizeof(Offset) << directory_bits_);
  for (const Bucket& bucket : buckets_) {
    if (error_ != StoreError::kNone) return;
    const std::uint32_t entries = std::uint32_t{1} << (directory_bits_ - bucket.bits);
    for (std::uint32_t entry = 0; entry < entries; ++entry) Append(AsBytes(offset));
    offset += block_bytes_;
  }
}

void Writer::WriteBuckets() {
  for (const Bucket& bucket : buckets_) {
    if (error_ != StoreError::kNone) return;
    Append(BytesOf(bucket));
  }
}

String Writer::BytesOf(const Bucket& bucket) const {
  const std::uint32_t places = ElementsIn(block_bytes_);
  BucketHead head{};
  head.bits = static_cast<std::int32_t>(bucket.bits);
  head.count = static_cast<std::int32_t>(bucket.end - bucket.first);
  Element unused{};
  unused.hash = kNoElement;
  Vector<Element> table(places, unused);
  for (std::size_t i = bucket.first; i < bucket.end; ++i) {
    std::uint32_t place = static_cast<std::uint32_t>(elements_[i].hash) % places;
    while (table[place].hash != kNoElement) place = (place + 1) % places;
    table[place] = elements_[i];
  }
  String bytes(AsBytes(head));
  bytes.append(reinterpret_cast<const char*>(table.data()), table.size() * sizeof(Element));
  bytes.resize(block_bytes_, '\0');
  return bytes;
}

void Writer::WriteHeader(Offset directory) {
  if (error_ != StoreError::kNone) return;
  Header header{};
  header.magic = kMagic;
  header.block_bytes = static_cast<std::int32_t>(block_bytes_);
  header.directory = directory;
  header.directory_bytes = static_cast<std::int32_t>(sizeof(Offset) << directory_bits_);
  header.directory_bits = static_cast<std::int32_t>(directory_bits_);
  header.bucket_bytes = static_cast<std::int32_t>(block_bytes_);
  header.bucket_elements = static_cast<std::int32_t>(ElementsIn(block_bytes_));
  header.next_block = (end_ + block_bytes_ - 1) / block_bytes_ * block_bytes_;
  FreeList free{};
  free.size =
      static_cast<std::int32_t>((block_bytes_ - sizeof header - sizeof free) / sizeof(FreeSpace));
  String bytes(AsBytes(header));
  bytes.append(AsBytes(free));
  WriteAt(0, bytes);
}

}  // namespace kestan::gdbm
