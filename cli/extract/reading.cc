// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/reading.h"

#include <cstddef>

#include "cli/extract/mail/mail_name.h"
#include "cli/extract/office/office.h"
#include "cli/extract/packed/archive_name.h"
#include "cli/extract/packed/compressed_name.h"
#include "cli/extract/roff/roff.h"
#include "cli/files/fingerprint.h"

namespace kestan_cli {
namespace {

std::string FormatName(Format format) {
  switch (format) {
    case Format::kHtml:
      return "html";
    case Format::kMarkdown:
      return "markdown";
    case Format::kRoff:
      return "roff";
    case Format::kMail:
      return "mail";
    case Format::kOffice:
      return "office";
    case Format::kText:
      break;
  }
  return "text";
}

// Describes the reading in words: what the digits are made of.
std::string Description(const std::string& name, const FileHead& head, const ReadingRules& rules) {
  const std::string inner = NameToReadBy(name, head.packed, rules.converters);
  const Converter* const converter =
      rules.converters.Find(inner, inner == name ? head.packed : head.unpacked);
  std::string reading = FormatName(FormatOf(inner, head.unpacked));
  if (converter != nullptr) {
    reading = "converter";
    for (const std::string& word : converter->command) reading += " " + word;
  }
  if (rules.words.strip_encoded) reading += "\nstrip encoded";
  return reading + "\n" + rules.words.stop_words;
}

ReadingRules RulesByName() { return {Converters::BuiltIn(), {}, 0, {}}; }

}  // namespace

Format FormatOf(const std::string& name, std::string_view head) {
  const std::string extension = ExtensionOf(name);
  if (extension == "html" || extension == "htm" || extension == "xhtml") return Format::kHtml;
  if (extension == "md" || extension == "markdown") return Format::kMarkdown;
  if (IsRoff(name, head)) return Format::kRoff;
  if (IsMail(name, head)) return Format::kMail;
  if (IsOffice(name, head)) return Format::kOffice;
  return Format::kText;
}

std::string ReadingDigits(const std::string& name, const FileHead& head,
                          const ReadingRules& rules) {
  constexpr std::size_t kDigits = 16;
  ContentHash hash;
  hash.Add(Description(name, head, rules));
  return hash.Digits().substr(0, kDigits);
}

std::string ReadingDigitsByName(const std::string& name, const FileHead& head) {
  return ReadingDigits(name, head, RulesByName());
}

bool IsReadByName(const std::string& name, const FileHead& head, const ReadingRules& rules) {
  return Description(name, head, rules) == Description(name, head, RulesByName());
}

bool IsReadAsArchive(const std::string& name, std::string_view head, const Converters& converters) {
  return IsArchive(name, head) && !converters.MayConvert(name) &&
         !converters.MayConvert(UnpackedName(name));
}

std::string NameToReadBy(const std::string& name, std::string_view packed_head,
                         const Converters& converters) {
  const bool is_packed =
      IsCompressed(name, packed_head) && converters.Find(name, packed_head) == nullptr;
  return is_packed ? UnpackedName(name) : name;
}

}  // namespace kestan_cli
