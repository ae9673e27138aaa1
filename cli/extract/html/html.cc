#include "cli/extract/html/html.h"

#include <kestan/kestan.h>
#include <kestan/search.h>
#include <libxml/HTMLparser.h>
#include <libxml/parser.h>
#include <libxml/xmlerror.h>
#include <libxml/xmlmemory.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "cli/extract/charset/charset.h"
#include "cli/extract/charset/declared_charset.h"
#include "cli/extract/charset/latin1.h"
#include "cli/extract/document/document.h"
#include "cli/extract/html/html_repair.h"
#include "cli/files/skip.h"

namespace kestan_cli {
namespace {

using kestan::search::IsUtf8;

// Elements inside a line: a word may continue across them. Sorted.
constexpr std::array<std::string_view, 32> kInline{
    "a",    "abbr",   "acronym", "b",   "bdi", "bdo",  "big",  "cite", "code", "del",  "dfn",
    "em",   "font",   "i",       "ins", "kbd", "mark", "nobr", "q",    "s",    "samp", "small",
    "span", "strike", "strong",  "sub", "sup", "time", "tt",   "u",    "var",  "wbr"};

// Elements whose text no reader sees.
constexpr std::array<std::string_view, 3> kHidden{"script", "style", "template"};

template <std::size_t kCount>
bool IsAmong(const std::array<std::string_view, kCount>& names, std::string_view name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

const char* Chars(const xmlChar* text) { return reinterpret_cast<const char*>(text); }

// Builds a page from the events of the parser.
class PageBuilder {
 public:
  void Start(std::string_view name) {
    if (IsAmong(kHidden, name)) ++hidden_depth_;
    if (name == "title" && !has_title_) in_title_ = true;
    BreakLine(name);
  }

  void End(std::string_view name) {
    if (IsAmong(kHidden, name) && hidden_depth_ > 0) --hidden_depth_;
    if (name == "title" && in_title_) {
      in_title_ = false;
      has_title_ = true;
    }
    BreakLine(name);
  }

  void Text(std::string_view text) {
    if (hidden_depth_ > 0) return;
    (in_title_ ? page_.title : page_.text) += text;
  }

  void EndPage() { is_whole_ = true; }

  // Returns whether the parser has reached the end of the page.
  bool is_whole() const { return is_whole_; }

  HtmlPage Finish() {
    page_.title = Excerpt(page_.title, page_.title.size());
    return std::move(page_);
  }

 private:
  void BreakLine(std::string_view name) {
    std::string& text = in_title_ ? page_.title : page_.text;
    if (!text.empty() && text.back() != '\n' && !IsAmong(kInline, name)) text += '\n';
  }

  HtmlPage page_;
  unsigned hidden_depth_ = 0;
  bool in_title_ = false;
  bool has_title_ = false;
  bool is_whole_ = false;
};

PageBuilder& BuilderOf(void* context) { return *static_cast<PageBuilder*>(context); }

// Events instead of a tree: memory stays the size of the text, and no depth of nesting matters.
htmlSAXHandler Handler() {
  htmlSAXHandler handler{};
  handler.startElement = [](void* context, const xmlChar* name, const xmlChar**) {
    BuilderOf(context).Start(Chars(name));
  };
  handler.endElement = [](void* context, const xmlChar* name) {
    BuilderOf(context).End(Chars(name));
  };
  handler.characters = [](void* context, const xmlChar* text, int bytes) {
    BuilderOf(context).Text({Chars(text), static_cast<std::size_t>(bytes)});
  };
  handler.endDocument = [](void* context) { BuilderOf(context).EndPage(); };
  handler.ignorableWhitespace = handler.characters;
  handler.cdataBlock = handler.characters;
  return handler;
}

// Memory for libxml2, which loses text or crashes without it: the process ends first.
struct ParserMemory {
  static void* Allocate(std::size_t bytes) { return Reallocate(nullptr, bytes); }

  static void* Reallocate(void* block, std::size_t bytes) {
    if (bytes > std::numeric_limits<unsigned>::max()) return nullptr;  // no page needs so much
    return Kestan::SafeRealloc(block, static_cast<unsigned>(bytes));
  }

  static char* Duplicate(const char* text) {
    const std::size_t bytes = std::strlen(text) + 1;
    return static_cast<char*>(std::memcpy(Allocate(bytes), text, bytes));
  }

  // Installs the functions once, before libxml2 does anything else.
  static bool IsReady() {
    static const bool ready = xmlMemSetup(std::free, Allocate, Reallocate, Duplicate) == 0;
    return ready;
  }
};

struct FreeParser {
  void operator()(htmlParserCtxt* parser) const { htmlFreeParserCtxt(parser); }
};

void SayNothing(void* /*context*/, const char* /*format*/, ...) {}  // NOLINT(cert-dcl50-cpp)

// Catches the errors of libxml2, which would go to the standard error stream. Broken markup is not
// one.
class ParserErrors {
 public:
  ParserErrors() {
    xmlSetGenericErrorFunc(nullptr, SayNothing);
    // The error is constant in some versions of libxml2.
    xmlSetStructuredErrorFunc(this, [](void* errors, auto* error) {
      const bool is_markup = error->domain == XML_FROM_HTML || error->domain == XML_FROM_PARSER;
      auto* const heard = static_cast<ParserErrors*>(errors);
      if (!is_markup || error->level == XML_ERR_FATAL) heard->is_broken_ = true;
    });
  }
  ~ParserErrors() { xmlSetStructuredErrorFunc(nullptr, nullptr); }
  ParserErrors(const ParserErrors&) = delete;
  ParserErrors& operator=(const ParserErrors&) = delete;

  // Returns whether text may be missing.
  bool is_broken() const { return is_broken_; }

 private:
  bool is_broken_ = false;
};

// Pages in UTF-8 that declare Latin-1 are more frequent than pages in Latin-1 that are valid UTF-8.
bool IsUtf8AllTheSame(std::string_view charset, std::string_view bytes) {
  return IsLatin1Label(charset) && IsUtf8(bytes);
}

std::string Decoded(std::string_view bytes) {
  constexpr std::string_view kUtf8Mark = "\xef\xbb\xbf";
  if (bytes.substr(0, kUtf8Mark.size()) == kUtf8Mark) {
    return Utf8OrLatin1(std::string(bytes.substr(kUtf8Mark.size())));
  }
  for (const std::string& charset : DeclaredCharsets(bytes)) {
    if (IsUtf8AllTheSame(charset, bytes)) break;
    std::optional<std::string> text = FromCharset(charset, bytes);
    if (text.has_value()) return std::move(*text);
  }
  return Utf8OrLatin1(std::string(bytes));
}

auto NotWhole() { return SkipFile(SkipKind::kUnreadable, "the page could not be read whole"); }

// Parses `html`, which is UTF-8 whatever it declares.
HtmlPage Parsed(const std::string& html) {
  PageBuilder builder;
  const ParserErrors errors;
  const std::unique_ptr<htmlParserCtxt, FreeParser> parser(
      ParserMemory::IsReady() ? htmlNewParserCtxt() : nullptr);
  if (parser == nullptr) throw NotWhole();
  *parser->sax = Handler();
  parser->userData = &builder;
  const int options = HTML_PARSE_RECOVER | HTML_PARSE_NOERROR | HTML_PARSE_NOWARNING |
                      HTML_PARSE_NONET | HTML_PARSE_IGNORE_ENC;
  htmlDocPtr tree = htmlCtxtReadMemory(parser.get(), html.data(), static_cast<int>(html.size()),
                                       nullptr, "UTF-8", options);
  xmlFreeDoc(tree);  // null: the handler builds none
  if (errors.is_broken() || !builder.is_whole()) throw NotWhole();
  return builder.Finish();
}

}  // namespace

HtmlPage ReadHtml(std::string_view bytes) { return ReadUtf8Html(Decoded(bytes)); }

HtmlPage ReadUtf8Html(std::string_view text) {
  const std::string html = RepairedHtml(text);
  if (html.size() > kMaxTextBytes) throw SkipFile(SkipKind::kTooLarge, "too much text");
  return html.empty() ? HtmlPage() : Parsed(html);
}

}  // namespace kestan_cli
