// SPDX-License-Identifier: GPL-3.0-or-later
// The text of a file that was indexed, read again to show where its words stand.
#ifndef KESTAN_CLI_EXTRACT_INDEXED_TEXT_H_
#define KESTAN_CLI_EXTRACT_INDEXED_TEXT_H_

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "cli/extract/file_text.h"

namespace kestan_cli {

// How much of a text is read.
constexpr std::size_t kMaxShownText = std::size_t{1} << 18;

// How much of an HTML page, or of mail, is read for it: much may be scripts, markup and
// attachments.
constexpr std::size_t kMaxShownPage = std::size_t{1} << 22;

// The largest message of a mailbox that is read for it, with all that is attached.
constexpr std::size_t kMaxShownMessage = std::size_t{1} << 25;

// How long converters may take: a search waits for them.
struct ConverterTime {
  unsigned seconds_each = 5;
  std::chrono::milliseconds all{10000};
};

// What an index keeps of a document beside its words. Empty where it keeps nothing.
struct DocumentRecords {
  std::string name;
  std::string user;  // begins with the state of the file, and may say how the file was read
  std::string title;
  std::string summary;
};

// Reads the files of a search's hits as they were read when they were indexed.
//
// The index names no converter that a user gave, and none is ever run because an index says so: the
// user gives it again. A file that was read with other options than its name says is read with the
// converters given here. It counts as read in the same way if the digits in its record say so, or
// if the text begins as the summary that the index keeps; so a list of stop words need not be given
// again.
class IndexedTextReader {
 public:
  // Knows the converters that come with the command, and `converters` ("EXT=COMMAND").
  //   Throws   CommandError for one that is not of that form.
  explicit IndexedTextReader(const std::vector<std::string>& converters, ConverterTime time = {});

  // Reads the beginning of the text of `document`, in UTF-8.
  //   Returns  nothing if the file has changed, cannot be read, was read in a way that is not known
  //            here, or has a converter that fails or that there is no time left for.
  std::optional<std::string> Read(const DocumentRecords& document);

 private:
  std::optional<std::string> TextOfUnchanged(const DocumentRecords& document,
                                             const Fingerprint& fingerprint);
  std::optional<std::string> TextOfPart(const DocumentRecords& document,
                                        const Fingerprint& fingerprint);
  void Load(const Converters& converters, LoadedFile* file, bool* is_cut);
  void ConvertInTime(LoadedFile* file);

  const Converters converters_;
  ConverterTime time_;
};

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXTRACT_INDEXED_TEXT_H_
