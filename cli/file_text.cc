#include "file_text.h"

#include <sys/stat.h>

#include <initializer_list>
#include <optional>
#include <string_view>
#include <utility>

#include "decode.h"
#include "html.h"
#include "skip.h"
#include "steady_file.h"

namespace kestan_cli {
namespace {

bool HasExtension(const std::string& name, std::initializer_list<std::string_view> extensions) {
  const std::string extension = ExtensionOf(name);
  for (const std::string_view each : extensions) {
    if (extension == each) return true;
  }
  return false;
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
std::string TextOfHtml(std::string bytes) {
  if (StartsAsUtf16(bytes)) bytes = Decoded(std::move(bytes), "binary file");
  const HtmlPage page = ReadHtml(bytes);
  return page.title.empty() ? page.text : page.title + "\n" + page.text;
}

}  // namespace

LoadedFile LoadFile(const std::string& name, const ReadingRules& rules) {
  SteadyFile file(name);
  LoadedFile loaded{name, {}, nullptr, ""};
  std::string_view piece;
  file.Read(&piece);
  loaded.converter = rules.converters.Find(name, piece);
  if (loaded.converter == nullptr) {
    loaded.bytes = ReadText(file, piece, rules.max_bytes);
  } else {
    while (file.Read(&piece)) {
    }
  }
  loaded.fingerprint = file.Finish();
  return loaded;
}

Document DocumentOf(LoadedFile file, const ReadingRules& rules) {
  if (file.converter != nullptr) {
    std::string output = Convert(*file.converter, file.name, rules.limits);
    CheckUnchanged(file);
    return MakeDocument(Decoded(std::move(output), "binary after conversion"),
                        TitleRule::kFirstLine, rules.words);
  }
  if (HasExtension(file.name, {"html", "htm", "xhtml"})) {
    file.bytes = TextOfHtml(std::move(file.bytes));
  }
  const bool is_markdown = HasExtension(file.name, {"md", "markdown"});
  return MakeDocument(Decoded(std::move(file.bytes), "binary file"),
                      is_markdown ? TitleRule::kMarkdown : TitleRule::kFirstLine, rules.words);
}

}  // namespace kestan_cli
