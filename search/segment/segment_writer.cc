// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/segment/segment_writer.h"

#include <fcntl.h>
#include <kestan/index_file.h>
#include <kestan/postings.h>
#include <unistd.h>

#include <cerrno>
#include <new>

#include "search/files/new_file.h"

namespace kestan::search {
namespace {

constexpr std::array<SideRecord, kDocumentFields> kSideRecords = {
    SideRecord::kTitle, SideRecord::kSummary, SideRecord::kUser};

// Of a document there are the two records of its code and its name, and those of its fields.
constexpr std::size_t kRecordsOfDocument = 2 + kDocumentFields;

// Returns the error in the words of the system, where it speaks of one.
Status StatusOf(StoreError error, int error_number, const std::string& file) {
  switch (error) {
    case StoreError::kNone:
      return {};
    case StoreError::kFileOpen:
    case StoreError::kFileWrite:
    case StoreError::kFileRead:
    case StoreError::kFileSeek:
    case StoreError::kFileClose:
      return SystemError(error_number, file);
    default:
      return {StatusCode::kSystem, ErrorString(error), file};
  }
}

}  // namespace

Status SegmentWriter::Create(const std::string& folder, std::uint64_t number, bool with_positions,
                             std::size_t expected_documents, std::size_t expected_terms) {
  folder_ = folder;
  info_.number = number;
  IndexBuilder::Options options;
  options.option_flags = with_positions ? 0 : kFlagNoPositions;
  options.expected_records = expected_documents * kRecordsOfDocument + expected_terms;
  const StoreError error = builder_.Open(Path(SegmentFile(info_)).c_str(), options);
  status_ = StatusOf(error, errno, Path(SegmentFile(info_)));
  is_open_ = status_.ok();
  if (is_open_) ShareIndexFile();
  if (status_.ok()) status_ = terms_.Create(Path(TermsFile(info_)));
  if (status_.ok()) status_ = table_.Create(Path(TableFile(info_)));
  return status_;
}

// The engine knows nothing of folders.
void SegmentWriter::ShareIndexFile() const {
  const std::string path = Path(SegmentFile(info_));
  const Descriptor file = OpenFile(path, O_RDONLY | O_NOFOLLOW);
  if (file.is_open()) ShareLikeFolder(file, path);
}

// The dictionary and the table remove their own files until they are finished.
SegmentWriter::~SegmentWriter() {
  if (!is_open_) return;
  try {
    unlink(Path(SegmentFile(info_)).c_str());
    if (info_.terms.bytes != 0) unlink(Path(TermsFile(info_)).c_str());
    if (info_.table.bytes != 0) unlink(Path(TableFile(info_)).c_str());
  } catch (const std::bad_alloc&) {
    return;  // the next writer removes what stays
  }
}

void SegmentWriter::AddDocument(const SegmentDocument& document) {
  if (info_.documents == kMaxCode && status_.ok()) {
    status_ = {StatusCode::kInvalidArgument, "too many documents for one segment"};
  }
  if (!status_.ok()) return;
  ++info_.documents;
  builder_.AddDocument(static_cast<Code>(info_.documents), document.name, document.added);
  DocumentEntry entry;
  entry.name = document.name;
  entry.words = document.words;
  entry.added = document.added;
  for (std::size_t i = 0; i < kDocumentFields; ++i) {
    if (document.fields[i].empty()) continue;
    entry.fields[i] = builder_.AddSideRecord(kSideRecords[i], document.name, document.fields[i]);
  }
  table_.Add(entry);
}

void SegmentWriter::AddTerm(std::string_view term, std::uint32_t documents,
                            std::string_view record) {
  if (!status_.ok()) return;
  const RecordPlace place = builder_.AddWord(term, record);
  if (place.offset != 0) terms_.Add({term, documents, place});
}

// The system may begin to write the index file while its checksum is computed.
Status SegmentWriter::FinishIndexFile(Syncing syncing) {
  const std::string path = Path(SegmentFile(info_));
  const StoreError error = builder_.Finish();
  if (error != StoreError::kNone) return StatusOf(error, errno, path);
  const Result<FileSummary> summary = SummaryOf(path);
  if (!summary.ok()) return summary.status();
  info_.segment = *summary;
  info_.words_left_out = builder_.words_left_out();
  return syncing == Syncing::kNow ? SyncFile(path) : Status();
}

Result<SegmentInfo> SegmentWriter::Finish(Syncing syncing) {
  if (!is_open_ && status_.ok()) status_ = {StatusCode::kInvalidArgument, "no segment is open"};
  if (status_.ok()) status_ = FinishIndexFile(syncing);
  if (!status_.ok()) return status_;
  terms_.SetSegment(info_.segment.checksum);
  table_.SetSegment(info_.segment.checksum);
  const Result<FileSummary> terms = terms_.Finish(syncing);
  if (!terms.ok()) return status_ = terms.status();
  info_.terms = *terms;
  const Result<FileSummary> table = table_.Finish(syncing);
  if (!table.ok()) return status_ = table.status();
  info_.table = *table;
  is_open_ = false;
  return info_;
}

}  // namespace kestan::search
