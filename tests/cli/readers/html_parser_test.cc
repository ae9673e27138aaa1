// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/readers/html_parser.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace kestan_cli {
namespace {

struct Heard {
  std::string events;
  ReadStatus status = ReadStatus::kNoMemory;
};

void Add(void* context, const std::string& event) { static_cast<Heard*>(context)->events += event; }

HtmlEvents EventsFor(Heard* heard) {
  return {heard,
          [](void* context, const char* element) noexcept {
            Add(context, "<" + std::string(element) + ">");
          },
          [](void* context, const char* element) noexcept {
            Add(context, "</" + std::string(element) + ">");
          },
          [](void* context, const char* bytes, std::size_t size) noexcept {
            Add(context, std::string(bytes, size));
          }};
}

Heard Parse(const std::string& page) {
  Heard heard;
  heard.status = ParseHtml(page.data(), page.size(), EventsFor(&heard));
  return heard;
}

TEST(HtmlParserTest, MarkupAndTextComeAsEvents) {
  const Heard heard = Parse("<HTML><body><P class=a>one &eacute;<b>two</b></p></body></html>");
  EXPECT_EQ(heard.status, ReadStatus::kRead);
  EXPECT_EQ(heard.events, "<html><body><p>one \u00e9<b>two</b></p></body></html>");
}

TEST(HtmlParserTest, BrokenMarkupIsNoFailure) {
  const Heard heard = Parse("<html><body><p>one<b>two</i><td");
  EXPECT_EQ(heard.status, ReadStatus::kRead);
  EXPECT_NE(heard.events.find("one<b>two"), std::string::npos) << heard.events;
}

TEST(HtmlParserTest, DeclaredEncodingIsIgnored) {
  const Heard heard = Parse("<html><meta charset=koi8-r><body><p>\u00e9</p></body></html>");
  EXPECT_EQ(heard.status, ReadStatus::kRead);
  EXPECT_NE(heard.events.find("\u00e9"), std::string::npos) << heard.events;
}

TEST(HtmlParserTest, PageTooLargeForTheParserIsNotRead) {
  Heard heard;
  const std::size_t size = static_cast<std::size_t>(std::numeric_limits<int>::max()) + 1;
  EXPECT_EQ(ParseHtml("", size, EventsFor(&heard)), ReadStatus::kUnread);
}

}  // namespace
}  // namespace kestan_cli
