// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/indexed_text.h"

#include <kestan/search.h>

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <string_view>
#include <utility>

#include "cli/console/message.h"
#include "cli/extract/charset/ascii.h"
#include "cli/extract/document/title.h"
#include "cli/extract/mail/mail_name.h"
#include "cli/extract/mail/mailbox.h"
#include "cli/extract/packed/archive.h"
#include "cli/files/open_file.h"
#include "cli/files/skip.h"
#include "cli/files/stable_file.h"

namespace kestan_cli {
namespace {

// How much of a compressed file is unpacked for a converter.
constexpr std::size_t kMaxConvertedBytes = std::size_t{1} << 26;

// Returns the fingerprint in a user record. One without a hash was read as the name says.
std::optional<Fingerprint> RecordedFingerprint(const std::string& user_record) {
  std::optional<Fingerprint> fingerprint = FingerprintIn(user_record);
  if (fingerprint.has_value()) return fingerprint;
  const auto state = FileStateIn(user_record);
  if (!state.has_value()) return std::nullopt;
  return Fingerprint{*state, ""};
}

bool IsUnchanged(const std::string& path, const FileState& indexed) {
  struct stat status {};
  // Looked at before it is opened: a pipe would wait for a writer.
  return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && StateOf(status) == indexed;
}

OpenFile OpenForReading(const std::string& path) {
  OpenFile file(std::fopen(path.c_str(), "rb"));
  if (file == nullptr) throw SkipFile(SkipKind::kUnreadable, ReasonOf(errno));
  std::setvbuf(file.get(), nullptr, _IONBF, 0);  // pieces are large
  return file;
}

// Appends what comes next in `file`, until `*bytes` holds `max_bytes` or the file ends.
void ReadUpTo(std::uint64_t max_bytes, std::FILE* file, std::string* bytes) {
  const std::size_t had = bytes->size();
  bytes->resize(static_cast<std::size_t>(max_bytes));
  bytes->resize(had + std::fread(bytes->data() + had, 1, bytes->size() - had, file));
  if (std::ferror(file) != 0) throw SkipFile(SkipKind::kUnreadable, ReasonOf(errno));
}

// Unpacks the first `max_bytes` of a file, of which the head has been read; all that a converter
// is to read.
//   Returns  whether there are more.
bool UnpackStart(std::FILE* opened, const Converters& converters, std::size_t max_bytes,
                 LoadedFile* file) {
  constexpr std::size_t kPieceBytes = std::size_t{1} << 16;
  std::string piece;
  bool is_first = true;
  const PieceSource source = [&]() -> std::string_view {
    piece = is_first ? file->head.packed : "";
    if (!is_first) ReadUpTo(kPieceBytes, opened, &piece);
    is_first = false;
    return piece;
  };
  const bool may_convert = converters.MayConvert(file->inner_name);
  return UnpackFile(source, converters, may_convert ? kMaxConvertedBytes : max_bytes, true, file);
}

void DropLastCharacter(std::string* text) {
  while (!text->empty() && kestan::search::ContinuesCharacter(text->back())) text->pop_back();
  if (!text->empty()) text->pop_back();
}

// Drops the last word of a text that was cut. A text without blanks loses as many characters as the
// bytes of a character that was cut can have become.
void DropCutWord(std::string* text) {
  constexpr std::size_t kMaxDropped = 256;
  const std::size_t blank = text->find_last_of(kWhiteSpace);
  if (blank != std::string::npos && text->size() - blank <= kMaxDropped) {
    text->resize(blank);
  } else {
    for (int i = 0; i < 3; ++i) DropLastCharacter(text);
  }
}

void CutTo(std::size_t max_bytes, std::string* text) {
  if (text->size() <= max_bytes) return;
  text->resize(max_bytes);
  DropCutWord(text);
}

// Reads a message where the index says that it is in its mailbox.
//   Returns  nothing if something else is there.
std::optional<LoadedFile> LoadMessage(const std::string& name, const std::string& path,
                                      const Fingerprint& fingerprint) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return {};
  const std::uint64_t bytes = fingerprint.state.bytes;
  const auto end = static_cast<std::uint64_t>(status.st_size);
  if (bytes > kMaxShownMessage || fingerprint.offset > end || bytes > end - fingerprint.offset) {
    return {};
  }
  const OpenFile opened = OpenForReading(path);
  if (fseeko(opened.get(), static_cast<off_t>(fingerprint.offset), SEEK_SET) != 0) return {};
  std::string message;
  ReadUpTo(bytes, opened.get(), &message);
  LoadedFile file = MessageOf(name, path, fingerprint.offset, std::move(message));
  if (file.fingerprint.hash != fingerprint.hash) return {};
  return file;
}

std::string HashOf(std::string_view bytes) {
  ContentHash hash;
  hash.Add(bytes);
  return hash.Digits();
}

// Looks for one document among the members of an archive.
class MemberSearch : public MemberVisitor {
 public:
  MemberSearch(const std::string& name, const std::string& path, const Fingerprint& fingerprint,
               const ReadingRules& rules)
      : name_(name), path_(path), fingerprint_(fingerprint), rules_(rules) {}

  // Wants what the document may be, or be in: in its name, more than one "#" may follow the path.
  bool Wants(const std::string& member) override {
    std::string_view rest = std::string_view(name_).substr(path_.size());
    while (!rest.empty() && rest.front() == '#') {
      rest.remove_prefix(1);
      const bool begins_so = rest.substr(0, member.size()) == member;
      if (begins_so && (rest.size() == member.size() || rest[member.size()] == '#')) return true;
    }
    return false;
  }

  std::string ReasonToSkip(const std::string& /*member*/, const std::string& /*before*/,
                           std::string_view /*piece*/) override {
    return "";
  }

  bool Take(const std::string& /*member*/, std::string bytes, std::int64_t /*seconds*/) override {
    if (bytes.size() == fingerprint_.state.bytes && HashOf(bytes) == fingerprint_.hash) {
      found_ = MemberOf(name_, path_, std::move(bytes), rules_);
    } else if (IsMailbox(bytes)) {
      Mailbox mailbox(ArchiveBytesOf(std::string_view(bytes)).next, kMaxShownMessage);
      for (MailboxMessage message; !found_.has_value() && mailbox.Next(&message);) {
        if (HashOf(message.bytes) != fingerprint_.hash) continue;
        found_ = MessageOf(name_, path_, message.offset, std::move(message.bytes));
      }
    }
    return !found_.has_value();
  }

  void Skip(const std::string& /*member*/, SkipKind /*kind*/,
            const std::string& /*reason*/) override {}

  std::optional<LoadedFile> Finish() { return std::move(found_); }

 private:
  const std::string& name_;
  const std::string& path_;
  const Fingerprint& fingerprint_;
  const ReadingRules& rules_;
  std::optional<LoadedFile> found_;
};

// Reads the part of the file at `path` that the index has as `name`.
//   Returns  nothing if it is not there any more, or too far inside.
std::optional<LoadedFile> LoadPart(const std::string& name, const std::string& path,
                                   const Fingerprint& fingerprint, const ReadingRules& rules) {
  StableFile file(path);
  std::string_view head;
  file.Read(&head);
  if (!IsReadAsArchive(path, head.substr(0, kHeadBytes), rules.converters)) {
    return LoadMessage(name, path, fingerprint);
  }
  file.MoveTo(0);
  ArchiveLimits limits;
  limits.max_member_bytes = kMaxShownMessage;
  limits.max_bytes = kMaxConvertedBytes;
  limits.is_archive = [&](const std::string& member, std::string_view start) {
    return IsReadAsArchive(member, start, rules.converters);
  };
  MemberSearch search(name, path, fingerprint, rules);
  ReadMembers(ArchiveBytesOf(file), limits, search);
  return search.Finish();
}

// Returns whether the index keeps the summary that is made of `text`, or its title if there is no
// summary. A different text would begin differently.
bool BeginsAsIndexed(const FileText& text, const DocumentRecords& document) {
  const TitledText titled = SplitAtTitle(text.text, text.title_rule);
  const std::string summary = Excerpt(titled.rest, kMaxSummaryBytes);
  if (!summary.empty() || !document.summary.empty()) return summary == document.summary;
  return Excerpt(titled.title, kMaxTitleBytes) == document.title;
}

// Subtracts the time for which it exists from `*left`.
class TimeCharge {
 public:
  explicit TimeCharge(std::chrono::milliseconds* left) : left_(*left) {}
  ~TimeCharge() {
    left_ -= std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start_);
  }
  TimeCharge(const TimeCharge&) = delete;
  TimeCharge& operator=(const TimeCharge&) = delete;

 private:
  using Clock = std::chrono::steady_clock;

  std::chrono::milliseconds& left_;
  const Clock::time_point start_ = Clock::now();
};

}  // namespace

IndexedTextReader::IndexedTextReader(const std::vector<std::string>& converters, ConverterTime time)
    : converters_(converters), time_(time) {}

std::optional<std::string> IndexedTextReader::Read(const DocumentRecords& document) {
  const auto fingerprint = RecordedFingerprint(document.user);
  if (!fingerprint.has_value()) return std::nullopt;
  const bool is_part = fingerprint->container_bytes != 0;
  if (!is_part && !IsUnchanged(document.name, fingerprint->state)) return std::nullopt;
  try {
    return is_part ? TextOfPart(document, *fingerprint) : TextOfUnchanged(document, *fingerprint);
  } catch (const SkipFile&) {
    return std::nullopt;
  }
}

std::optional<std::string> IndexedTextReader::TextOfUnchanged(const DocumentRecords& document,
                                                              const Fingerprint& fingerprint) {
  const bool is_read_by_name = fingerprint.reading.empty();
  bool is_cut = false;
  LoadedFile file;
  file.name = document.name;
  file.fingerprint = fingerprint;
  Load(is_read_by_name ? Converters::BuiltIn() : converters_, &file, &is_cut);
  const bool is_read_alike = is_read_by_name || IsReadAlike(file, file.name, fingerprint,
                                                            ReadingRules{converters_, {}, 0, {}});
  FileText text = TextOf(std::move(file));
  if (is_cut) DropCutWord(&text.text);
  if (!is_read_alike && !BeginsAsIndexed(text, document)) return std::nullopt;
  CutTo(kMaxShownText, &text.text);
  return std::move(text.text);
}

std::optional<std::string> IndexedTextReader::TextOfPart(const DocumentRecords& document,
                                                         const Fingerprint& fingerprint) {
  const std::string path = ContainerOf(document.name, fingerprint);
  if (path.empty()) return std::nullopt;
  const bool is_read_by_name = fingerprint.reading.empty();
  const ReadingRules rules{
      is_read_by_name ? Converters::BuiltIn() : converters_, {}, kMaxShownMessage, {}};
  std::optional<LoadedFile> file = LoadPart(document.name, path, fingerprint, rules);
  if (!file.has_value()) return std::nullopt;
  const bool is_read_alike =
      is_read_by_name || file->is_message || IsReadAlike(*file, file->name, fingerprint, rules);
  if (file->converter != nullptr) ConvertInTime(&*file);
  FileText text = TextOf(std::move(*file));
  if (!is_read_alike && !BeginsAsIndexed(text, document)) return std::nullopt;
  CutTo(kMaxShownText, &text.text);
  return std::move(text.text);
}

// Reads as much of the file as is needed, and sets `*is_cut` if that is not all.
void IndexedTextReader::Load(const Converters& converters, LoadedFile* file, bool* is_cut) {
  const OpenFile opened = OpenForReading(file->name);
  const std::uint64_t bytes = file->fingerprint.state.bytes;
  ReadUpTo(std::min<std::uint64_t>(bytes, kHeadBytes), opened.get(), &file->head.packed);
  ChooseReading(converters, file);
  const Format format = FormatOf(file->inner_name, file->head.packed);
  const bool has_markup = format == Format::kHtml || format == Format::kMail;
  std::size_t max_bytes = has_markup ? kMaxShownPage : kMaxShownText;
  if (format == Format::kOffice) max_bytes = kMaxShownMessage;  // the end of it says what is in it
  if (IsPacked(*file)) {
    *is_cut = UnpackStart(opened.get(), converters, max_bytes, file);
  } else if (file->converter == nullptr) {
    *is_cut = bytes > max_bytes;
    file->bytes = file->head.packed;
    ReadUpTo(std::min<std::uint64_t>(bytes, max_bytes), opened.get(), &file->bytes);
  }
  if (file->converter == nullptr) return;
  ConvertInTime(file);
  *is_cut = file->bytes.size() > kMaxShownText;
  file->bytes.resize(std::min(file->bytes.size(), kMaxShownText));
}

void IndexedTextReader::ConvertInTime(LoadedFile* file) {
  if (time_.all.count() <= 0) throw SkipFile(SkipKind::kConversion, "no time left");
  const auto seconds_left = std::chrono::duration_cast<std::chrono::seconds>(time_.all).count() + 1;
  CommandLimits limits;
  limits.seconds = static_cast<unsigned>(std::min<long long>(time_.seconds_each, seconds_left));
  const TimeCharge charge(&time_.all);
  ConvertFile(file, limits);
}

}  // namespace kestan_cli
