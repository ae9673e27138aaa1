// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/engine/kestan.h>

#include <kestan/engine/named_word_lists.h>
#include <kestan/engine/shared_state.h>
#include <kestan/engine/side_records.h>
#include <kestan/format/document_record.h>
#include <kestan/format/keys.h>
#include <kestan/indexing/indexer.h>
#include <kestan/indexing/short_words.h>
#include <kestan/indexing/shrink.h>
#include <kestan/indexing/strip.h>
#include <kestan/query/collection_lists.h>
#include <kestan/query/index_reader.h>
#include <kestan/query/listing.h>
#include <kestan/query/lookup.h>
#include <kestan/query/operators/intersect.h>
#include <kestan/query/operators/negate.h>
#include <kestan/query/operators/unite.h>
#include <kestan/storage/memory/diagnostics.h>
#include <kestan/storage/memory/memory.h>
#include <kestan/storage/owned_datum.h>

#include <cstdlib>
#include <optional>
#include <utility>

using namespace kestan;  // what each method forwards to

namespace {

// Texts that hosts must not write, as those of calls that find nothing.
char* EmptyText() { return const_cast<char*>(""); }

char* OrEmpty(char* text) { return text != nullptr ? text : EmptyText(); }

int Register(std::optional<ResultSet> set) {
  return set.has_value() ? Results().Add(*std::move(set)) : -1;
}

[[noreturn]] void EndProcess(const char* reason) {
  PrintDiagnostic("%s (oops!)\n", reason);
  std::exit(1);
}

}  // namespace

// ---- The index file ----

Kestan::Kestan() : reader_(New<IndexReader>(store_)) {}

Kestan::~Kestan() {
  CloseIndex();
  scratch.Release();
}

int Kestan::OpenIndex(const char* path, int mode) {
  if (IsOpen()) {
    PrintDiagnostic("Index file is already open\n");
    return -1;
  }
  if (store_.Open(path, mode) != 0) return -1;
  if (LoadOptions() && LoadReusableCodes()) return 0;
  CloseIndex();
  return -1;
}

bool Kestan::LoadReusableCodes() {
  bool is_unreadable = false;
  AvailCodes = Fetch(store_, kAvailableKey, &is_unreadable);
  if (AvailCodes.ptr == nullptr) AvailCodes = CopyDatum(DBDatum());
  return !is_unreadable;
}

// A closed engine has none.
const DBDatum& Kestan::ReusableCodes() const {
  static const DBDatum kNone;
  return IsOpen() ? *AvailCodes.ptr : kNone;
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

// ---- Titles, summaries, user records and word lists ----

char* Kestan::DBGetUser(const char* name) {
  return GetSideRecord(store_, kUserFamily, name, &scratch);
}

char* Kestan::DBGetSummary(const char* name) {
  return GetSideRecord(store_, kSummaryFamily, name, &scratch);
}

char* Kestan::DBGetTitle(const char* name) {
  return GetSideRecord(store_, kTitleFamily, name, &scratch);
}

int Kestan::DBPutUser(const char* name, const char* text) {
  return PutSideRecord(store_, kUserFamily, name, text);
}

int Kestan::DBPutSummary(const char* name, const char* text) {
  return PutSideRecord(store_, kSummaryFamily, name, text);
}

int Kestan::DBPutTitle(const char* name, const char* text) {
  return PutSideRecord(store_, kTitleFamily, name, text);
}

int Kestan::DBDelUser(const char* name) {
  return DeleteSideRecord(store_, IsOpen(), kUserFamily, name);
}

int Kestan::DBDelSummary(const char* name) {
  return DeleteSideRecord(store_, IsOpen(), kSummaryFamily, name);
}

int Kestan::DBDelTitle(const char* name) {
  return DeleteSideRecord(store_, IsOpen(), kTitleFamily, name);
}

int Kestan::DBPutWords(const char* name, const char* words) {
  return PutWordList(store_, name, words, &scratch);
}

char* Kestan::DBGetWords(const char* name) { return GetWordList(store_, name, &scratch); }

// ---- Memory and text ----

char* const& Kestan::WordBuf = scratch.bytes;
const std::uint32_t& Kestan::WBSize = scratch.size;

void* Kestan::SafeMalloc(unsigned size) { return Allocate(size); }

void* Kestan::SafeRealloc(void* block, unsigned size) { return Reallocate(block, size); }

int Kestan::StripNonWords(char* text, unsigned length) { return RemoveNonWords(text, length); }

int Kestan::StripWords(char* text, unsigned length, const char* stopText,
                       const char* const* stopList) {
  return RemoveStopWords(text, length, stopText, stopList);
}

int Kestan::StripBadLines(char* text, unsigned length) { return RemoveBadLines(text, length); }

// ---- Documents ----

std::optional<std::size_t> Kestan::AddWords(const char* name, const char* text) {
  if (!IsOpen()) {
    RemoveDocumentWords(name);  // for the message of the store
    return std::nullopt;
  }
  const Addition added = AddDocument(store_, AvailCodes, KeepsPositions(), name, text, &scratch);
  if (added.outcome == AddOutcome::kCodeZero) EndProcess("Attempted to use code #0");
  if (added.outcome != AddOutcome::kAdded) return std::nullopt;
  return added.new_words;
}

const char* Kestan::AddDocumentWords(const char* name, const char* text) {
  return AddWords(name, text).has_value() ? scratch.bytes : "";
}

int Kestan::RemoveDocumentWords(const char* name) { return RemoveDocument(store_, name); }

int Kestan::MoveDocumentWords(const char* oldname, const char* newname) {
  return RenameDocument(store_, oldname, newname);
}

std::uint32_t Kestan::DocumentTimestamp(const char* name) { return TimestampOf(store_, name); }

int Kestan::ShrinkIndex() { return PurgeAndCompact(store_, AvailCodes, KeepsPositions()); }

int Kestan::PurgeShortWords(bool removed_too) {
  return PurgePostingsOfShortWords(store_, removed_too);
}

// ---- Queries ----

int Kestan::QueryWord(const char* word) {
  return Register(FindWord(store_, word, KeepsPositions()));
}

int Kestan::QueryAnd(int first, int second, int distance) {
  const ResultSet* const a = Results().Find(first);
  const ResultSet* const b = Results().Find(second);
  if (a == nullptr || b == nullptr) return -1;
  return Results().Add(Intersect(*a, *b, distance));
}

int Kestan::QueryOr(int first, int second) {
  static const ResultSet kEmpty;
  const ResultSet* const a = Results().Find(first);
  const ResultSet* const b = Results().Find(second);
  if (a == nullptr && b == nullptr) return -1;
  return Results().Add(Unite(a != nullptr ? *a : kEmpty, b != nullptr ? *b : kEmpty));
}

int Kestan::QueryNegate(int id) {
  auto others = Negate(store_, ReusableCodes(), Results().Find(id));
  if (!others.has_value()) EndProcess("Could not locate global-code");
  return Register(std::move(others));
}

char* Kestan::QueryResults(int id) {
  const ResultSet* const set = Results().Find(id);
  if (set == nullptr) return EmptyText();
  return ListMatches(store_, *set, &reader_->names(), &scratch);
}

void Kestan::FreeQueryResult(int id) { Results().Free(id); }

char* Kestan::CommonWords(double low, double high) {
  return OrEmpty(ListCommonWords(store_, ReusableCodes(), KeepsPositions(), {low, high}, &scratch));
}

char* Kestan::ListDocuments() { return OrEmpty(ListDocumentNames(store_, &scratch)); }
