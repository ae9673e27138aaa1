// SPDX-License-Identifier: GPL-3.0-or-later
// Changing an index: kestan::search::IndexWriter.
#ifndef KESTAN_SEARCH_INDEX_WRITER_H_
#define KESTAN_SEARCH_INDEX_WRITER_H_

#include <kestan/search/document.h>
#include <kestan/search/export.h>
#include <kestan/search/status.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestan::search {

// How far a commit or a compaction has come.
struct WriterProgress {
  enum class Phase { kWriting, kMerging };
  Phase phase = Phase::kWriting;
  std::uint64_t done_bytes = 0;
  std::uint64_t all_bytes = 0;
};

struct WriterOptions {
  // How much memory documents may take before they are written as a segment. All that the writer
  // holds stays within 1.25 of it, a single document of that size aside.
  std::size_t memory_budget = std::size_t{256} << 20;

  unsigned threads = 0;        // that take documents apart; 0: one a core, at most 4
  bool create = true;          // make the index where there is none
  bool with_positions = true;  // of a new index: keep where words stand, for NEAR and quotes

  // The language of the words, by which questions find their other forms: its name in English
  // ("german") or its code ("de"), or "none" for no other forms. "": that of the index; where it
  // has none yet, it is guessed from the texts of the first commit. The index keeps the name as its
  // property "language". docs/queries.md has the list.
  std::string language;

  // Merging: segments of about the same size are merged when there are so many of them.
  unsigned merge_factor = 8;

  // Wait at each commit until all of it is on the disk, so that it outlives a power cut. Without it
  // a commit outlives the process alone: after a power cut the index may be damaged.
  bool sync = true;

  // Called now and then during Commit() and Compact(), by the thread that called them. Returns
  // whether to go on; if not, or if it throws, the call fails with kInterrupted and the index is as
  // it was.
  std::function<bool(const WriterProgress&)> progress;
};

// The texts that an index keeps for a document beside its words.
enum class DocumentField : std::uint8_t { kTitle, kSummary, kHostData };

// The one writer of an index. What it changes is seen by readers after Commit() and lost without.
// After an error of writing, every call returns that error until Rollback(). After an error of
// merging the commit stands, and the writer can go on. Use it from one thread at a time; it has
// threads of its own.
//
// A child process that fork() made has a copy that does nothing: each call returns kForked, and its
// end leaves all to the parent. Open the index in the child once the parent has closed it. Do not
// call fork() in `progress`.
class KESTAN_SEARCH_EXPORT IndexWriter {
 public:
  // Opens the index folder at `path`, or makes it there.
  //   Returns  kInvalidArgument for a language that is not known;
  //            kBusy if another writer has it (the message has the process's number), kNotFound
  //            if there is none and `create` is not set, kDamaged, kVersion, kSystem.
  static Result<IndexWriter> Open(const std::string& path, WriterOptions options = {});

  IndexWriter(IndexWriter&& other) noexcept;
  IndexWriter& operator=(IndexWriter&& other) noexcept;
  ~IndexWriter();  // without Commit(), the changes are lost

  // Adds `document`, in place of one that has its name.
  //   Returns  kInvalidArgument for a name that no document can have; errors of writing a segment.
  Status Add(Document document);

  // Removes the document `name`.
  //   Returns  kNotFound if there is none.
  Status Remove(std::string_view name);

  // Renames a document; its words stay as they are.
  //   Returns  kNotFound if there is no document `from`, kAlreadyExists if there is one `to`.
  Status Rename(std::string_view from, std::string_view to);

  // Replaces one text of the document `name`; an empty `value` takes it away.
  //   Returns  kNotFound if there is none.
  Status SetField(std::string_view name, DocumentField field, std::string_view value);

  // Keeps `value` in the index under `key`, for the host; an empty one takes it away.
  void SetProperty(std::string_view key, std::string_view value);

  // Writes all changes to disk and lets readers see them: all of them, or, on an error, none. Then
  // merges segments if there are many. After an error of merging the changes are in the index. A
  // segment that cannot be read is no such error: it is left out of merging, with a warning.
  Status Commit();

  // Forgets all changes since the last Commit().
  Status Rollback();

  // Commits, and then merges all segments into as few as possible, without removed documents. A
  // segment that cannot be read stays as it is.
  //   Returns  the error of reading the first such segment, after the others are merged.
  Status Compact();

  // Gives away what no call has returned as an error, and what a person should know, each once: the
  // error of reading a segment that Commit() has left out of merging, of which CheckIndex() says
  // more; and how many words of a segment were left out because too many have their hash, which no
  // words have but those that somebody has chosen for it.
  std::vector<Status> TakeWarnings() noexcept;

  // Commits, and writes all segments again without the positions of words: the index gets smaller,
  // NEAR and quotes then match wherever all words are, and the positions never come back. Changes
  // of properties are committed together with that, or not at all. After an error the index keeps
  // its positions.
  Status DropPositions();

 private:
  class Impl;
  explicit IndexWriter(std::unique_ptr<Impl> impl);
  void LeaveToParent() noexcept;
  std::unique_ptr<Impl> impl_;
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_INDEX_WRITER_H_
