// What tells whether a file has changed since it was indexed. It is kept in the first line of the
// document's user record:
//
//   size=1234 mtime=1700000000.123456789 hash=00112233445566778899aabbccddeeff
//
// A file that was read in another way than its name alone says has " read=0123456789abcdef" there.
// The lines below it are the user's own and stay as they are. A record without such a first line is
// a user's own as a whole, and the line is put before it.
#ifndef KESTAN_CLI_FILES_FINGERPRINT_H_
#define KESTAN_CLI_FILES_FINGERPRINT_H_

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

struct XXH3_state_s;

namespace kestan_cli {

// What the system tells about a file without reading it.
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
  // How the file was read, in 16 hexadecimal digits; empty where its name alone says it.
  std::string reading{};
};

// Whether the two are of files with the same bytes.
bool HaveSameContent(const Fingerprint& left, const Fingerprint& right);

// Returns the fingerprint in the first line of `user_record`, if there is one.
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
