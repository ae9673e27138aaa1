// SPDX-License-Identifier: GPL-3.0-or-later
// Calls of the C interface in any order, with handles of any kind and options of any value.
//
// Input: bytes that choose one call after the other, and its arguments. A handle is one of those
// that were made, or were made and freed, whatever its type, or null, or something else. What must
// hold: no call leaves its memory; a code is one that the header knows; what a search by the text
// of a word finds is what the query that is built of that word finds; the index is whole at the
// end.
#include <kestan/c.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "fuzz/support/input.h"
#include "fuzz/support/reporting.h"
#include "tests/support/temp_dir.h"

namespace {

using kestan_fuzz::Input;
using kestan_fuzz::Require;

constexpr std::size_t kMaxHandles = 64;
constexpr int kMaxCalls = 60;

const char* const kWords[] = {"roses",        "red",         "rose*", "\"are red\"",
                              "blue OR red",  "caf\xc3\xa9", "",      "-blue",
                              "red NEAR/2 a", "a AND (",     "title", "d1"};

// The state of one execution.
struct Play {
  explicit Play(Input* bytes) : input(bytes) {}

  Input* input;
  std::vector<void*> handles;  // that were ever made; some are freed
  const kestan_hit* hit = nullptr;
};

// The index of this process, which each execution makes again.
const std::string& Folder() {
  static const kestan_tests::TempDir temporary;
  static const std::string folder = temporary / "index";
  return folder;
}

template <typename H>
H* Any(Play* play) {
  const unsigned choice = play->input->Byte();
  if (choice == 255) return nullptr;
  if (choice == 254) return reinterpret_cast<H*>(play);
  if (play->handles.empty()) return nullptr;
  void* const handle = play->handles[choice % play->handles.size()];
  return static_cast<H*>(choice == 253 ? static_cast<char*>(handle) + 8 : handle);
}

// A text with a length that may not be its own, but never makes the library read beyond it.
struct Text {
  std::string bytes;
  std::size_t length;
  bool is_null;

  const char* data() const { return is_null ? nullptr : bytes.c_str(); }
};

Text AnyText(Play* play) {
  const unsigned choice = play->input->Byte();
  Text text;
  text.bytes = choice < 200 ? kWords[choice % std::size(kWords)] : play->input->Bytes(choice % 16);
  text.length = text.bytes.size();
  if (choice % 16 == 13) text.length = KESTAN_ZERO_TERMINATED;
  if (choice == 251) text.length = SIZE_MAX - 1;
  if (choice == 252) text.length = SIZE_MAX / 2;
  text.is_null = choice == 253;
  return text;
}

double AnyNumber(Play* play) {
  const double numbers[] = {0, 0.5, 1, 2, 1e6, 1e7, -1, NAN, INFINITY, 1e308, 1e-308};
  return numbers[play->input->Byte() % std::size(numbers)];
}

void Check(int code) {
  Require(code == KESTAN_ITEROVER || (code <= KESTAN_OK && code >= KESTAN_EFORKED),
          "an unknown code");
  Require(code != KESTAN_EDAMAGED && code != KESTAN_EVERSION && code != KESTAN_EFORKED,
          "an error that cannot be");
}

void FreeAsAnything(void* handle) {
  kestan_hits_free(static_cast<kestan_hits*>(handle));
  kestan_query_free(static_cast<kestan_query*>(handle));
  kestan_reader_free(static_cast<kestan_reader*>(handle));
  kestan_writer_free(static_cast<kestan_writer*>(handle));
  kestan_terms_free(static_cast<kestan_terms*>(handle));
  kestan_documents_free(static_cast<kestan_documents*>(handle));
  kestan_snippet_free(static_cast<kestan_snippet*>(handle));
  kestan_report_free(static_cast<kestan_report*>(handle));
}

// Keeps a handle that was made.
void Keep(Play* play, int code, void* handle) {
  Check(code);
  if (handle == nullptr) return;
  if (play->handles.size() == kMaxHandles) return FreeAsAnything(handle);
  play->handles.push_back(handle);
}

int StopSometimes(const kestan_progress* progress, void* payload) {
  Play* const play = static_cast<Play*>(payload);
  Require(progress->done_bytes <= progress->all_bytes, "more is done than there is to do");
  return play->input->Byte() == 1;
}

// Finds documents by the last character of their names, and stops the search at a "2". Uses no
// input, because several threads may call it at the same time.
int FilterByName(kestan_filtered* document, void* payload) {
  const char* name = nullptr;
  std::size_t length = 0;
  Require(kestan_filtered_name(&name, &length, document) == KESTAN_OK, "a document has no name");
  Require(name[length] == '\0', "a name does not end");
  kestan_reader* const own = static_cast<kestan_reader*>(payload);
  Require(kestan_reader_refresh(nullptr, own) != KESTAN_OK, "a filter refreshed its own reader");
  return name[length - 1] == '2' ? -1 : name[length - 1] != '1';
}

void OpenWriter(Play* play) {
  kestan_writer_options options = KESTAN_WRITER_OPTIONS_INIT;
  options.sync = 0;
  options.threads = 1;
  const unsigned choice = play->input->Byte();
  options.version = choice == 255 ? 2 : 1;
  options.merge_factor = choice == 254 ? 1 : 2 + choice % 3;
  options.with_positions = choice % 2;
  options.memory_budget = choice == 253 ? 0 : choice % 8 == 0 ? 1 : 1 << 20;
  options.language = choice == 252 ? "none such" : "german";
  options.language_length = choice > 200 ? KESTAN_ZERO_TERMINATED : 0;
  options.progress = choice % 4 == 3 ? StopSometimes : nullptr;
  options.progress_payload = play;
  kestan_writer* writer = nullptr;
  const int code = kestan_writer_open(&writer, Folder().c_str(), KESTAN_ZERO_TERMINATED, &options);
  Keep(play, code, writer);
}

void OpenReader(Play* play) {
  const char* const paths[] = {Folder().c_str(), Folder().c_str()};
  const std::size_t lengths[] = {KESTAN_ZERO_TERMINATED,
                                 Folder().size() + play->input->Byte() / 255};
  kestan_reader* reader = nullptr;
  const std::size_t counts[] = {1, 2, 0, SIZE_MAX};
  const unsigned choice = play->input->Byte();
  const std::size_t count = counts[choice < 250 ? 0 : choice % 4];
  Keep(play, kestan_reader_open_many(&reader, paths, lengths, count), reader);
}

void Write(Play* play) {
  kestan_writer* const writer = Any<kestan_writer>(play);
  kestan_document document = KESTAN_DOCUMENT_INIT;
  const std::string name = "d" + std::to_string(play->input->Byte() % 4);
  const Text text = AnyText(play);
  const Text title = AnyText(play);
  document.name = name.c_str();
  document.name_length = name.size();
  document.text = text.data();
  document.text_length = text.length;
  document.title = document.summary = title.data();
  document.title_length = document.summary_length = title.length;
  Check(kestan_writer_add(writer, &document));
}

void Change(Play* play) {
  kestan_writer* const writer = Any<kestan_writer>(play);
  const Text from = AnyText(play);
  const Text to = AnyText(play);
  const kestan_error* warning = nullptr;
  switch (play->input->Below(8)) {
    case 0:
      return Check(kestan_writer_remove(writer, "d1", 2));
    case 1:
      return Check(kestan_writer_rename(writer, "d1", 2, "d2", 2));
    case 2:
      return Check(kestan_writer_rename(writer, from.data(), from.length, to.data(), to.length));
    case 3:
      return Check(kestan_writer_rollback(writer));
    case 4:
      return Check(kestan_writer_compact(writer));
    case 5:
      return Check(kestan_writer_warning(&warning, writer));
    default:
      return Check(kestan_writer_commit(writer));
  }
}

kestan_search_options AnySearchOptions(Play* play, kestan_reader* reader) {
  kestan_search_options options = KESTAN_SEARCH_OPTIONS_INIT;
  const unsigned choice = play->input->Byte();
  if (choice < 128) return options;
  options.version = choice == 255 ? 0 : 1;
  options.words = static_cast<int>(choice % 4);
  options.strict = choice / 4 % 2;
  options.limit = choice % 5 == 0 ? SIZE_MAX : choice % 5 - 1;
  options.k1 = AnyNumber(play);
  options.b = AnyNumber(play);
  options.proximity_bonus = AnyNumber(play);
  options.opening_bonus = AnyNumber(play);
  if (choice % 3 == 0) options.filter = FilterByName;
  options.filter_payload = reader;
  return options;
}

void Search(Play* play) {
  kestan_reader* const reader = Any<kestan_reader>(play);
  const kestan_search_options options = AnySearchOptions(play, reader);
  const Text text = AnyText(play);
  kestan_hits* hits = nullptr;
  std::uint64_t count = 0;
  std::uint64_t total = 0;
  const int code = kestan_reader_search(&hits, reader, text.data(), text.length, &options);
  const int counted = kestan_reader_count(&count, reader, text.data(), text.length, &options);
  Check(counted);
  if (code == KESTAN_OK) {
    Require(counted == KESTAN_OK && kestan_hits_total(&total, hits) == KESTAN_OK, "no total");
    Require(total == count, "another number was counted than was found");
  }
  Keep(play, code, hits);
}

void SearchQuery(Play* play) {
  kestan_reader* const reader = Any<kestan_reader>(play);
  const kestan_query* const query = Any<kestan_query>(play);
  const kestan_search_options options = AnySearchOptions(play, reader);
  kestan_hits* hits = nullptr;
  std::uint64_t count = 0;
  Keep(play, kestan_reader_search_query(&hits, reader, query, &options), hits);
  Check(kestan_reader_count_query(&count, reader, query, &options));
}

void BuildQuery(Play* play) {
  kestan_reader* const reader = Any<kestan_reader>(play);
  const kestan_query* const operands[] = {Any<kestan_query>(play), Any<kestan_query>(play)};
  const Text text = AnyText(play);
  kestan_query* query = nullptr;
  int code = KESTAN_OK;
  switch (play->input->Below(8)) {
    case 0:
      code = kestan_query_prefix(&query, reader, text.data(), text.length);
      break;
    case 1:
      code = kestan_query_phrase(&query, reader, text.data(), text.length);
      break;
    case 2:
      code = kestan_query_near(&query, reader, operands[0], operands[1],
                               text.bytes.size() < 9 ? 3 : 0);
      break;
    case 3:
      code = kestan_query_and(&query, reader, operands, 2);
      break;
    case 4:
      code = kestan_query_or(&query, reader, operands, text.is_null ? SIZE_MAX : 2);
      break;
    case 5:
      code = kestan_query_not(&query, reader, operands[0]);
      break;
    default:
      code = kestan_query_word(&query, reader, text.data(), text.length);
  }
  Keep(play, code, query);
}

// What a word finds is what its query finds.
void Compare(Play* play) {
  kestan_reader* const reader = Any<kestan_reader>(play);
  const char* const words[] = {"roses", "red", "blue", "title", "caf\xc3\xa9"};
  const char* const word = words[play->input->Byte() % std::size(words)];
  std::uint64_t found = 0;
  std::uint64_t built = 0;
  kestan_query* query = nullptr;
  if (kestan_reader_count(&found, reader, word, KESTAN_ZERO_TERMINATED, nullptr) != KESTAN_OK)
    return;
  Require(kestan_query_word(&query, reader, word, KESTAN_ZERO_TERMINATED) == KESTAN_OK, "no query");
  Require(kestan_reader_count_query(&built, reader, query, nullptr) == KESTAN_OK, "no count");
  Require(found == built, "a word and its query find different documents");
  kestan_query_free(query);
}

void List(Play* play) {
  kestan_reader* const reader = Any<kestan_reader>(play);
  const Text text = AnyText(play);
  kestan_documents* documents = nullptr;
  kestan_terms* terms = nullptr;
  kestan_report* report = nullptr;
  kestan_statistics statistics = KESTAN_STATISTICS_INIT;
  int changed = 0;
  const std::size_t limit = play->input->Below(3);
  switch (play->input->Below(8)) {
    case 0:
      return Keep(play, kestan_reader_documents(&documents, reader), documents);
    case 1:
      return Keep(play, kestan_reader_find(&documents, reader, "d1", 2), documents);
    case 2:
      return Keep(play, kestan_reader_terms(&terms, reader, text.data(), text.length, limit),
                  terms);
    case 3:
      return Keep(play, kestan_reader_suggest(&terms, reader, text.data(), text.length, limit),
                  terms);
    case 4:
      return Keep(play, kestan_check(&report, Folder().c_str(), Folder().size()), report);
    case 5:
      return Check(kestan_reader_statistics(&statistics, reader));
    default:
      return Check(kestan_reader_refresh(&changed, reader));
  }
}

void Next(Play* play) {
  void* const handle = Any<void>(play);
  const kestan_document_info* document = nullptr;
  const kestan_term* term = nullptr;
  const kestan_fragment* fragment = nullptr;
  const kestan_finding* finding = nullptr;
  if (kestan_hits_next(&play->hit, static_cast<kestan_hits*>(handle)) == KESTAN_OK) {
    Require(play->hit->name[play->hit->name_length] == '\0', "a name does not end");
    Require(std::isfinite(play->hit->score), "a score is no number");
    Require(play->hit->percent >= 1 && play->hit->percent <= 100, "a percentage is none");
  }
  Check(kestan_documents_next(&document, static_cast<kestan_documents*>(handle)));
  Check(kestan_terms_next(&term, static_cast<kestan_terms*>(handle)));
  Check(kestan_snippet_next(&fragment, static_cast<kestan_snippet*>(handle)));
  Check(kestan_report_next(&finding, static_cast<kestan_report*>(handle)));
}

void LookAtHits(Play* play) {
  kestan_hits* const hits = Any<kestan_hits>(play);
  const Text text = AnyText(play);
  const std::size_t position = play->input->Byte() == 255 ? SIZE_MAX : play->input->Below(4);
  const char* line = nullptr;
  std::size_t length = 0;
  kestan_snippet* snippet = nullptr;
  Check(kestan_hits_at(&play->hit, hits, position));
  if (kestan_hits_note(&line, &length, hits, position) == KESTAN_OK) {
    Require(line[length] == '\0', "a note does not end");  // it may quote zero bytes of the query
  }
  Check(kestan_hits_suggestion(&line, &length, hits, position));
  const kestan_hit* hit = play->hit;
  if (position == 3)
    hit = reinterpret_cast<const kestan_hit*>(reinterpret_cast<std::uintptr_t>(hit) + 4);
  Keep(play, kestan_hits_snippet(&snippet, hits, hit, text.data(), text.length), snippet);
  if (snippet != nullptr) Check(kestan_snippet_text(&line, &length, snippet));
}

void AskForError(Play* play) {
  const kestan_error* error = nullptr;
  if (kestan_last_error(&error, Any<void>(play)) != KESTAN_OK || error == nullptr) return;
  Require(error->message[error->message_length] == '\0', "a message does not end");
  Require(std::strchr(error->message, '\n') == nullptr, "a message has several lines");
  Check(error->code);
}

void Free(Play* play) { FreeAsAnything(Any<void>(play)); }

using Call = void (*)(Play*);

constexpr Call kCalls[] = {OpenWriter,  OpenReader,  Write,   Write, Change, Search,
                           SearchQuery, BuildQuery,  Compare, List,  Next,   LookAtHits,
                           Free,        AskForError, List,    Change};

void ExpectWholeIndex() {
  kestan_report* report = nullptr;
  std::uint64_t faults = 0;
  const int code = kestan_check(&report, Folder().c_str(), Folder().size());
  Require(code == KESTAN_OK || code == KESTAN_ENOTFOUND, "the index cannot be checked");
  kestan_report_counts(&faults, nullptr, report);
  Require(faults == 0, "the index has faults");
  kestan_report_free(report);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input(data, size);
  Play play(&input);
  std::filesystem::remove_all(Folder());
  for (int calls = 0; calls < kMaxCalls && !input.IsEmpty(); ++calls) {
    kCalls[input.Byte() % std::size(kCalls)](&play);
  }
  for (void* const handle : play.handles) FreeAsAnything(handle);
  ExpectWholeIndex();
  return 0;
}
