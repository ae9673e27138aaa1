// SPDX-License-Identifier: GPL-3.0-or-later
// Word lists, front-coded: each word as one byte 128 + p and then its bytes from the p-th on, where
// p counts the leading bytes that it shares with the word before.
#ifndef KESTAN_FORMAT_WORD_LIST_H_
#define KESTAN_FORMAT_WORD_LIST_H_

#include <kestan/storage/dbdatum.h>
#include <kestan/text/scratch_text.h>

#include <cstddef>
#include <functional>
#include <string_view>

namespace kestan {

// Encodes the words of `text`, which white space separates; of each, the first 127 bytes. `out` has
// room for one byte more than `text` has and does not overlap it.
//   Returns  the number of bytes written.
std::size_t EncodeWordList(std::string_view text, char* out);

// Decodes `list` into `out`: each word and a line feed, then a NUL. A damaged list may hold
// anything: a word that claims to share more than the word before has goes on with the bytes that
// were written after that one, and the first word shares nothing.
//   Returns  the text, at the start of `out`.
char* DecodeWordList(const DBDatum& list, ScratchBuffer* out);

// Calls `visit` with each of these words, lent for the call. As in the text, a line feed in a
// damaged list ends a word, and a NUL the list.
void ForEachListedWord(const DBDatum& list,
                       const std::function<void(std::string_view word)>& visit);

}  // namespace kestan

#endif  // KESTAN_FORMAT_WORD_LIST_H_
