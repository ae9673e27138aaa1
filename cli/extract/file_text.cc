#include "cli/extract/file_text.h"

#include <sys/stat.h>

#include <initializer_list>
#include <optional>
#include <string_view>
#include <utility>

#include "cli/extract/charset/decode.h"
#include "cli/extract/html/html.h"
#include "cli/files/fingerprint.h"
#include "cli/files/skip.h"
#include "cli/files/stable_file.h"

namespace kestan_cli {
namespace {

bool HasExtension(const std::string& name, std::initializer_list<std::string_view> extensions) {
  const std::string extension = ExtensionOf(name);
  for (const std::string_view each : extensions) {
    if (extension == each) return true;
  }
  return false;
}

bool IsHtml(const std::string& name) { return HasExtension(name, {"html", "htm", "xhtml"}); }

bool IsMarkdown(const std::string& name) { return HasExtension(name, {"md", "markdown"}); }

// Describes how a file is read that begins with `head`: equal descriptions and equal bytes make
// equal documents.
std::string ReadingOf(const std::string& name, std::string_view head, const ReadingRules& rules) {
  std::string reading = IsHtml(name) ? "html" : IsMarkdown(name) ? "markdown" : "text";
  const Converter* const converter = rules.converters.Find(name, head);
  if (converter != nullptr) {
    reading = "converter";
    for (const std::string& word : converter->command) reading += " " + word;
  }
  if (rules.words.strip_encoded) reading += "\nstrip encoded";
  return reading + "\n" + rules.words.stop_words;
}

std::string ReadingByName(const std::string& name, std::string_view head) {
  static const Converters known({});
  return ReadingOf(name, head, {known, {}, 0, {}});
}

std::string DigitsOf(const std::string& reading) {
  constexpr std::size_t kDigits = 16;
  ContentHash hash;
  hash.Add(reading);
  return hash.Digits().substr(0, kDigits);
}

// Goes on from the first `piece` to the end.
std::string ReadText(SteadyFile& file, std::string_view piece, std::uint64_t max_bytes) {
  const bool may_have_nul = StartsAsUtf16(piece);
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

// A converter has opened the file by its name, after it was hashed.
void CheckUnchanged(const LoadedFile& file) {
  struct stat status {};
  const bool is_there = stat(file.name.c_str(), &status) == 0;
  if (is_there && StateOf(status) == file.fingerprint.state) return;
  throw SkipFile(SkipKind::kChanging, "changed while it was converted");
}

std::string Decoded(std::string bytes, const std::string& whose) {
  std::optional<std::string> text = DecodedText(std::move(bytes));
  if (!text.has_value()) throw SkipFile(SkipKind::kBinary, whose);
  return std::move(*text);
}

// The page's title goes before its text, as its first line.
std::string TextOfHtml(const std::string& bytes) {
  const HtmlPage page =
      StartsAsUtf16(bytes) ? ReadUtf8Html(Decoded(bytes, "binary file")) : ReadHtml(bytes);
  return page.title.empty() ? page.text : page.title + "\n" + page.text;
}

}  // namespace

LoadedFile LoadFile(const std::string& name, const ReadingRules& rules) {
  SteadyFile file(name);
  LoadedFile loaded{name, "", {}, nullptr, ""};
  std::string_view piece;
  file.Read(&piece);
  loaded.head = piece.substr(0, kHeadBytes);
  loaded.converter = rules.converters.Find(name, piece);
  if (loaded.converter == nullptr) {
    loaded.bytes = ReadText(file, piece, rules.max_bytes);
  } else {
    while (file.Read(&piece)) {
    }
  }
  loaded.fingerprint = file.Finish();
  const std::string reading = ReadingOf(name, loaded.head, rules);
  if (reading != ReadingByName(name, loaded.head)) loaded.fingerprint.reading = DigitsOf(reading);
  return loaded;
}

bool IsReadAlike(const LoadedFile& file, const std::string& name, const Fingerprint& fingerprint,
                 const ReadingRules& rules) {
  const std::string then =
      fingerprint.reading.empty() ? DigitsOf(ReadingByName(name, file.head)) : fingerprint.reading;
  return then == DigitsOf(ReadingOf(file.name, file.head, rules));
}

Document DocumentOf(LoadedFile file, const ReadingRules& rules) {
  std::string bytes = std::move(file.bytes);
  if (file.converter != nullptr) {
    bytes = Convert(*file.converter, file.name, rules.limits);
    CheckUnchanged(file);
  }
  const bool is_broken = IsBrokenUtf16(bytes);
  const bool is_read_as_named = file.converter == nullptr;
  if (is_read_as_named && IsHtml(file.name)) bytes = TextOfHtml(bytes);
  const bool is_markdown = is_read_as_named && IsMarkdown(file.name);
  Document document = MakeDocument(
      Decoded(std::move(bytes), is_read_as_named ? "binary file" : "binary after conversion"),
      is_markdown ? TitleRule::kMarkdown : TitleRule::kFirstLine, rules.words);
  if (is_broken) document.note = "its UTF-16 has half a character too much or too little";
  return document;
}

}  // namespace kestan_cli
