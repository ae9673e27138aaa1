#include <kestan/engine/kestan.h>
#include <kestan/engine/name_table.h>
#include <kestan/engine/scratch.h>
#include <kestan/maintenance/short_words.h>
#include <kestan/storage/memory.h>

char* const& Kestan::WordBuf = kestan::scratch.bytes;
const std::uint32_t& Kestan::WBSize = kestan::scratch.size;

Kestan::Kestan() : names_(kestan::New<kestan::NameTable>()) {}

Kestan::~Kestan() {
  CloseIndex();
  kestan::scratch.Release();
}

int Kestan::PurgeShortWords(bool removed_too) {
  return kestan::PurgeShortWords(store_, removed_too);
}
