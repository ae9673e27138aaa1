// SPDX-License-Identifier: GPL-3.0-or-later
// The boundary between the command and `kestan-readers.so`, the module that it loads for the first
// document that needs ICU or libxml2: a search for plain words starts without them.
//
// Nothing else crosses it. Errors are values, and neither side lets an exception through: the types
// of the functions say so. The module owns nothing that the command frees, nor the other way round.
// Names are bytes that end with NUL; `bytes` with a size need not. Everything that comes in is
// borrowed for the time of the call. One thread at a time.
#ifndef KESTAN_CLI_READERS_READERS_H_
#define KESTAN_CLI_READERS_READERS_H_

#include <cstddef>

namespace kestan_cli {

enum class ReadStatus { kRead, kUnread, kNoMemory };

// Resizes `block`, which comes from here, to `bytes`; a null block is a new one. std::free() frees
// it.
//   Returns  nullptr if there are too many bytes. Without memory it does not return.
using Reallocate = void* (*)(void* block, std::size_t bytes) noexcept;

// Receives a text in UTF-16, in pieces. A surrogate pair may be split between two.
struct Utf16Sink {
  void* context;  // for the function
  void (*add)(void* context, const char16_t* units, std::size_t count) noexcept;
};

// Gives bytes, in pieces.
struct ByteSource {
  void* context;  // for the function
  // Sets `*bytes` to the next piece, which is valid until the next call.
  //   Returns  its size; 0 at the end; -1 if there will be no more.
  long (*next)(void* context, const char** bytes) noexcept;
};

// Receives bytes, in pieces.
struct ByteSink {
  void* context;  // for the function
  // Returns false if no more are wanted.
  bool (*add)(void* context, const char* bytes, std::size_t size) noexcept;
};

// Why something could not be read: the end of a sentence, which ends with NUL.
struct ReadProblem {
  char text[200];  // NOLINT(modernize-avoid-c-arrays): the boundary is one of C
};

// Receives the markup and the text of a page as they come. Names of elements are in lower case,
// text is UTF-8, in pieces.
struct HtmlEvents {
  void* context;  // for the functions
  void (*start)(void* context, const char* element) noexcept;
  void (*end)(void* context, const char* element) noexcept;
  void (*text)(void* context, const char* bytes, std::size_t size) noexcept;
};

// Receives the members of an archive, one after the other.
struct MemberEvents {
  void* context;  // for the functions
  // Returns whether the bytes of the member are wanted. The name may be anything.
  bool (*member)(void* context, const char* name) noexcept;
  // Receives the next bytes of the last member that was wanted.
  //   Returns  false if nothing more is wanted.
  bool (*bytes)(void* context, const char* bytes, std::size_t size) noexcept;
};

// An archive that can be read from any place on.
struct ArchiveSource {
  ByteSource bytes;
  unsigned long long size;  // in bytes
  // Has the next piece begin at `at`, which is at most `size`.
  //   Returns  false if that fails.
  bool (*seek)(void* context, unsigned long long at) noexcept;  // with the context of `bytes`
};

enum class MemberChoice { kRead, kPass, kStop };

// Receives the members of an archive, one after the other.
struct ArchiveEvents {
  void* context;  // for the functions
  // Says whether the member is wanted. The name may be anything; "" if it cannot be known. It was
  // last changed at `seconds` since 1970; 0 if that is unknown.
  MemberChoice (*member)(void* context, const char* name, long long seconds) noexcept;
  // Receives the next bytes of the last member that was wanted.
  //   Returns  false if no more of it are wanted: end() is not called then.
  bool (*bytes)(void* context, const char* bytes, std::size_t size) noexcept;
  // Says that the member is over: whole if `problem` is null, else it says why it is not.
  //   Returns  false if no more members are wanted.
  bool (*end)(void* context, const char* problem) noexcept;
};

enum class CharsetKind {
  kUnusable,  // unknown to ICU, or ASCII bytes do not stand for themselves
  kPlain,     // ASCII bytes stand for themselves, wherever they are
  kShifting,  // one wrong byte changes all the text after it
  kNoMemory,
};

// What a text seems to be written in.
struct CharsetGuess {
  char name[40];   // NOLINT(modernize-avoid-c-arrays): as ICU calls it
  int confidence;  // of 100
};

struct Readers {
  // Tells the build: the first member in every version, so that it can be read before the others
  // are known to be there.
  const char* version;

  // Has the parser allocate with `reallocate`. To be called before anything is parsed.
  void (*use_memory)(Reallocate reallocate) noexcept;

  // Returns what kind of character set ICU knows as `name`.
  CharsetKind (*examine_charset)(const char* name) noexcept;

  // Decodes `bytes` as the character set `name`. Invalid bytes become U+FFFD, but ASCII bytes among
  // them stay; `*is_faulty` is set if there are any, and never cleared.
  //   Returns  kUnread if ICU does not know the name; kNoMemory with part of the text in the sink.
  ReadStatus (*decode_charset)(const char* name, const char* bytes, std::size_t size,
                               const Utf16Sink& sink, bool* is_faulty) noexcept;

  // Guesses the character set of a text.
  //   Returns  kUnread if nothing can be said.
  ReadStatus (*guess_charset)(const char* bytes, std::size_t size, CharsetGuess* guess) noexcept;

  // Parses a page in UTF-8, whatever encoding it declares and however broken its markup is.
  //   Returns  kUnread if events may be missing.
  ReadStatus (*parse_html)(const char* bytes, std::size_t size, const HtmlEvents& events) noexcept;

  // Decompresses what gzip, bzip2, xz or zstd has written, and what they have compressed again up
  // to `max_layers` times. Compares the checksums that they wrote. Starts no program.
  //   Returns  kRead at the end, and where `sink` wants no more; kUnread if the bytes are broken or
  //            `source` ends early: then `problem` says why.
  ReadStatus (*decompress)(const ByteSource& source, const ByteSink& sink, int max_layers,
                           ReadProblem* problem) noexcept;

  // Reads an archive of zip.
  //   Returns  kRead at the end, and where no more is wanted; kUnread if it is broken: then
  //            `problem` says why.
  ReadStatus (*read_zip)(const char* bytes, std::size_t size, const MemberEvents& events,
                         ReadProblem* problem) noexcept;

  // Reads an archive of zip or tar, and one of tar that was compressed once. What is decompressed
  // of that may take `max_bytes`. Links and folders are passed over.
  //   Returns  kRead at the end, and where no more is wanted; kUnread if it is broken, is none, or
  //            exceeds the limit: then `problem` says why.
  ReadStatus (*read_archive)(const ArchiveSource& source, unsigned long long max_bytes,
                             const ArchiveEvents& events, ReadProblem* problem) noexcept;

  // Parses XML in the encoding that it declares. Names of elements are as they stand there, with
  // their prefixes. References to entities that the document defines give nothing.
  //   Returns  kUnread if it is not well-formed or nested too deeply: events may be missing.
  ReadStatus (*parse_xml)(const char* bytes, std::size_t size, const HtmlEvents& events) noexcept;
};

// The one function that the module exports: its name and its type never change.
using ReadersEntry = const Readers* (*)() noexcept;
constexpr const char* kReadersEntry = "KestanReaders";

}  // namespace kestan_cli

// Returns the functions of the module, which live as long as the process.
extern "C" const kestan_cli::Readers* KestanReaders() noexcept;

#endif  // KESTAN_CLI_READERS_READERS_H_
