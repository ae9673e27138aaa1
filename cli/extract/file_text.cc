// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/file_text.h"

#include <sys/stat.h>

#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>

#include "cli/extract/charset/decode.h"
#include "cli/extract/charset/unmarked.h"
#include "cli/extract/html/html.h"
#include "cli/extract/mail/mail_name.h"
#include "cli/extract/mail/mail_text.h"
#include "cli/extract/office/office.h"
#include "cli/extract/roff/roff.h"
#include "cli/files/skip.h"
#include "cli/files/stable_file.h"
#include "cli/files/temporary_file.h"

namespace kestan_cli {
namespace {

// Reads on from the first `piece` to the end.
std::string ReadText(StableFile& file, std::string_view piece, std::uint64_t max_bytes,
                     bool may_have_nul) {
  std::string bytes;
  do {
    if (!may_have_nul && piece.find('\0') != std::string_view::npos) {
      throw SkipFile(SkipKind::kBinary, "binary file");
    }
    if (bytes.size() + piece.size() > max_bytes) {
      throw SkipFile(SkipKind::kTooLarge, "larger than " + std::to_string(max_bytes) + " bytes");
    }
    bytes += piece;
  } while (file.Read(&piece));
  return bytes;
}

bool MayHaveNul(const LoadedFile& file, std::string_view start) {
  return StartsAsUtf16(start) || !MissingUtf16Mark(start.substr(0, kHeadBytes)).empty() ||
         FormatOf(file.inner_name, start) == Format::kOffice;
}

// Unpacks a file, of which `first` has been read.
void Unpack(StableFile& file, std::string_view first, const ReadingRules& rules,
            LoadedFile* loaded) {
  bool is_first = true;
  const PieceSource source = [&] {
    std::string_view piece = first;
    if (!is_first && !file.Read(&piece)) piece = {};
    is_first = false;
    return piece;
  };
  UnpackFile(source, rules.converters, rules.max_bytes, false, loaded);
}

// The converter opens the file by its name, after it was hashed.
void CheckUnchanged(const LoadedFile& file) {
  struct stat status {};
  const bool is_there = stat(file.name.c_str(), &status) == 0;
  if (is_there && StateOf(status) == file.fingerprint.state) return;
  throw SkipFile(SkipKind::kChanging, "changed while it was converted");
}

std::string Decoded(std::string bytes, const std::string& reason_if_binary, std::string* note) {
  std::optional<std::string> text = DecodedText(std::move(bytes), note);
  if (!text.has_value()) throw SkipFile(SkipKind::kBinary, reason_if_binary);
  return std::move(*text);
}

bool IsMessage(const LoadedFile& file) {
  if (file.is_message) return true;
  return file.converter == nullptr &&
         FormatOf(file.inner_name, file.head.unpacked) == Format::kMail;
}

std::string TextOfHtml(const std::string& bytes) {
  std::string ignored;
  const HtmlPage page = StartsAsUtf16(bytes) ? ReadUtf8Html(Decoded(bytes, "binary file", &ignored))
                                             : ReadHtml(bytes);
  return page.title.empty() ? page.text : page.title + "\n" + page.text;
}

}  // namespace

void ChooseReading(const Converters& converters, LoadedFile* file) {
  file->inner_name = NameToReadBy(file->name, file->head.packed, converters);
  file->converter = nullptr;
  if (!IsPacked(*file)) {
    file->head.unpacked = file->head.packed;
    file->converter = converters.Find(file->name, file->head.packed);
  }
}

bool UnpackFile(const PieceSource& source, const Converters& converters, std::uint64_t max_bytes,
                bool cuts, LoadedFile* file) {
  UnpackRules rules{max_bytes, cuts, nullptr};
  rules.check = [&](const std::string& before, std::string_view piece) {
    if (before.empty()) {
      file->head.unpacked = piece.substr(0, kHeadBytes);
      file->converter = converters.Find(file->inner_name, piece);
    }
    const bool may_have_nul = file->converter != nullptr ||
                              MayHaveNul(*file, before.empty() ? piece : std::string_view(before));
    if (!may_have_nul && piece.find('\0') != std::string_view::npos) {
      throw SkipFile(SkipKind::kBinary, "binary file");
    }
  };
  Unpacked unpacked = Unpack(source, rules);
  file->bytes = std::move(unpacked.bytes);
  return unpacked.is_cut;
}

LoadedFile LoadFile(const std::string& name, const ReadingRules& rules) {
  StableFile file(name);
  LoadedFile loaded;
  loaded.name = name;
  std::string_view piece;
  file.Read(&piece);
  loaded.head.packed = piece.substr(0, kHeadBytes);
  ChooseReading(rules.converters, &loaded);
  loaded.is_archive = IsReadAsArchive(name, loaded.head.packed, rules.converters);
  if (loaded.is_archive && !rules.archives) {
    throw SkipFile(SkipKind::kArchive, "an archive; --archives reads what is in it");
  }
  loaded.is_mailbox = IsReadAsMailbox(loaded);
  if (loaded.is_archive || loaded.is_mailbox) return loaded;
  if (IsPacked(loaded)) {
    Unpack(file, piece, rules, &loaded);
  } else if (loaded.converter == nullptr) {
    loaded.bytes = ReadText(file, piece, rules.max_bytes, MayHaveNul(loaded, piece));
  }
  while (file.Read(&piece)) {
  }
  loaded.fingerprint = file.Finish();
  if (!IsReadByName(name, loaded.head, rules)) {
    loaded.fingerprint.reading = ReadingDigits(name, loaded.head, rules);
  }
  return loaded;
}

LoadedFile MessageOf(const std::string& name, const std::string& path, std::uint64_t offset,
                     std::string bytes) {
  LoadedFile message;
  message.name = message.inner_name = name;
  message.head.packed = message.head.unpacked = bytes.substr(0, kHeadBytes);
  message.is_message = true;
  ContentHash hash;
  hash.Add(bytes);
  message.fingerprint.state.bytes = bytes.size();
  message.fingerprint.hash = hash.Digits();
  message.fingerprint.container_bytes = path.size();
  message.fingerprint.offset = offset;
  message.bytes = std::move(bytes);
  return message;
}

bool IsReadAsMailbox(const LoadedFile& file) {
  return file.converter == nullptr && IsMailbox(file.head.packed) &&
         FormatOf(file.name, file.head.packed) == Format::kText;
}

bool IsBinaryMember(const std::string& name, std::string_view before, std::string_view piece,
                    const Converters& converters) {
  if (piece.find('\0') == std::string_view::npos) return false;
  LoadedFile member;
  member.name = name;
  member.head.packed = (before.empty() ? piece : before).substr(0, kHeadBytes);
  ChooseReading(converters, &member);
  return member.converter == nullptr && !IsPacked(member) &&
         !IsReadAsArchive(name, member.head.packed, converters) &&
         !MayHaveNul(member, member.head.packed);
}

LoadedFile MemberOf(const std::string& name, const std::string& path, std::string bytes,
                    const ReadingRules& rules) {
  LoadedFile member;
  member.name = name;
  member.head.packed = bytes.substr(0, kHeadBytes);
  member.is_member = true;
  ContentHash hash;
  hash.Add(bytes);
  member.fingerprint.state.bytes = bytes.size();
  member.fingerprint.hash = hash.Digits();
  member.fingerprint.container_bytes = path.size();
  ChooseReading(rules.converters, &member);
  if (!IsPacked(member)) {
    if (IsBinaryMember(name, {}, bytes, rules.converters)) {
      throw SkipFile(SkipKind::kBinary, "binary file");
    }
    member.bytes = std::move(bytes);
    return member;
  }
  bool is_first = true;
  const PieceSource source = [&] {
    return std::exchange(is_first, false) ? std::string_view(bytes) : std::string_view();
  };
  UnpackFile(source, rules.converters, rules.max_bytes, false, &member);
  return member;
}

bool IsReadAlike(const LoadedFile& file, const std::string& name, const Fingerprint& fingerprint,
                 const ReadingRules& rules) {
  const std::string then =
      fingerprint.reading.empty() ? ReadingDigitsByName(name, file.head) : fingerprint.reading;
  return then == ReadingDigits(file.name, file.head, rules);
}

void ConvertFile(LoadedFile* file, const CommandLimits& limits) {
  if (IsPacked(*file) || file->is_member) {
    const TemporaryFile unpacked("." + file->converter->extension, file->bytes);
    file->bytes = Convert(*file->converter, unpacked.path(), limits);
    return;
  }
  file->bytes = Convert(*file->converter, file->name, limits);
  CheckUnchanged(*file);
}

FileText TextOf(LoadedFile file) {
  FileText text;
  const Format format = FormatOf(file.inner_name, file.head.unpacked);
  if (IsMessage(file)) {
    MailText mail = ReadMail(file.bytes);
    return {std::move(mail.text), TitleRule::kFirstLine, std::move(mail.note),
            std::move(mail.facts)};
  }
  if (file.converter == nullptr && format != Format::kOffice) {
    file.bytes.insert(0, MissingUtf16Mark(file.head.unpacked));
  }
  if (IsBrokenUtf16(file.bytes)) {
    text.note = "its UTF-16 has half a character too much or too little";
  }
  if (file.converter != nullptr) {
    text.text = Decoded(std::move(file.bytes), "binary after conversion", &text.note);
    return text;
  }
  if (format == Format::kOffice) {
    text.text = TextOfOffice(file.inner_name, file.bytes, kMaxTextBytes / 4);
    return text;
  }
  if (format == Format::kHtml) file.bytes = TextOfHtml(file.bytes);
  if (format == Format::kMarkdown) text.title_rule = TitleRule::kMarkdown;
  text.text = Decoded(std::move(file.bytes), "binary file", &text.note);
  if (format == Format::kRoff) text.text = TextOfRoff(text.text);
  return text;
}

Document DocumentOf(LoadedFile file, const ReadingRules& rules) {
  if (file.converter != nullptr) ConvertFile(&file, rules.limits);
  FileText text = TextOf(std::move(file));
  Document document = MakeDocument(std::move(text.text), text.title_rule, rules.words);
  document.note = std::move(text.note);
  document.mail = std::move(text.mail);
  return document;
}

}  // namespace kestan_cli
