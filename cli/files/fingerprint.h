// SPDX-License-Identifier: GPL-3.0-or-later
// How the index recognises that a file has changed. The first line of a document's user record is
// the fingerprint of its file:
//
//   size=1234 mtime=1700000000.123456789 hash=00112233445566778899aabbccddeeff
//
// Where they apply, these follow, in this order and each after a blank:
//
//   read=0123456789abcdef        the file was not read as its name alone says
//   in=12                        a part of the file whose path is the first 12 bytes of the name;
//                                size, time and hash are those of the part
//   at=3456                      where the part begins in that file; 0 for a member of an archive
//   of=1234,1700000000.123456789 the size and the time of that file, in one of its documents
//   date=1700000000              when a message was sent, in seconds since 1970
//   from="Ann <ann@example.org>" its sender
//   to="Bob <bob@example.org>"   and for whom it is
//
// Within quotes, a backslash stands before a quote or another one. The lines below belong to the
// user and stay as they are. A record without such a first line belongs to the user
// as a whole, and the fingerprint is put before it.
#ifndef KESTAN_CLI_FILES_FINGERPRINT_H_
#define KESTAN_CLI_FILES_FINGERPRINT_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "cli/files/mail_facts.h"

struct XXH3_state_s;

namespace kestan_cli {

// What the system knows of a file without reading it. A file of the same state has not changed.
struct FileState {
  std::uint64_t bytes = 0;
  std::int64_t mtime_seconds = 0;  // since 1970
  std::uint32_t mtime_nanoseconds = 0;
};

bool operator==(const FileState& left, const FileState& right);
inline bool operator!=(const FileState& left, const FileState& right) { return !(left == right); }

struct Fingerprint {
  FileState state;
  std::string hash;  // of the file's bytes: 32 hexadecimal digits
  // How the file was read: 16 hexadecimal digits; empty if its name alone says it.
  std::string reading{};
  // Of a part of a file, such as a message in a mailbox.
  std::size_t container_bytes = 0;       // of the path of that file, with which the name begins
  std::uint64_t offset = 0;              // in that file
  std::optional<FileState> container{};  // its state, in one of its documents
  MailFacts mail{};
};

// Returns the path of the file of which the document `name` is a part; "" if it is none.
std::string ContainerOf(const std::string& name, const Fingerprint& fingerprint);

// Returns whether the two files hold the same bytes.
bool HaveSameContent(const Fingerprint& left, const Fingerprint& right);

// Returns the state at the start of `user_record`: "size=BYTES mtime=SECONDS.NANOSECONDS", then a
// blank, a line feed or the end. The rest of the record may be anything.
//   Returns  nothing if the record does not start so.
std::optional<FileState> FileStateIn(std::string_view user_record);

// Returns the fingerprint in the first line of `user_record`; nothing if that line is none.
std::optional<Fingerprint> FingerprintIn(std::string_view user_record);

// Returns `user_record` with `fingerprint` in its first line, and the user's own lines below.
std::string WithFingerprint(std::string_view user_record, const Fingerprint& fingerprint);

// Hashes a file's bytes as they come: XXH3, 128 bits. Equal hashes and sizes stand for equal bytes.
class ContentHash {
 public:
  ContentHash();

  void Add(std::string_view bytes);

  // Returns the hash of all bytes so far, in 32 hexadecimal digits.
  std::string Digits() const;

 private:
  struct Free {
    void operator()(XXH3_state_s* state) const;
  };
  std::unique_ptr<XXH3_state_s, Free> state_;
};

}  // namespace kestan_cli

#endif  // KESTAN_CLI_FILES_FINGERPRINT_H_
