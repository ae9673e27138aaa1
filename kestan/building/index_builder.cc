// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/building/index_builder.h>

#include <kestan/building/gdbm_writer.h>
#include <kestan/format/document_record.h>
#include <kestan/format/id_list.h>
#include <kestan/format/keys.h>
#include <kestan/format/option_flags.h>
#include <kestan/format/posting_list.h>
#include <kestan/format/record_kind.h>
#include <kestan/storage/memory/memory.h>

#include <algorithm>
#include <array>

namespace kestan {
namespace {

template <std::size_t kBytes>
std::string_view AsBytes(const std::array<char, kBytes>& bytes) {
  return {bytes.data(), bytes.size()};
}

std::string_view FamilyOf(SideRecord kind) {
  switch (kind) {
    case SideRecord::kTitle:
      return kTitleFamily;
    case SideRecord::kSummary:
      return kSummaryFamily;
    default:
      return kUserFamily;
  }
}

bool IsSingleRecord(std::string_view key) {
  return key == kCounterKey || key == kAvailableKey || key == kDeletedKey || key == kOptionsKey;
}

// Makes room for `bytes` bytes at the end of `record`, and returns where they begin.
char* Grow(std::string* record, std::size_t bytes) {
  const std::size_t had = record->size();
  record->resize(had + bytes);
  return record->data() + had;
}

}  // namespace

void AppendPosting(Code code, const Positions& positions, std::string* record) {
  StorePosting(Grow(record, PostingBytes(positions.count)), code, positions);
}

void AppendPosting(Code code, const EncodedPositions& positions, std::string* record) {
  StorePosting(Grow(record, PostingBytes(positions.size())), code, positions);
}

void AppendPosting(Code code, std::string* record) { StoreUnit(Grow(record, kUnitBytes), code); }

class IndexBuilder::Impl {
 public:
  StoreError Open(const char* path, const Options& options) {
    const StoreError error = writer_.Create(path, options.expected_records);
    if (error != StoreError::kNone) return error;
    highest_code_ = 0;
    writer_.Add(kOptionsKey, AsBytes(EncodeOptions(options.option_flags)));
    system_records_ = writer_.records();
    return error;
  }

  void AddDocument(Code code, std::string_view name, std::uint32_t added) {
    highest_code_ = std::max(highest_code_, code);
    writer_.Add(AsBytes(NameKey(code)), name);
    AddSystemRecord(kDocumentFamily, name, AsBytes(EncodeDocument(added, code)));
  }

  RecordPlace AddWord(std::string_view word, std::string_view record) {
    if (!CanBeWord(word) || IsTaken(word)) return {};
    return writer_.AddIfFits(word, record);
  }

  std::size_t words_left_out() const { return writer_.refused(); }

  RecordPlace AddSystemRecord(std::string_view family, std::string_view name,
                              std::string_view value) {
    const RecordPlace place = writer_.Add(ItemKey(family, name), value);
    system_records_ = writer_.records();
    return place;
  }

  StoreError Finish() {
    if (highest_code_ != 0) writer_.Add(kCounterKey, AsBytes(EncodeCode(highest_code_)));
    return writer_.Finish();
  }

 private:
  // Returns whether `word` is the key of a record that is none of a word.
  bool IsTaken(std::string_view word) {
    if (!HasFamilyMark(word)) return false;
    return IsSingleRecord(word) || writer_.Contains(word, system_records_);
  }

  gdbm::Writer writer_;
  std::size_t system_records_ = 0;  // the first records, up to the last that is none of a word
  Code highest_code_ = 0;
};

IndexBuilder::IndexBuilder() : impl_(New<Impl>()) {}

IndexBuilder::~IndexBuilder() = default;

StoreError IndexBuilder::Open(const char* path, const Options& options) {
  return impl_->Open(path, options);
}

void IndexBuilder::AddDocument(Code code, std::string_view name, std::uint32_t added) {
  impl_->AddDocument(code, name, added);
}

RecordPlace IndexBuilder::AddWord(std::string_view word, std::string_view record) {
  return impl_->AddWord(word, record);
}

std::size_t IndexBuilder::words_left_out() const { return impl_->words_left_out(); }

RecordPlace IndexBuilder::AddSideRecord(SideRecord kind, std::string_view name,
                                        std::string_view text) {
  return impl_->AddSystemRecord(FamilyOf(kind), name, text);
}

StoreError IndexBuilder::Finish() { return impl_->Finish(); }

}  // namespace kestan
