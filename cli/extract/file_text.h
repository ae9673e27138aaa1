// SPDX-License-Identifier: GPL-3.0-or-later
// From a file to its text, and to the document made of it.
#ifndef KESTAN_CLI_EXTRACT_FILE_TEXT_H_
#define KESTAN_CLI_EXTRACT_FILE_TEXT_H_

#include <cstdint>
#include <string>

#include "cli/extract/document/document.h"
#include "cli/extract/packed/unpack.h"
#include "cli/extract/reading.h"
#include "cli/files/fingerprint.h"

namespace kestan_cli {

// A file that has been read but not decoded.
struct LoadedFile {
  std::string name;
  FileHead head;
  Fingerprint fingerprint;
  const Converter* converter = nullptr;  // that reads it again; the table owns it
  std::string bytes;        // unpacked; empty with a converter, but for what it is to convert
  std::string inner_name;   // by which it is read: without the extensions of compression
  bool is_message = false;  // out of a mailbox
  bool is_member = false;   // out of an archive
  // Of these two, nothing but the head was read: they hold any number of documents.
  bool is_mailbox = false;
  bool is_archive = false;
};

// Returns the message `bytes`, which is at `offset` in the mailbox `path` and has the name `name`.
LoadedFile MessageOf(const std::string& name, const std::string& path, std::uint64_t offset,
                     std::string bytes);

// Returns the member `bytes` of the archive `path`, which has the name `name`, unpacked if it is
// compressed.
//   Throws   SkipFile if it cannot be unpacked, or is binary and has no converter.
LoadedFile MemberOf(const std::string& name, const std::string& path, std::string bytes,
                    const ReadingRules& rules);

// Returns whether a member called `name` cannot be text, as far as `piece` tells, which follows
// `before`.
bool IsBinaryMember(const std::string& name, std::string_view before, std::string_view piece,
                    const Converters& converters);

// Returns whether `file`, of which the head is known, is a mailbox.
bool IsReadAsMailbox(const LoadedFile& file);

// Reads the file `name` to its end, and unpacks it if it is compressed; a binary file only until
// its first NUL.
//   Throws   SkipFile if it cannot be read or unpacked, is binary and has no converter, is too
//            large, or changes meanwhile.
LoadedFile LoadFile(const std::string& name, const ReadingRules& rules);

// Returns whether the document `name` of `fingerprint`, which was made of the same bytes as `file`,
// was read as `file` is read by `rules`.
bool IsReadAlike(const LoadedFile& file, const std::string& name, const Fingerprint& fingerprint,
                 const ReadingRules& rules);

// Chooses the converter of `file`, whose head is known, and the name by which it is read.
void ChooseReading(const Converters& converters, LoadedFile* file);

// Returns whether `file` is unpacked before anything else. ChooseReading() has said so.
inline bool IsPacked(const LoadedFile& file) { return file.inner_name != file.name; }

// Unpacks what `source` gives into the bytes of `file`, and chooses how they are read.
//   Returns  whether more than `max_bytes` are there: then `cuts` must be set.
//   Throws   SkipFile as LoadFile() does.
bool UnpackFile(const PieceSource& source, const Converters& converters, std::uint64_t max_bytes,
                bool cuts, LoadedFile* file);

// Replaces the bytes of `file`, which has a converter, by those that the converter writes. It reads
// the file itself, or what was unpacked in a temporary one.
//   Throws   SkipFile if it fails, or if the file changes meanwhile.
void ConvertFile(LoadedFile* file, const CommandLimits& limits);

// What a reader sees of a file.
struct FileText {
  std::string text;  // UTF-8, without a NUL
  TitleRule title_rule = TitleRule::kFirstLine;
  std::string note{};  // why some of the text is missing; empty if none is
  MailFacts mail{};    // of a message
};

// Decodes the bytes of `file`, which has been converted if it has a converter. The title of an HTML
// page becomes its first line.
//   Throws   SkipFile if the bytes are not text, or if a page cannot be read whole.
FileText TextOf(LoadedFile file);

// Makes a document of `file`, with its converter if it has one.
//   Throws   SkipFile as ConvertFile and TextOf do, or if there are too many words.
Document DocumentOf(LoadedFile file, const ReadingRules& rules);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXTRACT_FILE_TEXT_H_
