// SPDX-License-Identifier: GPL-3.0-or-later
#include <gdbm.h>

#include "tests/model/model.h"
#include "tests/model/units.h"

namespace kestan_model {

int Model::OpenIndex(const std::string& path, int mode) {
  if (store_.IsOpen()) {
    process_.said += "Kestan: Index file is already open\n";
    return -1;
  }
  if (!store_.Open(path, mode != 0)) return -1;
  GetOptions();
  avail_codes_ = store_.Get("g-avail");
  if (avail_codes_ == nullptr) avail_codes_ = std::make_shared<Cell>();
  return 0;
}

int Model::CloseIndex() {
  store_.Close();
  avail_codes_ = nullptr;
  return 0;
}

int Model::FlushIndex() {
  store_.Flush();
  return 0;
}

void Model::WalkAndFlush(unsigned first, unsigned cadence,
                         const std::function<void(const std::string&, const Value&)>& visit) {
  unsigned left = first;
  store_.ForEach([&](const std::string& key, const Value& value) {
    visit(key, value);
    if (--left > 0) return;
    store_.Flush();
    left = cadence;
  });
}

int Model::CopyIndexTo(const std::string& path) {
  const bool no_folder = disk_.no_such_folder.count(path) != 0;
  if (no_folder || store_.IsOpenOn(path)) {  // a file that is open is locked
    const int error = no_folder ? GDBM_FILE_OPEN_ERROR : GDBM_CANT_BE_WRITER;
    process_.said += "Kestan: Could not open index file '" + path + "' -- " + gdbm_strerror(error);
    return -1;
  }
  Records& target = disk_.files[path];
  WalkAndFlush(1001, 1000,
               [&](const std::string& key, const Value& value) { target[key] = value->bytes; });
  return 0;
}

void Model::GetOptions() {
  const Value stored = store_.Get("g-opts");
  if (stored != nullptr) {
    flags_ = NumberAt(stored->bytes, 0, 4);
    return;
  }
  flags_ = 0;
  PutOptions();
}

int Model::PutOptions() { return store_.Put("g-opts", BytesOf(flags_, 4)); }

int Model::SetOptionFlag(std::uint32_t flags) {
  if (flags == 0) return -1;
  if ((flags_ & flags) != 0) return 0;
  flags_ |= flags;
  PutOptions();
  if ((flags & 1) == 0) return 0;
  store_.ForEach([](const std::string& key, const Value& value) {
    if (IsSystemKey(key)) return;
    std::vector<unsigned> codes;
    for (const Posting& posting : PostingsOf(value->bytes, true)) codes.push_back(posting.code);
    *value = Cell{RecordOf(codes), true};
  });
  return 0;
}

int Model::UnsetOptionFlag(std::uint32_t flags) {
  if (flags == 0) return -1;
  if ((flags_ & flags) == 0) return 0;
  if ((flags & 1) != 0) return -2;
  flags_ &= ~flags;
  PutOptions();
  return 0;
}

}  // namespace kestan_model
