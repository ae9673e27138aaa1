// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/index/document_words.h"

#include <kestan/index_file.h>
#include <kestan/maintenance.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <exception>

#include "search/segment/plain_index.h"

namespace kestan::search {
namespace {

// Leaves a walk that has no other way out.
class Stop : public std::exception {};

// Hands on what the engine reads of the documents that live.
class LivingDocuments {
 public:
  LivingDocuments(const Segment& segment,
                  const std::function<bool(Code, const std::vector<PlacedWord>&)>& visit)
      : segment_(segment), visit_(visit) {}

  void Take(const StoredDocument& document) {
    if (segment_.IsRemoved(document.code)) return;
    ++count_;
    words_.resize(document.word_count);
    for (std::size_t i = 0; i < document.word_count; ++i) {
      words_[i] = {document.words[i].bytes, document.words[i].position};
    }
    if (!visit_(document.code, words_)) throw Stop();
  }

  std::uint64_t count() const { return count_; }

 private:
  const Segment& segment_;
  const std::function<bool(Code, const std::vector<PlacedWord>&)>& visit_;
  std::uint64_t count_ = 0;
  std::vector<PlacedWord> words_;
};

}  // namespace

Status ForEachWithWords(
    const Segment& segment,
    const std::function<bool(Code code, const std::vector<PlacedWord>& words)>& visit) {
  IndexFile file;
  StoreError error = file.Open(segment.path().c_str());
  if (error != StoreError::kNone) return StatusOfIndexFile(error, errno, segment.path());
  LivingDocuments documents(segment, visit);
  try {
    error = ReadDocuments(file.store(),
                          [&](const StoredDocument& document) { documents.Take(document); });
  } catch (const Stop&) {
    return {};
  }
  if (error != StoreError::kNone) return StatusOfIndexFile(error, errno, segment.path());
  if (documents.count() == segment.living_documents()) return {};
  return {StatusCode::kDamaged, "documents are missing in it", segment.path()};
}

}  // namespace kestan::search
