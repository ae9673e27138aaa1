// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/hostile/file_damage.h"

#include <algorithm>
#include <cstring>

#include "tests/model/clock.h"
#include "tests/support/index_test.h"

namespace kestan_hostile {
namespace {

constexpr std::uint32_t kTime = 1000000000;

// A text of 24 words out of 250, some of them capital, with "cat" in every third text.
std::string TextOf(int number) {
  std::string text = number % 3 == 0 ? "The cat sat" : "A dog sang";
  for (int i = 0; i < 21; ++i) {
    const int word = (number * 31 + i * i * 7) % 250;
    text += (word % 10 == 0 ? " Word" : " word") + std::to_string(word);
  }
  return text;
}

void AddDocuments(Kestan* engine, int first, int last) {
  for (int number = first; number <= last; ++number) {
    const std::string name = "document " + std::to_string(number) + ".txt";
    engine->AddDocumentWords(name.c_str(), TextOf(number).c_str());
    if (number % 4 == 0) engine->DBPutTitle(name.c_str(), ("About " + name).c_str());
    if (number % 5 == 0) engine->DBPutUser(name.c_str(), "read");
  }
}

void RemoveDocuments(Kestan* engine, int first, int last) {
  for (int number = first; number <= last; ++number) {
    engine->RemoveDocumentWords(("document " + std::to_string(number) + ".txt").c_str());
  }
}

std::string At(const char* what, std::size_t offset) {
  return std::string(what) + " at " + std::to_string(offset);
}

// The 32-bit number of this machine at `offset`.
std::size_t NumberAt(const std::string& file, std::size_t offset) {
  std::uint32_t number = 0;
  std::memcpy(&number, &file.at(offset), sizeof number);
  return number;
}

}  // namespace

std::string GoodFile() {
  const kestan_tests::TempDir folder;
  kestan_model::SetClock(kTime);
  Kestan engine;
  engine.OpenIndex((folder / "index").c_str(), 1);
  AddDocuments(&engine, 1, 40);
  RemoveDocuments(&engine, 11, 20);
  engine.DBPutWords("stop", "a an and the then there");
  engine.ShrinkIndex();
  AddDocuments(&engine, 41, 44);
  RemoveDocuments(&engine, 31, 35);
  engine.AddDocumentWords("a.txt", "the cat sat on the mat");
  engine.CloseIndex();
  return ReadFile(folder / "index");
}

std::vector<Damaged> FlippedInTheFirstBlock(const std::string& good) {
  constexpr std::size_t kHeaderBytes = 64;  // and after them the first list of free space
  std::vector<Damaged> files;
  for (std::size_t at = 0; at < kBlockBytes; ++at) {
    for (const char flip : {'\xff', '\x01', '\x80'}) {
      if (at >= kHeaderBytes && flip != '\xff') break;
      files.push_back({At("bits flipped", at), good});
      files.back().bytes[at] ^= flip;
    }
  }
  return files;
}

std::vector<Damaged> FlippedAnywhere(const std::string& good, std::size_t count) {
  Dice dice;
  std::vector<Damaged> files;
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t at = dice.Below(good.size());
    files.push_back({At("bits flipped", at), good});
    files.back().bytes[at] ^= static_cast<char>(1 + dice.Below(255));
  }
  return files;
}

std::vector<Damaged> Cut(const std::string& good) {
  Dice dice;
  std::vector<Damaged> files;
  for (std::size_t at = 0; at < good.size(); at += kBlockBytes) {
    files.push_back({At("cut", at), good.substr(0, at)});
    const std::size_t odd = std::min(good.size() - 1, at + 1 + dice.Below(kBlockBytes - 1));
    files.push_back({At("cut", odd), good.substr(0, odd)});
  }
  return files;
}

std::vector<Damaged> BlocksOfZeros(const std::string& good) {
  std::vector<Damaged> files;
  for (std::size_t at = 0; at + kBlockBytes <= good.size(); at += kBlockBytes) {
    files.push_back({At("zeros", at), good});
    files.back().bytes.replace(at, kBlockBytes, kBlockBytes, '\0');
  }
  return files;
}

std::vector<Damaged> BlocksOfNoise(const std::string& good) {
  Dice dice;
  std::vector<Damaged> files;
  for (std::size_t at = 0; at + kBlockBytes <= good.size(); at += kBlockBytes) {
    files.push_back({At("noise", at), good});
    for (std::size_t i = 0; i < kBlockBytes; ++i) files.back().bytes[at + i] = dice.Byte();
  }
  return files;
}

std::vector<Damaged> BlocksSwapped(const std::string& good) {
  Dice dice;
  std::vector<Damaged> files;
  const std::size_t blocks = good.size() / kBlockBytes;
  for (std::size_t block = 0; block < blocks; ++block) {
    const std::size_t at = block * kBlockBytes;
    const std::size_t other = dice.Below(blocks) * kBlockBytes;
    files.push_back({At("swapped", at) + At(" with the block", other), good});
    std::string& bytes = files.back().bytes;
    std::swap_ranges(&bytes[at], &bytes[at] + kBlockBytes, &bytes[other]);
  }
  return files;
}

std::vector<Damaged> DirectoryEntriesRepeated(const std::string& good) {
  constexpr std::size_t kEntryBytes = 8;
  constexpr std::size_t kPlaceOfDirectory = 8;  // in the header: its offset, and then its bytes
  const std::size_t directory = NumberAt(good, kPlaceOfDirectory);
  const std::size_t entries = NumberAt(good, kPlaceOfDirectory + kEntryBytes) / kEntryBytes;
  Dice dice;
  std::vector<Damaged> files;
  for (std::size_t to = 0; to < entries; ++to) {
    for (const std::size_t from : {std::size_t{0}, (to + 1) % entries, dice.Below(entries)}) {
      const std::string entry = good.substr(directory + from * kEntryBytes, kEntryBytes);
      files.push_back({At("repeated", directory + to * kEntryBytes), good});
      files.back().bytes.replace(directory + to * kEntryBytes, kEntryBytes, entry);
    }
  }
  return files;
}

std::vector<Damaged> Strangers(const std::string& good) {
  Dice dice;
  std::string noise(good.size(), '\0');
  for (char& byte : noise) byte = dice.Byte();
  const std::string after_the_magic = good.substr(0, 4) + noise;
  return {{"nothing", ""},
          {"one byte", "x"},
          {"noise", noise},
          {"noise after a good beginning", after_the_magic},
          {"zeros", std::string(good.size(), '\0')},
          {"text", std::string(1000, 't') + "\n"},
          {"a program", ReadFile("/proc/self/exe").substr(0, 1000000)}};
}

}  // namespace kestan_hostile
