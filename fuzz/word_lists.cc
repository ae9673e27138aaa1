// SPDX-License-Identifier: GPL-3.0-or-later
// Any text stored as a word list and read back, from the cache and from the file.
//
// Input: the text, up to its first NUL.
#include <kestan/kestan.h>

#include "fuzz/support/input.h"
#include "fuzz/support/scratch_index.h"
#include "fuzz/support/strip_check.h"
#include "tests/model/model.h"

namespace {

using kestan_fuzz::Require;

// One open index for all executions: each replaces the one list in it.
Kestan& OpenEngine() {
  static Kestan engine;
  static const int opened = engine.OpenIndex((kestan_fuzz::Folder() / "index").c_str(), 1);
  Require(opened == 0, "cannot open an index");
  return engine;
}

void ReadAndCompare(Kestan& engine, kestan_model::Model* model,
                    const kestan_model::Process& process) {
  const char* const words = engine.DBGetWords("list");
  const kestan_model::Text expected = model->DBGetWords("list");
  Require(words == Kestan::WordBuf, "the words do not lie in the scratch buffer");
  Require(words == expected.bytes, "the words are others than the model's");
  Require(Kestan::WBSize == process.buffer_size, "the buffer has another size than the model's");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Kestan& engine = OpenEngine();
  const auto text = kestan_fuzz::ExactString(kestan_fuzz::Input(data, size).String());
  kestan_model::Process process;
  kestan_model::Disk disk;
  kestan_model::Model model(process, disk, [](const std::string&) {
    return std::vector<std::string>();  // nothing here walks
  });
  model.OpenIndex("index", 1);

  kestan_fuzz::ForgetScratch();
  Require(engine.DBPutWords("list", text.get()) == 0, "the list was not stored");
  model.DBPutWords("list", text.get());
  ReadAndCompare(engine, &model, process);
  engine.FlushIndex();
  ReadAndCompare(engine, &model, process);
  return 0;
}
