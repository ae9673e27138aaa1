#include "cli/extract/reading.h"

#include <cstddef>

#include "cli/files/fingerprint.h"

namespace kestan_cli {
namespace {

// Describes the reading in words: what the digits are made of.
std::string Description(const std::string& name, std::string_view head, const ReadingRules& rules) {
  const Format format = FormatOf(name);
  std::string reading = format == Format::kHtml       ? "html"
                        : format == Format::kMarkdown ? "markdown"
                                                      : "text";
  const Converter* const converter = rules.converters.Find(name, head);
  if (converter != nullptr) {
    reading = "converter";
    for (const std::string& word : converter->command) reading += " " + word;
  }
  if (rules.words.strip_encoded) reading += "\nstrip encoded";
  return reading + "\n" + rules.words.stop_words;
}

ReadingRules RulesByName() { return {Converters::BuiltIn(), {}, 0, {}}; }

}  // namespace

Format FormatOf(const std::string& name) {
  const std::string extension = ExtensionOf(name);
  if (extension == "html" || extension == "htm" || extension == "xhtml") return Format::kHtml;
  if (extension == "md" || extension == "markdown") return Format::kMarkdown;
  return Format::kText;
}

std::string ReadingDigits(const std::string& name, std::string_view head,
                          const ReadingRules& rules) {
  constexpr std::size_t kDigits = 16;
  ContentHash hash;
  hash.Add(Description(name, head, rules));
  return hash.Digits().substr(0, kDigits);
}

std::string ReadingDigitsByName(const std::string& name, std::string_view head) {
  return ReadingDigits(name, head, RulesByName());
}

bool IsReadByName(const std::string& name, std::string_view head, const ReadingRules& rules) {
  return Description(name, head, rules) == Description(name, head, RulesByName());
}

}  // namespace kestan_cli
