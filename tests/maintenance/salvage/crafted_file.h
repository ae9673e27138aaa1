// SPDX-License-Identifier: GPL-3.0-or-later
// Files in gdbm's format laid out by hand, for tests that need just one fault at one place.
#ifndef KESTAN_TESTS_MAINTENANCE_SALVAGE_CRAFTED_FILE_H_
#define KESTAN_TESTS_MAINTENANCE_SALVAGE_CRAFTED_FILE_H_

#include <gtest/gtest.h>
#include <kestan/maintenance/salvage/gdbm_layout.h>

#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <string>
#include <vector>

namespace kestan_maintenance {

namespace gdbm = kestan::gdbm;
using gdbm::Offset;

inline constexpr unsigned kBits = 6;  // of the directory
inline constexpr unsigned kEntries = 1U << kBits;
inline constexpr Offset kDirectoryPlace = 512;
inline constexpr Offset kBucketPlace = 2048;
inline constexpr Offset kOtherPlace = 4096;

// Gives each test a file of zeros, in which it puts what it is about. A header, where there is one,
// comes before keys are added.
class CraftedFile : public testing::Test {
 protected:
  template <typename Structure>
  void Put(Offset at, const Structure& structure) {
    std::memcpy(&file_.at(static_cast<std::size_t>(at)), &structure, sizeof structure);
  }

  void PutHeader(std::int32_t bucket_bytes = 512, std::uint32_t magic = gdbm::kMagic) {
    const auto bytes = static_cast<std::uint32_t>(bucket_bytes);
    shape_.bucket_bytes = bytes;
    shape_.elements =
        static_cast<std::uint32_t>((bytes - sizeof(gdbm::BucketHead)) / sizeof(gdbm::Element));
    Put(0, gdbm::Header{magic, 512, kDirectoryPlace, kEntries * 8, kBits, bucket_bytes,
                        static_cast<std::int32_t>(shape_.elements), file_.size()});
  }

  void PutEntries(std::initializer_list<unsigned> entries, Offset bucket,
                  Offset directory = kDirectoryPlace) {
    for (const unsigned entry : entries) Put(directory + entry * sizeof bucket, bucket);
  }

  // Makes the head of a bucket that uses none of its elements yet.
  void PutHead(Offset at, unsigned bits, std::size_t count) {
    gdbm::BucketHead head{};
    head.bits = static_cast<std::int32_t>(bits);
    head.count = static_cast<std::int32_t>(count);
    Put(at, head);
    for (std::uint32_t i = 0; i < shape_.elements; ++i) {
      Put(gdbm::ElementAt(at, i), gdbm::Element{gdbm::kNoElement, {}, 0, 0, 0});
    }
  }

  // Adds a key to the end of the file.
  gdbm::Element Add(const std::string& key) {
    gdbm::Element element{static_cast<std::int32_t>(gdbm::HashOf(key)),
                          {},
                          file_.size(),
                          static_cast<std::int32_t>(key.size()),
                          0};
    key.copy(element.key_start.data(), element.key_start.size());
    file_ += key;
    return element;
  }

  // Adds keys to the end of the file whose hashes have these first `bits` bits.
  std::vector<gdbm::Element> AddKeys(std::size_t count, gdbm::Hash prefix, unsigned bits) {
    std::vector<gdbm::Element> elements;
    for (int number = 0; elements.size() < count; ++number) {
      const std::string key = "key " + std::to_string(number);
      if (gdbm::PrefixOf(gdbm::HashOf(key), bits) == prefix) elements.push_back(Add(key));
    }
    return elements;
  }

  // Makes a bucket of one key whose hash has these first bits.
  void PutBucket(Offset at, gdbm::Hash prefix, unsigned bits, std::uint32_t slot = 0) {
    PutHead(at, bits, 1);
    Put(gdbm::ElementAt(at, slot), AddKeys(1, prefix, bits).front());
  }

  // Puts an element where gdbm looks for it first.
  void PutAtHome(Offset bucket, const gdbm::Element& element) {
    const auto home = static_cast<std::uint32_t>(element.hash) % shape_.elements;
    Put(gdbm::ElementAt(bucket, home), element);
  }

  std::string file_ = std::string(8192, '\0');
  gdbm::Shape shape_;
};

}  // namespace kestan_maintenance

#endif  // KESTAN_TESTS_MAINTENANCE_SALVAGE_CRAFTED_FILE_H_
