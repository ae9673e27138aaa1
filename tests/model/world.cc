// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/model/world.h"

#include <gdbm.h>
#include <rapidcheck.h>

#include <algorithm>
#include <fstream>

#include "tests/model/clock.h"

namespace kestan_model {
namespace {

constexpr std::uint32_t kStartOfTime = 1000000000;

// The part of the model that outlives a case, as the engine's own does.
Process& TheProcess() {
  static Process process;
  return process;
}

// After a disagreement the model no longer knows the next id; the engine does.
int NextIdOf(Kestan& engine, const std::string& scratch_index) {
  engine.OpenIndex(scratch_index.c_str(), 1);
  engine.AddDocumentWords("a", "a");
  const int id = engine.QueryWord("a");
  engine.FreeQueryResult(id);
  engine.CloseIndex();
  return id + 1;
}

// One byte, `count` times; no two different strings look the same.
std::string ShownRun(char byte, std::size_t count) {
  static const char kDigits[] = "0123456789abcdef";
  const auto number = static_cast<unsigned char>(byte);
  std::string one(1, byte);
  if (byte == '\n') {
    one = "\\n";
  } else if (number < ' ' || number > 'z' || byte == '"' || byte == '\\') {
    one = std::string("\\x") + kDigits[number / 16] + kDigits[number % 16];
  }
  if (count > 20) return "{" + std::to_string(count) + " times " + one + "}";
  std::string run;
  for (std::size_t i = 0; i < count; ++i) run += one;
  return run;
}

}  // namespace

std::string Shown(const std::string& bytes) {
  std::string shown = "\"";
  for (std::size_t at = 0; at < bytes.size();) {
    const std::size_t end = std::min(bytes.find_first_not_of(bytes[at], at), bytes.size());
    shown += ShownRun(bytes[at], end - at);
    at = end;
  }
  return shown + "\"";
}

std::string Shown(const Text& text) {
  if (text.is_null) return "a null pointer";
  return Shown(std::string(text.bytes.c_str())) + (text.in_buffer ? "" : ", a constant");
}

Text Taken(const char* text) {
  if (text == nullptr) return Null();
  return {false, text == Kestan::WordBuf, text};
}

Kestan& Engine() {
  static Kestan engine;
  return engine;
}

World::World()
    : process(TheProcess()),
      model(process, disk_, [this](const std::string& path) { return KeysOf(path); }) {
  process.buffer_size = Kestan::WBSize;
  process.now = kStartOfTime;
  SetClock(process.now);
  first_id_ = process.next_id;
  disk_.no_such_folder.insert(Path("missing/index"));
}

World::~World() {
  testing::internal::CaptureStderr();
  Engine().CloseIndex();
  testing::internal::GetCapturedStderr();
  if (disagreed_) process.next_id = NextIdOf(Engine(), Path("scratch"));
  for (int id = first_id_; id < process.next_id; ++id) Engine().FreeQueryResult(id);
  process.results.clear();
}

void World::Begin(const std::string& operation) {
  ++step_;
  operation_ = operation;
}

void World::Compare(const char* what, const std::string& library, const std::string& naive) {
  if (library == naive) return;
  disagreed_ = true;
  RC_FAIL("step " + std::to_string(step_) + ", " + operation_ + ": " + what +
          "\n  engine: " + library + "\n  model:  " + naive);
}

void World::Advance(std::uint32_t seconds) {
  process.now += seconds;
  SetClock(process.now);
}

// A file that is open is locked, so a copy of it is read. Through streams, which go on where a
// signal interrupts them, as a timer's may.
void World::CopyToSeen(const std::string& path) const {
  std::ofstream(Path("seen"), std::ios::binary) << std::ifstream(path, std::ios::binary).rdbuf();
}

Records World::Read(const std::string& path) const {
  CopyToSeen(path);
  return kestan_tests::Dump(Path("seen"));
}

std::vector<std::string> World::KeysOf(const std::string& path) const {
  CopyToSeen(path);
  std::vector<std::string> keys;
  GDBM_FILE file = gdbm_open(Path("seen").c_str(), 0, GDBM_READER, 0, nullptr);
  datum key = gdbm_firstkey(file);
  while (key.dptr != nullptr) {
    keys.emplace_back(key.dptr, static_cast<std::size_t>(key.dsize));
    const datum next = gdbm_nextkey(file, key);
    std::free(key.dptr);
    key = next;
  }
  gdbm_close(file);
  return keys;
}

void World::PlantAndReopen(const Records& records) {
  Same([] { return Engine().CloseIndex(); }, [this] { return model.CloseIndex(); });
  kestan_tests::Plant(Path("index"), records);
  for (const auto& [key, value] : records) disk_.files[Path("index")][key] = value;
  const std::string path = Path("index");
  Same([&] { return Engine().OpenIndex(path.c_str(), 1); },
       [&] { return model.OpenIndex(path, 1); });
}

void World::CompareFiles() {
  for (const auto& [path, expected] : disk_.files) {
    const Records stored = Read(path);
    Records all = expected;
    all.insert(stored.begin(), stored.end());
    for (const auto& [key, unused] : all) {
      const std::string record = path.substr(path.rfind('/') + 1) + ", record " + Shown(key);
      const auto shown = [&key = key](const Records& records) {
        return records.count(key) == 0 ? "none" : Shown(records.at(key));
      };
      Compare(record.c_str(), shown(stored), shown(expected));
    }
  }
}

}  // namespace kestan_model
