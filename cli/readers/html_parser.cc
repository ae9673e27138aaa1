// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/readers/html_parser.h"

#include <libxml/HTMLparser.h>
#include <libxml/parser.h>
#include <libxml/xmlerror.h>
#include <libxml/xmlmemory.h>

#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>

namespace kestan_cli {
namespace {

// Memory for libxml2, which loses text or crashes without it: the command's ends the process first.
struct ParserMemory {
  static void* Allocate(std::size_t bytes) { return reallocate(nullptr, bytes); }

  static void* Resize(void* block, std::size_t bytes) { return reallocate(block, bytes); }

  static char* Duplicate(const char* text) {
    const std::size_t bytes = std::strlen(text) + 1;
    return static_cast<char*>(std::memcpy(Allocate(bytes), text, bytes));
  }

  // Installs the functions once, before libxml2 does anything else.
  static bool IsReady() {
    if (reallocate == nullptr) return false;
    static const bool ready = xmlMemSetup(std::free, Allocate, Resize, Duplicate) == 0;
    return ready;
  }

  inline static Reallocate reallocate = nullptr;
};

// What the parser's functions know of the page that they are called for.
struct Page {
  const HtmlEvents& events;
  bool is_whole = false;  // the parser has reached the end
};

Page& PageOf(void* context) { return *static_cast<Page*>(context); }

const char* Chars(const xmlChar* text) { return reinterpret_cast<const char*>(text); }

// Events instead of a tree: memory stays the size of the text, and no depth of nesting matters.
htmlSAXHandler Handler() {
  htmlSAXHandler handler{};
  handler.startElement = [](void* context, const xmlChar* name, const xmlChar**) {
    const HtmlEvents& events = PageOf(context).events;
    events.start(events.context, Chars(name));
  };
  handler.endElement = [](void* context, const xmlChar* name) {
    const HtmlEvents& events = PageOf(context).events;
    events.end(events.context, Chars(name));
  };
  handler.characters = [](void* context, const xmlChar* text, int bytes) {
    const HtmlEvents& events = PageOf(context).events;
    events.text(events.context, Chars(text), static_cast<std::size_t>(bytes));
  };
  handler.endDocument = [](void* context) { PageOf(context).is_whole = true; };
  handler.ignorableWhitespace = handler.characters;
  handler.cdataBlock = handler.characters;
  return handler;
}

struct FreeParser {
  void operator()(htmlParserCtxt* parser) const { htmlFreeParserCtxt(parser); }
};

struct FreeXmlParser {
  void operator()(xmlParserCtxt* parser) const { xmlFreeParserCtxt(parser); }
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

}  // namespace

void UseParserMemory(Reallocate reallocate) noexcept { ParserMemory::reallocate = reallocate; }

ReadStatus ParseHtml(const char* bytes, std::size_t size, const HtmlEvents& events) noexcept {
  if (size > std::numeric_limits<int>::max()) return ReadStatus::kUnread;
  Page page{events};
  const ParserErrors errors;
  const std::unique_ptr<htmlParserCtxt, FreeParser> parser(
      ParserMemory::IsReady() ? htmlNewParserCtxt() : nullptr);
  if (parser == nullptr) return ReadStatus::kUnread;
  *parser->sax = Handler();
  parser->userData = &page;
  const int options = HTML_PARSE_RECOVER | HTML_PARSE_NOERROR | HTML_PARSE_NOWARNING |
                      HTML_PARSE_NONET | HTML_PARSE_IGNORE_ENC;
  htmlDocPtr tree =
      htmlCtxtReadMemory(parser.get(), bytes, static_cast<int>(size), nullptr, "UTF-8", options);
  xmlFreeDoc(tree);  // null: the handler builds none
  return errors.is_broken() || !page.is_whole ? ReadStatus::kUnread : ReadStatus::kRead;
}

ReadStatus ParseXml(const char* bytes, std::size_t size, const HtmlEvents& events) noexcept {
  if (size > std::numeric_limits<int>::max()) return ReadStatus::kUnread;
  Page page{events};
  const ParserErrors errors;
  const std::unique_ptr<xmlParserCtxt, FreeXmlParser> parser(
      ParserMemory::IsReady() ? xmlNewParserCtxt() : nullptr);
  if (parser == nullptr) return ReadStatus::kUnread;
  *parser->sax = Handler();
  parser->userData = &page;
  xmlDocPtr tree = xmlCtxtReadMemory(parser.get(), bytes, static_cast<int>(size), nullptr, nullptr,
                                     XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING);
  xmlFreeDoc(tree);  // null: the handler builds none
  return errors.is_broken() || !page.is_whole || parser->wellFormed == 0 ? ReadStatus::kUnread
                                                                         : ReadStatus::kRead;
}

}  // namespace kestan_cli
