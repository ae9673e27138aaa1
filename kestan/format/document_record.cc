// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/format/document_record.h>

#include <cstring>

namespace kestan {

std::array<char, kDocumentRecordBytes> EncodeDocument(std::uint32_t timestamp, Code code) {
  std::array<char, kDocumentRecordBytes> bytes;
  WriteNumber(bytes.data(), kTimestampBytes, timestamp);
  WriteNumber(bytes.data() + kTimestampBytes, kUnitBytes + kPaddingBytes, code);
  return bytes;
}

std::uint32_t DocumentTimestamp(const DBDatum& record) {
  return ReadNumber(record, 0, kTimestampBytes);
}

Code DocumentCode(const DBDatum& record) {
  return static_cast<Code>(ReadNumber(record, kTimestampBytes, kUnitBytes));
}

std::uint16_t DocumentPadding(const DBDatum& record) {
  return static_cast<std::uint16_t>(
      ReadNumber(record, kTimestampBytes + kUnitBytes, kPaddingBytes));
}

void SetDocumentTimestamp(DBDatum* record, std::uint32_t timestamp) {
  GrowTo(record, kDocumentRecordBytes);
  WriteNumber(record->data, kTimestampBytes, timestamp);
}

std::array<char, kNameKeyBytes> NameKey(Code code) {
  std::array<char, kNameKeyBytes> key{kNameFamily[0], kNameFamily[1]};
  StoreUnit(key.data() + kNameFamily.size(), code);
  return key;
}

Code CodeOfNameKey(const DBDatum& key) {
  return static_cast<Code>(ReadNumber(key, kNameFamily.size(), kUnitBytes));
}

void SetName(DBDatum* record, std::string_view name) {
  Resize(record, name.size());
  if (!name.empty()) std::memcpy(record->data, name.data(), name.size());
}

}  // namespace kestan
