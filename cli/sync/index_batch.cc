#include "cli/sync/index_batch.h"

#include <kestan/results.h>

#include "cli/console/message.h"
#include "cli/index/document_records.h"

namespace kestan_cli {

void IndexBatch::Add(const std::string& name, const Document& document,
                     const Fingerprint& fingerprint) {
  AddWords(name, document.words);
  index_.CheckWritten(index_.engine().DBPutTitle(name.c_str(), document.title.c_str()));
  index_.CheckWritten(index_.engine().DBPutSummary(name.c_str(), document.summary.c_str()));
  UpdateFingerprint(name, fingerprint);
  SaveWhenDue(document.words.size());
}

void IndexBatch::UpdateFingerprint(const std::string& name, const Fingerprint& fingerprint) {
  const std::string record = WithFingerprint(UserRecord(index_.engine(), name), fingerprint);
  index_.CheckWritten(index_.engine().DBPutUser(name.c_str(), record.c_str()));
}

void IndexBatch::AddWords(const std::string& name, const std::string& words) {
  new_words_ += kestan::AddWords(index_.engine(), name.c_str(), words.c_str()).value_or(0);
  if (index_.engine().DocumentTimestamp(name.c_str()) != 0) return;
  index_.CheckRead();
  throw CommandError("index " + Quoted(index_.path()) + " did not take " + Quoted(name));
}

void IndexBatch::SaveWhenDue(std::size_t added_bytes) {
  waiting_bytes_ += added_bytes;
  if (waiting_bytes_ < text_bytes_between_flushes_) return;
  index_.Save();
  waiting_bytes_ = 0;
}

}  // namespace kestan_cli
