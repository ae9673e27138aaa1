// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as the record of a word list, read by Kestan::DBGetWords.
#include <kestan/kestan.h>

#include "fuzz/support/input.h"
#include "fuzz/support/scratch_index.h"
#include "tests/model/model.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string record = kestan_fuzz::Input(data, size).Rest();
  static const std::string path = kestan_fuzz::Folder() / "index";
  kestan_fuzz::MakeIndex(path, {{"w-list", record}});
  kestan_fuzz::ForgetScratch();

  kestan_model::Process process;
  kestan_model::Disk disk;
  disk.files[path]["w-list"] = record;
  kestan_model::Model model(process, disk, [](const std::string&) {
    return std::vector<std::string>();  // nothing here walks
  });
  model.OpenIndex(path, 0);

  Kestan engine;
  kestan_fuzz::Require(engine.OpenIndex(path.c_str(), 0) == 0, "cannot open the index");
  const char* const words = engine.DBGetWords("list");
  const kestan_model::Text expected = model.DBGetWords("list");
  kestan_fuzz::Require(words != nullptr, "the list was not found");
  // A record may hold NULs, so the whole answer of the model is compared, with the NUL after it.
  const std::string read(words, expected.bytes.size() + 1);
  kestan_fuzz::Require(read == expected.bytes + '\0', "the words are others than the model's");
  kestan_fuzz::Require(Kestan::WBSize == process.buffer_size,
                       "the buffer has another size than the model's");
  return 0;
}
