/* SPDX-License-Identifier: GPL-3.0-or-later */
/* Kestan for C, and for every language that can call C: <kestan/c.h>, -lkestan-c.
 *
 * - Every function but the ones named ..._free returns KESTAN_OK, which is 0, or a negative
 *   KESTAN_E...; an iterator that has come to its end returns KESTAN_ITEROVER. Outputs come first.
 *   After an error they are as they were, but for handles: those are null, and where a function
 *   opens something, the handle is there to be asked for the message. Free it as any other.
 * - A handle is made by the library, used through its functions, and freed by the one named after
 *   its type, which takes null. One that is null, freed, or of another type gives KESTAN_EHANDLE
 *   (unless a new handle has its address by then). Freeing such a one does nothing.
 * - kestan_last_error() tells what the last error of a handle was, in words.
 * - Strings come with their lengths in bytes, and may hold any bytes where it does not say
 *   otherwise. A length of KESTAN_ZERO_TERMINATED means: up to the zero byte. Null stands for "" if
 *   its length is 0. What the library returns ends with a zero byte that its length leaves out.
 *   Names are bytes; texts, words and messages are UTF-8, and bytes of a text that are not are
 *   taken as Latin-1.
 * - What comes in is copied. What is lent is the library's: it lasts as each function says.
 * - Structures that are filled in by the caller begin with a version, and are to be initialised
 *   with the macro, or the function, of that name. A null pointer to options means the defaults.
 *   Of structures that the library lends, later versions may add members at the end.
 * - Nothing is printed, and nothing ends the process, unless the system has no memory left for the
 *   key/value store of an index file.
 * - After fork(), a handle that was opened before is the parent's: in the child every call with it
 *   returns KESTAN_EFORKED, and freeing it leaves the index alone. Open the index again there.
 */
#ifndef KESTAN_C_H_
#define KESTAN_C_H_

/* NOLINTBEGIN(modernize-deprecated-headers, modernize-use-using): it is C. */

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#define KESTAN_C_EXPORT __attribute__((visibility("default")))

/* A length that stands for: up to the zero byte. */
#define KESTAN_ZERO_TERMINATED SIZE_MAX

/* ---- Errors ---- */

enum {
  KESTAN_OK = 0,
  KESTAN_ENOTFOUND = -1,     /* there is no such index or document */
  KESTAN_EEXISTS = -2,       /* a document of that name exists */
  KESTAN_EINVALID = -3,      /* an argument makes no sense, or the call does not at this time */
  KESTAN_EHANDLE = -4,       /* a handle is null, freed, or of another type; it has no message */
  KESTAN_EQUERY = -5,        /* the query cannot be read */
  KESTAN_EBUSY = -6,         /* another writer has the index */
  KESTAN_EDAMAGED = -7,      /* a file of the index is missing, cut short or changed */
  KESTAN_EVERSION = -8,      /* the index is of another version, or of another word size */
  KESTAN_ESYSTEM = -9,       /* the system refused a call */
  KESTAN_ENOMEM = -10,       /* memory ran out */
  KESTAN_EINTERRUPTED = -11, /* a callback asked to stop */
  KESTAN_EFORKED = -12,      /* the handle was opened by the process that forked this one */
  KESTAN_ITEROVER = -31      /* there is no next one */
};

typedef struct kestan_error {
  int code;            /* KESTAN_E... */
  int system_error;    /* errno, where the system said why; or 0 */
  int64_t column;      /* the byte of the query that it is about, from 0; or -1 */
  const char* message; /* one line for a person, without the file */
  size_t message_length;
  const char* file; /* the file that it is about, or "" */
  size_t file_length;
} kestan_error;

/* Tells about the last error of `handle` in this thread: a writer, a reader, or whatever was made
 * by one. `*out` is null if there was none. It is lent until the next error of the handle in this
 * thread, or until the handle is freed.
 */
KESTAN_C_EXPORT int kestan_last_error(const kestan_error** out, const void* handle);

/* Tells the version of the library that is loaded. */
KESTAN_C_EXPORT int kestan_version(int* major, int* minor, int* patch);

/* ---- Writing ---- */

/* The one writer of an index. What it changes is seen by readers after a commit and lost without.
 * For one thread at a time: a call while another one runs, or from a callback of it, returns
 * KESTAN_EINVALID and does nothing.
 *
 * After an error of writing, every call returns that error until kestan_writer_rollback().
 */
typedef struct kestan_writer kestan_writer;

enum { KESTAN_PHASE_WRITING = 0, KESTAN_PHASE_MERGING = 1 };

/* How far a commit or a compaction has come. */
typedef struct kestan_progress {
  int phase; /* KESTAN_PHASE_... */
  uint64_t done_bytes;
  uint64_t all_bytes;
} kestan_progress;

/* Called now and then during a commit or a compaction, by the thread that called it. `progress` is
 * lent for the call. Returns 0 to go on. Anything else stops, and the call returns
 * KESTAN_EINTERRUPTED: while it is writing, the index is as it was; while it is merging, the
 * changes are in the index, and its segments are as they were.
 */
typedef int (*kestan_progress_callback)(const kestan_progress* progress, void* payload);

typedef struct kestan_writer_options {
  unsigned version;      /* KESTAN_WRITER_OPTIONS_VERSION */
  int create;            /* make the index where there is none */
  int sync;              /* wait at each commit until it is on the disk, to outlive a power cut */
  int with_positions;    /* of a new index: keep where words stand, for NEAR and quotes */
  unsigned threads;      /* that take documents apart; 0: one a core, at most 4 */
  unsigned merge_factor; /* as many segments of a size are merged; at least 2 */
  size_t memory_budget;  /* in bytes, before documents are written as a segment */
  const char* language;  /* of the words: "german", "de", "none"; "": as the index, or guessed */
  size_t language_length;
  kestan_progress_callback progress; /* or null */
  void* progress_payload;            /* handed to it */
} kestan_writer_options;

#define KESTAN_WRITER_OPTIONS_VERSION 1
#define KESTAN_WRITER_OPTIONS_INIT \
  { KESTAN_WRITER_OPTIONS_VERSION, 1, 1, 1, 0, 8, (size_t)256 << 20, NULL, 0, NULL, NULL }

/* Does what the macro does. `version` is KESTAN_WRITER_OPTIONS_VERSION.
 *   Returns  KESTAN_EINVALID for a version that the library does not know.
 */
KESTAN_C_EXPORT int kestan_writer_options_init(kestan_writer_options* options, unsigned version);

/* A document to be added. */
typedef struct kestan_document {
  unsigned version; /* KESTAN_DOCUMENT_VERSION */
  const char* name; /* its key: not empty, without zero bytes, up to 4096 bytes */
  size_t name_length;
  const char* text; /* split into words as queries are; the index keeps the words only */
  size_t text_length;
  const char* title; /* comes with hits */
  size_t title_length;
  const char* summary; /* what snippets are cut from where there is no text at hand */
  size_t summary_length;
  const char* data; /* whatever the program wants back with the document */
  size_t data_length;
} kestan_document;

#define KESTAN_DOCUMENT_VERSION 1
#define KESTAN_DOCUMENT_INIT \
  { KESTAN_DOCUMENT_VERSION, NULL, 0, NULL, 0, NULL, 0, NULL, 0, NULL, 0 }

/* Does what the macro does, as kestan_writer_options_init(). */
KESTAN_C_EXPORT int kestan_document_init(kestan_document* document, unsigned version);

/* Opens the index folder at `path` (without zero bytes), or makes it there.
 *   Returns  KESTAN_EBUSY if another writer has it, KESTAN_ENOTFOUND if there is none and
 *            `options->create` is 0, KESTAN_EINVALID for a language that is not known,
 *            KESTAN_EDAMAGED, KESTAN_EVERSION, KESTAN_ESYSTEM. `*out` is set even then, for
 *            kestan_last_error() and kestan_writer_free() only; it is null if memory ran out.
 */
KESTAN_C_EXPORT int kestan_writer_open(kestan_writer** out, const char* path, size_t path_length,
                                       const kestan_writer_options* options);

/* Frees the writer; null is fine. What was not committed is lost. */
KESTAN_C_EXPORT void kestan_writer_free(kestan_writer* writer);

/* Adds a document, in place of one that has its name.
 *   Returns  KESTAN_EINVALID for a name that no document can have, or for more than 1 GB; errors of
 *            writing.
 */
KESTAN_C_EXPORT int kestan_writer_add(kestan_writer* writer, const kestan_document* document);

/* Removes a document.
 *   Returns  KESTAN_ENOTFOUND if there is none of that name.
 */
KESTAN_C_EXPORT int kestan_writer_remove(kestan_writer* writer, const char* name,
                                         size_t name_length);

/* Renames a document.
 *   Returns  KESTAN_ENOTFOUND if there is no document `from`, KESTAN_EEXISTS if there is one `to`.
 */
KESTAN_C_EXPORT int kestan_writer_rename(kestan_writer* writer, const char* from,
                                         size_t from_length, const char* to, size_t to_length);

/* Writes all changes and lets readers see them: all of them, or, on an error, none. Then merges
 * segments if there are many; after an error of merging the changes are in the index.
 */
KESTAN_C_EXPORT int kestan_writer_commit(kestan_writer* writer);

/* Forgets all changes since the last commit. */
KESTAN_C_EXPORT int kestan_writer_rollback(kestan_writer* writer);

/* Commits, and merges all segments into as few as possible, without removed documents. */
KESTAN_C_EXPORT int kestan_writer_compact(kestan_writer* writer);

/* Gives what no call has returned as an error and a person should know, each once, such as a
 * damaged segment that merging has left out. It is lent until the next call with the writer.
 *   Returns  KESTAN_ITEROVER if there is nothing more.
 */
KESTAN_C_EXPORT int kestan_writer_warning(const kestan_error** out, kestan_writer* writer);

/* ---- Reading ---- */

/* A snapshot of one index or of several: no later commit changes it. Any number of threads may use
 * one at once. What it has made may outlive it, and keeps its files open until then.
 */
typedef struct kestan_reader kestan_reader;

/* Opens the index at `path` (without zero bytes): a folder, or an index file of the engine.
 *   Returns  KESTAN_ENOTFOUND, KESTAN_EDAMAGED, KESTAN_EVERSION, KESTAN_ESYSTEM. `*out` is set even
 *            then, as in kestan_writer_open().
 */
KESTAN_C_EXPORT int kestan_reader_open(kestan_reader** out, const char* path, size_t path_length);

/* Opens `count` indexes, at least one, to be searched as one. */
KESTAN_C_EXPORT int kestan_reader_open_many(kestan_reader** out, const char* const* paths,
                                            const size_t* path_lengths, size_t count);

/* Frees the reader; null is fine. No other thread may be using it. */
KESTAN_C_EXPORT void kestan_reader_free(kestan_reader* reader);

/* Takes a new snapshot if there was a commit; waits until the searches of other threads are done.
 * `*changed` (null is fine) is set to 1 if there was, or to 0. After an error the old snapshot
 * stays.
 */
KESTAN_C_EXPORT int kestan_reader_refresh(int* changed, kestan_reader* reader);

typedef struct kestan_statistics {
  unsigned version;           /* KESTAN_STATISTICS_VERSION */
  int with_positions;         /* 1 if the index keeps where words stand */
  uint64_t documents;         /* without removed ones */
  uint64_t removed_documents; /* whose words still take space */
  uint64_t words;             /* of all documents, each as often as it occurs */
  uint64_t segments;
  uint64_t bytes; /* of all files */
} kestan_statistics;

#define KESTAN_STATISTICS_VERSION 1
#define KESTAN_STATISTICS_INIT \
  { KESTAN_STATISTICS_VERSION, 0, 0, 0, 0, 0, 0 }

/* Does what the macro does, as kestan_writer_options_init(). */
KESTAN_C_EXPORT int kestan_statistics_init(kestan_statistics* statistics, unsigned version);

/* Fills in `*out`, which the caller has initialised. */
KESTAN_C_EXPORT int kestan_reader_statistics(kestan_statistics* out, kestan_reader* reader);

/* ---- Documents ---- */

/* Documents of a snapshot, one after the other. For one thread at a time. */
typedef struct kestan_documents kestan_documents;

typedef struct kestan_document_info {
  const char* name;
  size_t name_length;
  const char* title;
  size_t title_length;
  const char* summary;
  size_t summary_length;
  const char* data;
  size_t data_length;
  uint32_t words; /* how many it has */
  uint32_t added; /* when it was added or last renamed, in seconds since 1970 */
} kestan_document_info;

/* Lists all documents, index by index, in the order in which they were added as far as merging has
 * kept it.
 */
KESTAN_C_EXPORT int kestan_reader_documents(kestan_documents** out, kestan_reader* reader);

/* Lists one document, found by its name.
 *   Returns  KESTAN_ENOTFOUND if there is none.
 */
KESTAN_C_EXPORT int kestan_reader_find(kestan_documents** out, kestan_reader* reader,
                                       const char* name, size_t name_length);

/* Gives the next document, lent until the next call or until `documents` is freed.
 *   Returns  KESTAN_ITEROVER after the last, KESTAN_EDAMAGED.
 */
KESTAN_C_EXPORT int kestan_documents_next(const kestan_document_info** out,
                                          kestan_documents* documents);

KESTAN_C_EXPORT void kestan_documents_free(kestan_documents* documents);

/* ---- Words of the index ---- */

/* Words, one after the other. For one thread at a time. */
typedef struct kestan_terms kestan_terms;

typedef struct kestan_term {
  const char* term;
  size_t term_length;
  uint64_t documents; /* that hold it */
} kestan_term;

/* Lists the words that begin with `prefix`, in order of the bytes that the index keeps of them
 * (ASCII first); at most `limit`, or all if that is 0.
 */
KESTAN_C_EXPORT int kestan_reader_terms(kestan_terms** out, kestan_reader* reader,
                                        const char* prefix, size_t prefix_length, size_t limit);

/* Lists words of the index that may be meant by `word`, which may be misspelled, the likeliest
 * first; at most `limit`, or all that come into question if that is 0. None if a document has it.
 */
KESTAN_C_EXPORT int kestan_reader_suggest(kestan_terms** out, kestan_reader* reader,
                                          const char* word, size_t word_length, size_t limit);

/* Gives the next word, lent until the next call or until `terms` is freed.
 *   Returns  KESTAN_ITEROVER after the last.
 */
KESTAN_C_EXPORT int kestan_terms_next(const kestan_term** out, kestan_terms* terms);

KESTAN_C_EXPORT void kestan_terms_free(kestan_terms* terms);

/* ---- Queries built by calls ---- */

/* A query without a text to be parsed: what a program asks for, and not what a person types. It
 * never changes, so any number of threads may use it. It is put to the reader that it was made for;
 * another one returns KESTAN_EINVALID. It may outlive its reader. Errors are those of the reader.
 */
typedef struct kestan_query kestan_query;

/* A word, as in the text of a query outside quotes: it stands for its other forms too, unless the
 * search takes words as they are written. One with punctuation inside (e-mail) is what it is there.
 *   Returns  KESTAN_EQUERY if there is no word in `word`.
 */
KESTAN_C_EXPORT int kestan_query_word(kestan_query** out, kestan_reader* reader, const char* word,
                                      size_t word_length);

/* Every word that begins with `prefix`.
 *   Returns  as kestan_query_word().
 */
KESTAN_C_EXPORT int kestan_query_prefix(kestan_query** out, kestan_reader* reader,
                                        const char* prefix, size_t prefix_length);

/* The words of `text` as they are written, one right after the other.
 *   Returns  as kestan_query_word().
 */
KESTAN_C_EXPORT int kestan_query_phrase(kestan_query** out, kestan_reader* reader, const char* text,
                                        size_t text_length);

/* `left` and `right` at most `distance` words apart (at least 1), in either order. If `left` is
 * such a query too, `right` is near the last of its parts. Returns  KESTAN_EINVALID for other
 * distances, KESTAN_EQUERY for a query that is nested too deeply.
 */
KESTAN_C_EXPORT int kestan_query_near(kestan_query** out, kestan_reader* reader,
                                      const kestan_query* left, const kestan_query* right,
                                      unsigned distance);

/* What all of `count` queries find, at least one.
 *   Returns  as kestan_query_near().
 */
KESTAN_C_EXPORT int kestan_query_and(kestan_query** out, kestan_reader* reader,
                                     const kestan_query* const* operands, size_t count);

/* What any of them finds. */
KESTAN_C_EXPORT int kestan_query_or(kestan_query** out, kestan_reader* reader,
                                    const kestan_query* const* operands, size_t count);

/* All documents but what `operand` finds. */
KESTAN_C_EXPORT int kestan_query_not(kestan_query** out, kestan_reader* reader,
                                     const kestan_query* operand);

KESTAN_C_EXPORT void kestan_query_free(kestan_query* query);

/* ---- Searching ---- */

enum {
  KESTAN_WORDS_BEST = 0, /* what a person means: all words, or where none has all, any of them */
  KESTAN_WORDS_ALL = 1,  /* all words, each as it is written */
  KESTAN_WORDS_ANY = 2   /* any of the words */
};

/* A document that matches, as a filter sees it; lent for the call, and so are its texts. For the
 * thread of the call.
 */
typedef struct kestan_filtered kestan_filtered;

KESTAN_C_EXPORT int kestan_filtered_name(const char** out, size_t* length,
                                         kestan_filtered* document);
KESTAN_C_EXPORT int kestan_filtered_title(const char** out, size_t* length,
                                          kestan_filtered* document);
KESTAN_C_EXPORT int kestan_filtered_summary(const char** out, size_t* length,
                                            kestan_filtered* document);
KESTAN_C_EXPORT int kestan_filtered_data(const char** out, size_t* length,
                                         kestan_filtered* document);
/* When it was added or last renamed, in seconds since 1970. */
KESTAN_C_EXPORT int kestan_filtered_added(uint32_t* out, kestan_filtered* document);
/* Which of the opened indexes has it, from 0. */
KESTAN_C_EXPORT int kestan_filtered_index(size_t* out, kestan_filtered* document);

/* Says whether a document is to be found: 1 or more if so, 0 if not; less than 0 stops the search,
 * which returns KESTAN_EINTERRUPTED. Called for documents that match and no others, more than once
 * for some, and from several threads at once.
 */
typedef int (*kestan_filter_callback)(kestan_filtered* document, void* payload);

/* docs/queries.md describes what words side by side mean, docs/quality.md the four numbers. */
typedef struct kestan_search_options {
  unsigned version; /* KESTAN_SEARCH_OPTIONS_VERSION */
  int words;        /* KESTAN_WORDS_... */
  int with_titles;  /* of hits; without them, less is read of each */
  int strict;       /* KESTAN_EQUERY for what of a query would be left out with a note */
  size_t limit;     /* how many hits to return; 0: every match */
  double k1;
  double b;
  double proximity_bonus;
  double opening_bonus;
  kestan_filter_callback filter; /* which documents are to be found; null: all */
  void* filter_payload;          /* handed to it */
} kestan_search_options;

#define KESTAN_SEARCH_OPTIONS_VERSION 1
#define KESTAN_SEARCH_OPTIONS_INIT \
  { KESTAN_SEARCH_OPTIONS_VERSION, KESTAN_WORDS_BEST, 1, 0, 10, 2.0, 0.75, 0.4, 0.7, NULL, NULL }

/* Does what the macro does, as kestan_writer_options_init(). */
KESTAN_C_EXPORT int kestan_search_options_init(kestan_search_options* options, unsigned version);

/* The answer to a search. For one thread at a time. */
typedef struct kestan_hits kestan_hits;

typedef struct kestan_hit {
  const char* name;
  size_t name_length;
  const char* title;
  size_t title_length;
  double score; /* the higher, the more relevant; to be compared within one search */
  int percent;  /* of the best hit's score, rounded; at least 1 */
  size_t index; /* which of the opened indexes has it, from 0 */
} kestan_hit;

/* Finds the documents that match `query`, in the language that docs/queries.md describes.
 *   Returns  KESTAN_EDAMAGED where a file contradicts itself: never an answer that may be wrong;
 *            KESTAN_EQUERY if `options->strict`; KESTAN_EINVALID for options that make no sense.
 */
KESTAN_C_EXPORT int kestan_reader_search(kestan_hits** out, kestan_reader* reader,
                                         const char* query, size_t query_length,
                                         const kestan_search_options* options);

/* The same for a query built by calls. */
KESTAN_C_EXPORT int kestan_reader_search_query(kestan_hits** out, kestan_reader* reader,
                                               const kestan_query* query,
                                               const kestan_search_options* options);

/* Counts the documents that match, which takes less time than to rank them. */
KESTAN_C_EXPORT int kestan_reader_count(uint64_t* out, kestan_reader* reader, const char* query,
                                        size_t query_length, const kestan_search_options* options);

/* The same for a query built by calls. */
KESTAN_C_EXPORT int kestan_reader_count_query(uint64_t* out, kestan_reader* reader,
                                              const kestan_query* query,
                                              const kestan_search_options* options);

/* Gives the next hit, the best first; of equal score, in order of their names. It is lent until
 * `hits` is freed.
 *   Returns  KESTAN_ITEROVER after the last.
 */
KESTAN_C_EXPORT int kestan_hits_next(const kestan_hit** out, kestan_hits* hits);

/* Gives the hit at `position`, from 0, and does not move what kestan_hits_next() gives.
 *   Returns  KESTAN_ITEROVER past the last.
 */
KESTAN_C_EXPORT int kestan_hits_at(const kestan_hit** out, kestan_hits* hits, size_t position);

/* How many hits there are. */
KESTAN_C_EXPORT int kestan_hits_count(size_t* out, kestan_hits* hits);

/* How many documents match, whatever the limit. */
KESTAN_C_EXPORT int kestan_hits_total(uint64_t* out, kestan_hits* hits);

/* Gives the note at `position`, from 0: how the query was read, and what of it was ignored. Lent
 * until `hits` is freed.
 *   Returns  KESTAN_ITEROVER past the last.
 */
KESTAN_C_EXPORT int kestan_hits_note(const char** out, size_t* length, kestan_hits* hits,
                                     size_t position);

/* Gives the suggestion at `position`, from 0, for words that no document has; the same. */
KESTAN_C_EXPORT int kestan_hits_suggestion(const char** out, size_t* length, kestan_hits* hits,
                                           size_t position);

KESTAN_C_EXPORT void kestan_hits_free(kestan_hits* hits);

/* ---- Snippets ---- */

/* The part of a text that shows best why it matches. For one thread at a time. */
typedef struct kestan_snippet kestan_snippet;

typedef struct kestan_fragment {
  const char* text;
  size_t text_length;
  int matches; /* 1: it is what the query asked for */
} kestan_fragment;

/* Cuts a snippet of about 160 bytes, on one line, out of `text`, the text of `hit`. Where `text` is
 * null, the document's summary is taken for it. Without a match it is empty.
 *   Returns  KESTAN_EINVALID if `hit` is not one of `hits`; KESTAN_ENOTFOUND if there is no text
 * and a refresh has taken the document away; KESTAN_EDAMAGED.
 */
KESTAN_C_EXPORT int kestan_hits_snippet(kestan_snippet** out, kestan_hits* hits,
                                        const kestan_hit* hit, const char* text,
                                        size_t text_length);

/* Gives the next fragment, lent until `snippet` is freed.
 *   Returns  KESTAN_ITEROVER after the last.
 */
KESTAN_C_EXPORT int kestan_snippet_next(const kestan_fragment** out, kestan_snippet* snippet);

/* Gives all fragments in one piece, lent until `snippet` is freed. */
KESTAN_C_EXPORT int kestan_snippet_text(const char** out, size_t* length, kestan_snippet* snippet);

KESTAN_C_EXPORT void kestan_snippet_free(kestan_snippet* snippet);

/* ---- Checking ---- */

/* What a check has found. For one thread at a time. */
typedef struct kestan_report kestan_report;

typedef struct kestan_finding {
  int is_fault;     /* 0: a note, which harms nothing */
  const char* file; /* its path */
  size_t file_length;
  const char* key; /* of the record, any bytes; "": the file as a whole */
  size_t key_length;
  const char* text; /* one line for a person */
  size_t text_length;
} kestan_finding;

/* Reads all files of the index at `path` (without zero bytes), and says whether they are whole.
 * Changes nothing. A damaged index is no error: its faults are in the report.
 *   Returns  KESTAN_ENOTFOUND, KESTAN_EVERSION, KESTAN_ESYSTEM. `*out` is set even then, as in
 *            kestan_writer_open().
 */
KESTAN_C_EXPORT int kestan_check(kestan_report** out, const char* path, size_t path_length);

/* Gives the next finding, lent until `report` is freed. Of each file the first 1,000 are kept.
 *   Returns  KESTAN_ITEROVER after the last.
 */
KESTAN_C_EXPORT int kestan_report_next(const kestan_finding** out, kestan_report* report);

/* How many faults there are, and how many notes, kept or not. Null is fine for either. */
KESTAN_C_EXPORT int kestan_report_counts(uint64_t* faults, uint64_t* notes, kestan_report* report);

KESTAN_C_EXPORT void kestan_report_free(kestan_report* report);

#ifdef __cplusplus
}
#endif

/* NOLINTEND(modernize-deprecated-headers, modernize-use-using) */

#endif /* KESTAN_C_H_ */
