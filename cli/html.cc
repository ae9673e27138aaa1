#include "html.h"

#include <libxml/HTMLparser.h>
#include <libxml/parser.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <new>

#include "document.h"
#include "utf8.h"

namespace kestan_cli {
namespace {

// Elements inside a line: a word may go on across them. In the order of their bytes.
constexpr std::array<std::string_view, 32> kInline{
    "a",    "abbr",   "acronym", "b",   "bdi", "bdo",  "big",  "cite", "code", "del",  "dfn",
    "em",   "font",   "i",       "ins", "kbd", "mark", "nobr", "q",    "s",    "samp", "small",
    "span", "strike", "strong",  "sub", "sup", "time", "tt",   "u",    "var",  "wbr"};

// Elements whose text nobody reads.
constexpr std::array<std::string_view, 3> kHidden{"script", "style", "template"};

template <std::size_t kCount>
bool IsAmong(const std::array<std::string_view, kCount>& names, std::string_view name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

const char* Chars(const xmlChar* text) { return reinterpret_cast<const char*>(text); }

// Gathers a page from the reader's events.
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

  HtmlPage Finish() {
    page_.title = Excerpt(page_.title, page_.title.size());
    return std::move(page_);
  }

 private:
  void BreakLine(std::string_view name) {
    if (page_.text.empty() || page_.text.back() == '\n' || IsAmong(kInline, name)) return;
    page_.text += '\n';
  }

  HtmlPage page_;
  unsigned hidden_depth_ = 0;
  bool in_title_ = false;
  bool has_title_ = false;
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
  handler.ignorableWhitespace = handler.characters;
  handler.cdataBlock = handler.characters;
  return handler;
}

struct FreeParser {
  void operator()(htmlParserCtxt* parser) const { htmlFreeParserCtxt(parser); }
};

// Text that says nothing of its encoding is Latin-1 to libxml2. What reads as UTF-8 throughout, and
// is not mere ASCII, is UTF-8 whatever it says.
const char* EncodingOf(std::string_view bytes) {
  const bool is_ascii = FindNonAscii(bytes, 0) == bytes.size();
  return !is_ascii && FindNonUtf8(bytes, 0) == bytes.size() ? "UTF-8" : nullptr;
}

}  // namespace

HtmlPage ReadHtml(std::string_view bytes) {
  PageBuilder builder;
  const std::unique_ptr<htmlParserCtxt, FreeParser> parser(htmlNewParserCtxt());
  if (parser == nullptr) throw std::bad_alloc();
  *parser->sax = Handler();
  parser->userData = &builder;
  const int options =
      HTML_PARSE_RECOVER | HTML_PARSE_NOERROR | HTML_PARSE_NOWARNING | HTML_PARSE_NONET;
  htmlDocPtr tree = htmlCtxtReadMemory(parser.get(), bytes.data(), static_cast<int>(bytes.size()),
                                       nullptr, EncodingOf(bytes), options);
  xmlFreeDoc(tree);  // there is none, as nothing builds it
  return builder.Finish();
}

}  // namespace kestan_cli
