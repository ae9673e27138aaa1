// Opening, flushing, closing and copying an index; titles, summaries and user records.
#include <kestan/engine/kestan.h>
#include <kestan/format/keys.h>
#include <kestan/storage/memory.h>
#include <kestan/storage/owned_datum.h>
#include <kestan/text/scratch_text.h>

#include <cstdio>
#include <cstring>

namespace {

using kestan::AsDatum;
using kestan::Fetch;
using kestan::ItemKey;

constexpr int kCopyFlushPeriod = 1000;  // records; it bounds the memory of both caches

// Returns the text of `name` in `family`, in the scratch buffer; null if there is none.
char* GetText(Database& store, std::string_view family, const char* name) {
  const DBDatumPtr value = Fetch(store, ItemKey(family, name));
  if (value.ptr == nullptr) return nullptr;
  const std::uint32_t length = value.ptr->size;
  // One bit, not a multiple of 4096: the size that hosts see has always gone by this rule.
  if (kestan::scratch.size < length) kestan::scratch.Grow((length + 4096) & 4096);
  kestan::scratch.Reserve(static_cast<std::size_t>(length) + 1);
  if (length != 0) std::memcpy(kestan::scratch.bytes, value.ptr->data, length);
  kestan::scratch.bytes[length] = '\0';
  return kestan::scratch.bytes;
}

int PutText(Database& store, std::string_view family, const char* name, const char* text) {
  const kestan::String key = ItemKey(family, name);
  return store.Put(AsDatum(key), AsDatum(text));
}

// The store deletes without telling whether there was anything, so this looks first.
int DelText(Database& store, bool is_open, std::string_view family, const char* name) {
  const kestan::String key = ItemKey(family, name);
  if (is_open && Fetch(store, key).ptr == nullptr) return -1;
  return store.Del(AsDatum(key)) == 0 ? 0 : -1;
}

}  // namespace

int Kestan::OpenIndex(const char* path, int mode) {
  if (IsOpen()) {
    std::fprintf(stderr, "%s: Index file is already open\n", kestan::kEngineName);
    return -1;
  }
  if (store_.Open(path, mode) != 0) return -1;
  if (LoadOptions() && LoadReusableCodes()) return 0;
  CloseIndex();
  return -1;
}

bool Kestan::LoadReusableCodes() {
  bool is_unreadable = false;
  AvailCodes = Fetch(store_, kestan::kAvailableKey, &is_unreadable);
  if (AvailCodes.ptr == nullptr) AvailCodes = kestan::CopyDatum(DBDatum());
  return !is_unreadable;
}

int Kestan::CloseIndex() {
  store_.Close();
  AvailCodes.Free();
  return 0;
}

int Kestan::FlushIndex() {
  store_.Flush();
  return 0;
}

int Kestan::CopyIndexTo(const char* path) {
  Database target;
  const int error = target.Open(path, 1);
  if (error != 0) {
    std::fprintf(stderr, "%s: Could not open index file '%s' -- %s", kestan::kEngineName, path,
                 Database::ErrorString(error));
    return -1;
  }
  DBDatumPtr key;
  DBDatumPtr value;
  int since_flush = 0;
  for (int end = store_.First(&key, &value); end == 0; end = store_.Next(&key, &value)) {
    // A copy of the bytes: the two stores must not share a datum, or flushing one would take the
    // changes that wait in it from the other.
    target.Put(DBDatum(key.ptr->data, key.ptr->size), DBDatum(value.ptr->data, value.ptr->size));
    if (since_flush == kCopyFlushPeriod) {
      store_.Flush();
      target.Flush();
      since_flush = 0;
    }
    ++since_flush;
  }
  return target.Close();
}

char* Kestan::DBGetUser(const char* name) { return GetText(store_, kestan::kUserFamily, name); }

char* Kestan::DBGetSummary(const char* name) {
  return GetText(store_, kestan::kSummaryFamily, name);
}

char* Kestan::DBGetTitle(const char* name) { return GetText(store_, kestan::kTitleFamily, name); }

int Kestan::DBPutUser(const char* name, const char* text) {
  return PutText(store_, kestan::kUserFamily, name, text);
}

int Kestan::DBPutSummary(const char* name, const char* text) {
  return PutText(store_, kestan::kSummaryFamily, name, text);
}

int Kestan::DBPutTitle(const char* name, const char* text) {
  return PutText(store_, kestan::kTitleFamily, name, text);
}

int Kestan::DBDelUser(const char* name) {
  return DelText(store_, IsOpen(), kestan::kUserFamily, name);
}

int Kestan::DBDelSummary(const char* name) {
  return DelText(store_, IsOpen(), kestan::kSummaryFamily, name);
}

int Kestan::DBDelTitle(const char* name) {
  return DelText(store_, IsOpen(), kestan::kTitleFamily, name);
}
