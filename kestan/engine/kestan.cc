#include <kestan/engine/kestan.h>
#include <kestan/engine/scratch.h>

char* const& Kestan::WordBuf = kestan::scratch.bytes;
const std::uint32_t& Kestan::WBSize = kestan::scratch.size;

Kestan::Kestan() = default;

Kestan::~Kestan() {
  CloseIndex();
  kestan::scratch.Release();
}
