// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/maintenance/index_files.h"

#include <kestan/maintenance/salvage/gdbm_layout.h>
#include <kestan/maintenance/salvage/salvage.h>

#include <algorithm>
#include <set>

namespace kestan_maintenance {
namespace {

// The lower the number, the more frequent the word.
std::string Word(Dice* dice, std::size_t vocabulary) {
  const std::size_t number = dice->Below(1 + dice->Below(vocabulary));
  const std::size_t look = dice->Below(20);
  std::string word = (look == 0 ? "Word" : "word") + std::to_string(number);
  if (look == 1) word = std::string(1, static_cast<char>('a' + number % 26));
  return word;
}

std::string Text(Dice* dice, std::size_t vocabulary) {
  std::string text;
  for (std::size_t left = 10 + dice->Below(60); left > 0; --left) {
    text += Word(dice, vocabulary) + " ";
  }
  return text;
}

std::string NameOf(int number) { return "folder/document " + std::to_string(number) + ".txt"; }

void ChangeSomething(Kestan* engine, int number, Dice* dice, std::size_t vocabulary) {
  const std::string name = NameOf(number);
  const std::string other = NameOf(static_cast<int>(dice->Below(static_cast<std::size_t>(number))));
  switch (dice->Below(12)) {
    case 0:
      engine->RemoveDocumentWords(other.c_str());
      break;
    case 1:
      engine->AddDocumentWords(other.c_str(), Text(dice, vocabulary).c_str());
      break;
    case 2:
      engine->MoveDocumentWords(name.c_str(), ("moved " + name).c_str());
      break;
    case 3:
      engine->DBPutTitle(name.c_str(), ("About " + name).c_str());
      engine->DBPutSummary(name.c_str(), Text(dice, vocabulary).c_str());
      break;
    case 4:
      engine->FlushIndex();
      break;
    default:
      break;
  }
}

void Mark(std::vector<Place>* places, std::size_t at, std::size_t bytes, Place place) {
  const std::size_t begin = std::min(at, places->size());
  const std::size_t end = std::min(places->size(), begin + bytes);
  std::fill(places->begin() + static_cast<std::ptrdiff_t>(begin),
            places->begin() + static_cast<std::ptrdiff_t>(end), place);
}

}  // namespace

void MakeIndex(const std::string& path, int documents, unsigned seed) {
  Dice dice(seed);
  const std::size_t vocabulary = 200 + static_cast<std::size_t>(documents) * 5;
  Kestan engine;
  ASSERT_EQ(engine.OpenIndex(path.c_str(), 1), 0);
  const int shrunk_after = seed % 3 == 0 ? documents * 2 / 3 : -1;
  for (int number = 1; number <= documents; ++number) {
    engine.AddDocumentWords(NameOf(number).c_str(), Text(&dice, vocabulary).c_str());
    ChangeSomething(&engine, number, &dice, vocabulary);
    if (number == shrunk_after) engine.ShrinkIndex();
  }
  engine.CloseIndex();
  ASSERT_EQ(engine.FileError(), 0);
}

void ChangeIndex(const std::string& path, int documents, int more, unsigned seed) {
  Dice dice(seed + 1);
  const std::size_t vocabulary = 200 + static_cast<std::size_t>(documents) * 5;
  Kestan engine;
  ASSERT_EQ(engine.OpenIndex(path.c_str(), 1), 0);
  for (int number = documents + 1; number <= more; ++number) {
    engine.AddDocumentWords(NameOf(number).c_str(), Text(&dice, vocabulary).c_str());
    ChangeSomething(&engine, number, &dice, vocabulary);
  }
  engine.CloseIndex();
  ASSERT_EQ(engine.FileError(), 0);
}

FileMap MapOf(const std::string& bytes) {
  namespace gdbm = kestan::gdbm;
  const gdbm::Bytes file(bytes);
  gdbm::Header header{};
  gdbm::Shape shape;
  EXPECT_TRUE(gdbm::ReadHeader(file, &header, &shape));
  FileMap map;
  map.places.assign(bytes.size(), Place::kFree);
  Mark(&map.places, 0, kBlockBytes, Place::kHeader);
  const auto directory_bytes = static_cast<std::size_t>(header.directory_bytes);
  Mark(&map.places, InMemory(header.directory), directory_bytes, Place::kDirectory);
  std::set<gdbm::Offset> buckets;
  for (std::size_t i = 0; i < directory_bytes / sizeof(gdbm::Offset); ++i) {
    gdbm::Offset bucket = 0;
    EXPECT_TRUE(file.Read(header.directory + i * sizeof bucket, &bucket));
    buckets.insert(bucket);
  }
  for (const gdbm::Offset bucket : buckets) {
    Mark(&map.places, InMemory(bucket), shape.bucket_bytes, Place::kBucket);
    for (std::uint32_t i = 0; i < shape.elements; ++i) {
      gdbm::Element element{};
      EXPECT_TRUE(file.Read(gdbm::ElementAt(bucket, i), &element));
      if (element.hash == gdbm::kNoElement) continue;
      const auto key_bytes = static_cast<std::size_t>(element.key_bytes);
      const auto value_bytes = static_cast<std::size_t>(element.value_bytes);
      const std::size_t data = InMemory(element.data);
      map.records.push_back({bytes.substr(data, key_bytes),
                             bytes.substr(data + key_bytes, value_bytes),
                             InMemory(gdbm::ElementAt(bucket, i)), data});
      Mark(&map.places, data, key_bytes + value_bytes, Place::kData);
    }
  }
  return map;
}

kestan_tests::Records Salvaged(const std::string& path) {
  kestan_tests::Records records;
  kestan::Salvage salvage;
  EXPECT_EQ(salvage.Read(path.c_str()), 0);
  for (const kestan::SalvagedRecord& record : salvage.records()) {
    const std::string key(salvage.KeyOf(record));
    EXPECT_EQ(records.count(key), 0U) << key;
    records[key] = std::string(salvage.ValueOf(record));
  }
  return records;
}

}  // namespace kestan_maintenance
