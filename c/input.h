// SPDX-License-Identifier: GPL-3.0-or-later
// What comes in from C, checked before it is used.
#ifndef KESTAN_C_INPUT_H_
#define KESTAN_C_INPUT_H_

#include <kestan/search/index_reader.h>
#include <kestan/search/index_writer.h>

#include <cstddef>
#include <string>
#include <string_view>

#include "c/handles/handle.h"

namespace kestan::c {

// A string with its length, as a function got it. `what` names it in messages ("the name").
struct Input {
  const char* what;
  const char* bytes;
  std::size_t length;
};

// Finds the bytes of `input`. `*view` borrows them.
//   Returns  kInvalidArgument for null with a length, and for a length that nothing can have.
Status Read(const Input& input, std::string_view* view);

// Reads the path of a file.
//   Returns  the same, also for an empty one, and for one with a zero byte.
Status ReadPath(const char* path, std::size_t length, std::string* copy);

// Returns  kInvalidArgument where what the host has filled in is of another version.
Status CheckVersion(const char* what, unsigned version, unsigned known);

// Reads options; null stands for the defaults. The language is copied; the callbacks are left out.
//   Returns  kInvalidArgument for options of another version, and for values that make no sense.
Status Read(const kestan_writer_options* options, search::WriterOptions* read);
Status Read(const kestan_search_options* options, search::SearchOptions* read);

// Fills a structure with `initial`, which is of the version `known`.
template <typename T>
int Initialise(T* out, unsigned version, const T& initial) {
  if (out == nullptr || version != initial.version) return KESTAN_EINVALID;
  *out = initial;
  return KESTAN_OK;
}

}  // namespace kestan::c

#endif  // KESTAN_C_INPUT_H_
