// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/maintenance/salvage/gdbm_layout.h>

#include <algorithm>

namespace kestan::gdbm {
namespace {

constexpr Offset kLongKeyBytes = 256;

// The hashes of a bucket agree in its bits. If those of valid elements do not, it has no head;
// those of damaged elements that do not are noise.
void DropForeignElements(Bucket* bucket) {
  if (bucket->valid.empty()) return;
  const Hash prefix = PrefixOf(static_cast<Hash>(bucket->valid.front().hash), bucket->bits);
  for (const Element& element : bucket->valid) {
    if (PrefixOf(static_cast<Hash>(element.hash), bucket->bits) != prefix) bucket->has_head = false;
  }
  const auto is_foreign = [&](Hash hash) { return PrefixOf(hash, bucket->bits) != prefix; };
  auto& damaged = bucket->damaged;
  damaged.erase(std::remove_if(damaged.begin(), damaged.end(), is_foreign), damaged.end());
}

}  // namespace

bool Bytes::HasKey(const Element& element) const {
  if (element.hash < 0 || element.key_bytes < 0 || element.value_bytes < 0) return false;
  const auto key_bytes = static_cast<Offset>(element.key_bytes);
  if (!Holds(element.data, key_bytes)) return false;
  const std::string_view key = View(element.data, key_bytes);
  const std::size_t start = std::min(key.size(), element.key_start.size());
  if (key.substr(0, start) != std::string_view(element.key_start.data(), start)) return false;
  if (key_bytes > kLongKeyBytes) {
    if (key_bytes > long_keys_budget_) return false;
    long_keys_budget_ -= key_bytes;
  }
  return HashOf(key) == static_cast<Hash>(element.hash);
}

bool IsHead(const BucketHead& head, const Shape& shape) {
  return head.free_count >= 0 && static_cast<std::size_t>(head.free_count) <= head.free.size() &&
         head.bits >= 0 && head.bits <= static_cast<int>(kHashBits) && head.count >= 0 &&
         static_cast<std::uint32_t>(head.count) <= shape.elements;
}

bool BelongsTo(const DirectoryRun& run, const Header& header, const BucketHead& head) {
  if (head.bits > header.directory_bits) return false;
  const std::uint32_t entries = std::uint32_t{1} << (header.directory_bits - head.bits);
  return run.end - run.first == entries && run.first % entries == 0;
}

void ReadBucket(const Bytes& file, const Shape& shape, Offset at, Bucket* bucket) {
  bucket->valid.clear();
  bucket->damaged.clear();
  bucket->free.clear();
  BucketHead head;
  bucket->has_head = file.Read(at, &head) && IsHead(head, shape);
  bucket->bits = bucket->has_head ? static_cast<unsigned>(head.bits) : 0;
  bucket->count = bucket->has_head ? static_cast<std::uint32_t>(head.count) : 0;
  for (int i = 0; bucket->has_head && i < head.free_count; ++i) {
    bucket->free.push_back(head.free[static_cast<std::size_t>(i)]);
  }
  for (std::uint32_t i = 0; i < shape.elements; ++i) {
    Element element;
    if (!file.Read(ElementAt(at, i), &element)) break;
    if (file.HasKey(element)) {
      bucket->valid.push_back(element);
    } else if (element.hash >= 0) {
      bucket->damaged.push_back(static_cast<Hash>(element.hash));
    }
  }
  DropForeignElements(bucket);
}

}  // namespace kestan::gdbm
