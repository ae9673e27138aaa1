// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/format/keys.h>
#include <kestan/maintenance/dump.h>
#include <kestan/storage/checksum/crc64.h>
#include <kestan/storage/memory/memory.h>
#include <kestan/storage/walk/flush_policy.h>
#include <kestan/storage/walk/record_iterator.h>
#include <kestan/storage/walk/size_guard.h>
#include <kestan/text/escape.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <climits>
#include <cstdint>

namespace kestan {
namespace {

constexpr std::string_view kName = "kestan-dump ";
constexpr std::string_view kFirstLine = "kestan-dump 1";
constexpr std::string_view kLastLineStart = "end ";
constexpr char kSeparator = '\t';                 // between key and value
constexpr std::size_t kMaxRecordBytes = INT_MAX;  // of key or value: what gdbm can store
constexpr char kContinuation = kEscape;           // at the end of a line: the next one goes on

// Appends at least `width` digits.
void AppendNumber(std::uint64_t number, int base, std::size_t width, String* text) {
  std::array<char, 20> digits;  // as many as 2^64 - 1 has
  const char* const end = std::to_chars(digits.begin(), digits.end(), number, base).ptr;
  const auto count = static_cast<std::size_t>(end - digits.data());
  text->append(width - std::min(width, count), '0').append(digits.data(), count);
}

// What the last line of a dump says: how many records there are, and the checksum of the lines.
struct DumpTrailer {
  void AddLine(std::string_view line) {
    checksum.Add(line);
    checksum.Add("\n");
  }

  String LastLine() const {
    String line(kLastLineStart);
    AppendNumber(records, 10, 1, &line);
    line += ' ';
    AppendNumber(checksum.Value(), 16, 16, &line);
    return line;
  }

  std::uint64_t records = 0;
  Crc64 checksum;
};

// ---- From records to lines ----

class DumpWriter {
 public:
  explicit DumpWriter(const TakeLine& take) : take_(take) { EndLine(kFirstLine); }

  void Add(const DBDatum& key, const DBDatum& value) {
    line_.clear();
    AddBytes({key.data, key.size});
    MakeRoom(1);
    line_ += kSeparator;
    AddBytes({value.data, value.size});
    EndLine(line_);
    ++trailer_.records;
  }

  void Finish() { take_(trailer_.LastLine()); }

 private:
  void AddBytes(std::string_view bytes) {
    for (const char byte : bytes) {
      MakeRoom(kEscapedByteBytes);
      if (IsPlain(byte)) {
        line_ += byte;
      } else {
        AppendEscape(byte, &line_);
      }
    }
  }

  // Goes on in a new line where this one could not take `bytes` more and still be continued.
  void MakeRoom(std::size_t bytes) {
    if (line_.size() + bytes < kMaxDumpLineBytes) return;
    line_ += kContinuation;
    EndLine(line_);
    line_.clear();
  }

  void EndLine(std::string_view line) {
    trailer_.AddLine(line);
    take_(line);
  }

  const TakeLine& take_;
  DumpTrailer trailer_;
  String line_;
};

// Finds every key of the store, each once, in order of their bytes. Fetches no value.
//   Returns  0 or gdbm's error number.
int FindKeys(Database& store, Vector<String>* keys) {
  RecordIterator record(store, WalkOptions::Keys());
  for (; record.Valid(); record.Next()) keys->emplace_back(BytesOf(record.key()));
  std::sort(keys->begin(), keys->end());
  keys->erase(std::unique(keys->begin(), keys->end()), keys->end());
  return record.walk_error();
}

// ---- From lines to records ----

class DumpReader {
 public:
  // Borrows both.
  DumpReader(Database& target, const TakeLine& complain)
      : target_(target), complain_(complain), flush_(target) {}

  // Reads all lines.
  //   Returns  false once something is wrong, which it has said.
  bool Read(const GiveLine& give) {
    std::string_view line;
    for (line_number_ = 1; give(&line); ++line_number_) {
      if (!ReadLine(line)) return false;
    }
    if (!is_complete_) Refuse("the dump ends here, without its last line");
    return is_complete_;
  }

 private:
  bool ReadLine(std::string_view line) {
    if (is_complete_) return Refuse("something follows the last line");
    if (line.size() > kMaxDumpLineBytes) return Refuse("longer than any line of a dump");
    if (line_number_ == 1) return ReadFirstLine(line);
    const bool continues = !line.empty() && line.back() == kContinuation;
    if (!is_within_record_ && !continues && line.find(kSeparator) == std::string_view::npos) {
      return ReadLastLine(line);
    }
    trailer_.AddLine(line);
    if (continues) line.remove_suffix(1);
    if (!AddText(line)) return false;
    is_within_record_ = continues;
    return continues || FinishRecord();
  }

  bool ReadFirstLine(std::string_view line) {
    trailer_.AddLine(line);
    if (line == kFirstLine) return true;
    const bool has_name = line.substr(0, kName.size()) == kName;
    return Refuse(has_name ? "a dump in a form that is not known here" : "not a dump of an index");
  }

  bool ReadLastLine(std::string_view line) {
    is_complete_ = line == std::string_view(trailer_.LastLine());
    if (is_complete_) return true;
    const bool is_last = line.substr(0, kLastLineStart.size()) == kLastLineStart;
    return Refuse(is_last ? "number of records or checksum differ from what was read"
                          : "neither a record nor the last line");
  }

  // Reads a record's text, or a part of it that does not end within an escape.
  bool AddText(std::string_view text) {
    while (!text.empty()) {
      const auto plain = std::find_if_not(text.begin(), text.end(), IsPlain);
      const auto length = static_cast<std::size_t>(plain - text.begin());
      if (!AddBytes(text.substr(0, length))) return false;
      text.remove_prefix(length);
      if (!text.empty() && !AddMarked(&text)) return false;
    }
    return true;
  }

  // Reads a separator or an escape, and passes it.
  bool AddMarked(std::string_view* text) {
    if (text->front() == kSeparator) {
      if (is_value_) return Refuse("more than one tab");
      is_value_ = true;
      text->remove_prefix(1);
      return true;
    }
    if (text->front() != kEscape) return Refuse("a byte that should have been escaped");
    const std::string_view escape = text->substr(0, kEscapedByteBytes);
    if (escape.size() < kEscapedByteBytes || escape[1] != 'x')
      return Refuse("an escape is not \\xHH");
    const std::size_t high = kHexDigits.find(escape[2]);
    const std::size_t low = kHexDigits.find(escape[3]);
    if (high == std::string_view::npos || low == std::string_view::npos)
      return Refuse("an escape is not \\xHH");
    const char byte = static_cast<char>(high << 4 | low);
    if (IsPlain(byte)) return Refuse("an escape for a byte that needs none");
    text->remove_prefix(kEscapedByteBytes);
    return AddBytes({&byte, 1});
  }

  bool AddBytes(std::string_view bytes) {
    String& part = is_value_ ? value_ : key_;
    const bool fits = bytes.size() <= kMaxRecordBytes - part.size();
    if (!fits) return Refuse("a key or value of more than 2,147,483,647 bytes");
    part.append(bytes);
    return true;
  }

  bool FinishRecord() {
    if (!is_value_) return Refuse("a record without a tab");
    if (trailer_.records != 0 && !(last_key_ < key_)) return Refuse("the keys are not in order");
    ++trailer_.records;
    if (!Store()) return false;
    last_key_.swap(key_);
    key_.clear();
    Forget(&value_);
    is_value_ = false;
    return true;
  }

  // Gives back the memory of a long value.
  static void Forget(String* value) {
    if (value->size() > kMaxDumpLineBytes) String().swap(*value);
    value->clear();
  }

  bool Store() {
    int error = target_.Put(AsDatum(key_), AsDatum(value_));
    if (error == 0) error = flush_.Note(key_.size() + value_.size());
    if (error == 0) return true;
    String what("cannot store the record -- ");
    return Refuse(what.append(Database::ErrorString(error)));
  }

  bool Refuse(std::string_view what) {
    String line("line ");
    AppendNumber(line_number_, 10, 1, &line);
    complain_(line.append(": ").append(what));
    return false;
  }

  Database& target_;
  const TakeLine& complain_;
  PeriodicFlush flush_;
  DumpTrailer trailer_;
  std::uint64_t line_number_ = 0;
  String key_;
  String value_;
  String last_key_;
  bool is_value_ = false;          // the separator has been read
  bool is_within_record_ = false;  // the line before goes on in this one
  bool is_complete_ = false;       // the last line has been read
};

bool RefuseTarget(const TakeLine& complain, std::string_view what, int error) {
  String line(what);
  complain(error == 0 ? line : line.append(" -- ").append(Database::ErrorString(error)));
  return false;
}

bool IsEmpty(Database& target, const TakeLine& complain) {
  const RecordIterator record(target, WalkOptions::Keys());
  if (record.Valid()) return RefuseTarget(complain, "the index is not empty", 0);
  if (record.walk_error() == 0) return true;
  return RefuseTarget(complain, "the index cannot be read", record.walk_error());
}

}  // namespace

StoreError DumpIndex(Database& store, const TakeLine& take) {
  Vector<String> keys;
  DBDatumPtr value;
  if (store.Flush() == -1) return StoreError::kNotOpen;
  if (const int error = FindKeys(store, &keys); error != 0) return StoreError{error};
  DumpWriter writer(take);
  PeriodicFlush flush(store);
  SizeGuard guard(store);
  for (const String& key : keys) {
    if (const int error = store.Get(&value, AsDatum(key)); error != 0) return StoreError{error};
    const std::size_t bytes = key.size() + value.ptr->size;
    if (const int error = guard.Count(bytes); error != 0) return StoreError{error};
    writer.Add(AsDatum(key), *value.ptr);
    value.Free();
    flush.Note(bytes);  // dumping goes on where changes of others cannot be written
  }
  writer.Finish();
  return StoreError::kNone;
}

bool LoadIndex(const GiveLine& give, Database& target, const TakeLine& complain) {
  if (target.Flush() == -1) return RefuseTarget(complain, "no file is open", 0);
  if (!IsEmpty(target, complain)) return false;
  if (!DumpReader(target, complain).Read(give)) return false;
  target.Flush();
  if (target.FileError() == 0) return true;
  return RefuseTarget(complain, "the records cannot be written", target.FileError());
}

}  // namespace kestan
