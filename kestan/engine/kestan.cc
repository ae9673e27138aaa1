#include <kestan/engine/kestan.h>
#include <kestan/maintenance/repair/short_words.h>
#include <kestan/query/name_table.h>
#include <kestan/storage/memory.h>
#include <kestan/text/scratch_text.h>

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
