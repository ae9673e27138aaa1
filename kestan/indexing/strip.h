// SPDX-License-Identifier: GPL-3.0-or-later
// Cleaning text in place before it is indexed. What is written never passes what was read.
#ifndef KESTAN_INDEXING_STRIP_H_
#define KESTAN_INDEXING_STRIP_H_

namespace kestan {

// What Kestan::StripNonWords(), StripWords() and StripBadLines() do, which say the rest. Each works
// on `length` bytes at `text` and returns the new number of bytes.
int RemoveNonWords(char* text, unsigned length);
int RemoveStopWords(char* text, unsigned length, const char* stop_text,
                    const char* const* stop_list);
int RemoveBadLines(char* text, unsigned length);

}  // namespace kestan

#endif  // KESTAN_INDEXING_STRIP_H_
