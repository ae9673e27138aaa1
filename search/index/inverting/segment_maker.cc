// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/index/inverting/segment_maker.h"

#include <algorithm>
#include <utility>

#include "search/text/analyzer/analysis.h"
#include "search/text/transliterate.h"

namespace kestan::search {
namespace {

// Makes one text of words of the two that a document comes with.
void AnalyzeText(Document* document) {
  if (document->text.empty()) return;
  std::string words = AnalyzedWords(document->text);
  document->text = {};
  document->words = std::move(words += document->words);
}

// Returns which of the ascending `serials` is `serial`, if any.
std::optional<std::size_t> IndexOf(const std::vector<std::uint64_t>& serials,
                                   std::uint64_t serial) {
  const auto place = std::lower_bound(serials.begin(), serials.end(), serial);
  if (place == serials.end() || *place != serial) return std::nullopt;
  return static_cast<std::size_t>(place - serials.begin());
}

void ChangeWritten(const PendingChange& change, std::size_t index, Edits* edits) {
  const auto code = static_cast<Code>(index + 1);
  switch (change.kind) {
    case PendingChange::Kind::kDrop:
      return edits->Remove(code);
    case PendingChange::Kind::kRename:
      return edits->Rename(code, change.value, change.now);
    case PendingChange::Kind::kSetField:
      return edits->SetField(code, change.field, change.value);
  }
}

}  // namespace

std::size_t BytesOf(const Document& document) {
  return document.name.size() + document.text.size() + document.words.size() +
         document.title.size() + document.summary.size() + document.host_data.size();
}

SegmentMaker::SegmentMaker(Settings settings)
    : settings_(std::move(settings)), next_number_(settings_.first_number) {}

Status SegmentMaker::Add(std::vector<PendingDocument> documents) {
  for (PendingDocument& pending : documents) {
    if (inverter_ == nullptr) inverter_ = std::make_unique<Inverter>(settings_.with_positions);
    bytes_ += BytesOf(pending.document);
    try {
      AnalyzeText(&pending.document);
    } catch (const TransliterationError& error) {
      return {StatusCode::kSystem, error.what(), settings_.folder};
    }
    inverter_->Add(std::move(pending.document), pending.added);
    serials_.push_back(pending.serial);
    if (inverter_->memory() < settings_.memory && serials_.size() < kMaxCode) continue;
    Status status = Flush();
    if (!status.ok()) return status;
  }
  return {};
}

void SegmentMaker::Change(const PendingChange& change) {
  if (ChangeInMemory(change)) return;
  for (WrittenSegment& segment : written_) {
    const auto index = IndexOf(segment.serials, change.serial);
    if (index) return ChangeWritten(change, *index, &segment.edits);
  }
}

bool SegmentMaker::ChangeInMemory(const PendingChange& change) {
  const auto index = IndexOf(serials_, change.serial);
  if (!index) return false;
  switch (change.kind) {
    case PendingChange::Kind::kDrop:
      inverter_->Drop(*index);
      break;
    case PendingChange::Kind::kRename:
      inverter_->Rename(*index, change.value, change.now);
      break;
    case PendingChange::Kind::kSetField:
      inverter_->SetField(*index, change.field, change.value);
      break;
  }
  return true;
}

Status SegmentMaker::Flush() {
  if (inverter_ == nullptr) return {};
  const Result<SegmentInfo> info = inverter_->Write(settings_.folder, next_number_);
  if (!info.ok()) return info.status();
  if (info->documents > 0) {
    WrittenSegment segment;
    segment.info = *info;
    for (std::size_t i = 0; i < serials_.size(); ++i) {
      if (!inverter_->IsDropped(i)) segment.serials.push_back(serials_[i]);
    }
    segment.edits = Edits(segment.serials.size());
    written_.push_back(std::move(segment));
    next_number_ += settings_.number_step;
  }
  if (settings_.written_bytes != nullptr) *settings_.written_bytes += bytes_;
  inverter_.reset();
  serials_.clear();
  bytes_ = 0;
  return {};
}

}  // namespace kestan::search
