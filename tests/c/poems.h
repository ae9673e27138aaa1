/* SPDX-License-Identifier: GPL-3.0-or-later */
/* The index that most tests ask, and short ways to write and to ask. Each call ends the test if it
 * fails where it must not. Texts end with a zero byte.
 */
#ifndef KESTAN_TESTS_C_POEMS_H_
#define KESTAN_TESTS_C_POEMS_H_

#include <kestan/c.h>

#define ZERO_TERMINATED KESTAN_ZERO_TERMINATED

/* Makes the index "poems" in the working folder:
 *
 *   name         title    text
 *   roses.txt    Roses    Roses are red, and a rose is a rose
 *   violets.txt  Violets  Violets are blue, roses red
 *   dead.txt     ""       A dead end, said the gardener
 *
 * The summary of roses.txt is "Of roses and of other red flowers", its data are the bytes 1 0 2.
 */
void MakePoems(void);

/* Opens the index there, or makes it; the options are those that are faster. */
kestan_writer* OpenWriter(const char* path);
kestan_reader* OpenReader(const char* path);

/* Returns options for tests: nobody pulls the plug. */
kestan_writer_options QuickOptions(void);

/* Adds a document of that name, title (which may be null) and text, to `writer`. */
void Add(kestan_writer* writer, const char* name, const char* title, const char* text);
void Commit(kestan_writer* writer);

/* Makes an index of `count` documents, d0.txt and so on: "common" is in all, "even" in every other
 * one, "number0" and so on in one each.
 */
void MakeNumbers(const char* path, int count);

/* Returns how many documents match; `options` may be null. */
unsigned long long CountOf(kestan_reader* reader, const char* query);
kestan_hits* Search(kestan_reader* reader, const char* query);

/* Returns the names of the hits, the best first, each with a blank after it. Lent until the next
 * call.
 */
const char* NamesOf(kestan_hits* hits);
const char* Found(kestan_reader* reader, const char* query);

/* Returns what the last error of `handle` says, never null; its code; its errno. */
const char* MessageOf(const void* handle);
int CodeOf(const void* handle);
const kestan_error* ErrorOf(const void* handle);

#endif /* KESTAN_TESTS_C_POEMS_H_ */
