// Cleaning text in place before it is indexed. What is written never passes what was read.
#ifndef KESTAN_INDEXING_STRIP_H_
#define KESTAN_INDEXING_STRIP_H_

namespace kestan {

// Each works on `length` bytes at `text` and returns the new number of bytes; the methods of the
// same names of class Kestan say the rest.
int StripNonWords(char* text, unsigned length);
int StripWords(char* text, unsigned length, const char* stop_text, const char* const* stop_list);
int StripBadLines(char* text, unsigned length);

}  // namespace kestan

#endif  // KESTAN_INDEXING_STRIP_H_
