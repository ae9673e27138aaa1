// Adds documents to an open index.
#ifndef KESTAN_CLI_SYNC_INDEX_BATCH_H_
#define KESTAN_CLI_SYNC_INDEX_BATCH_H_

#include <cstddef>
#include <string>

#include "cli/extract/document/document.h"
#include "cli/files/fingerprint.h"
#include "cli/index/opened_index.h"

namespace kestan_cli {

// How much text is added between two flushes. A flush frees the memory that waiting records take.
// But each writes every changed record, and gdbm leaves a hole where a record grew: so they are
// few.
constexpr std::size_t kTextBytesBetweenFlushes = std::size_t{1} << 26;

// Adds documents one by one, and counts the words that are new to the index.
class IndexBatch {
 public:
  // Borrows `index`, which is open for writing. The caller saves it at the end.
  explicit IndexBatch(OpenedIndex& index,
                      std::size_t text_bytes_between_flushes = kTextBytesBetweenFlushes)
      : index_(index), text_bytes_between_flushes_(text_bytes_between_flushes) {}

  // Adds `document` as `name`, in place of an earlier version, with its title, its summary and the
  // fingerprint of its file.
  //   Throws   CommandError if the index refuses it.
  void Add(const std::string& name, const Document& document, const Fingerprint& fingerprint);

  // Stores `fingerprint` for the document `name`, whose file has the same content as before.
  void UpdateFingerprint(const std::string& name, const Fingerprint& fingerprint);

  unsigned long new_words() const { return new_words_; }

 private:
  void AddWords(const std::string& name, const std::string& words);
  void SaveWhenDue(std::size_t added_bytes);

  OpenedIndex& index_;
  const std::size_t text_bytes_between_flushes_;
  unsigned long new_words_ = 0;
  std::size_t waiting_bytes_ = 0;
};

}  // namespace kestan_cli

#endif  // KESTAN_CLI_SYNC_INDEX_BATCH_H_
