// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/export/json_writer.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "tests/cli/export/held_document.h"

namespace kestan_cli {
namespace {

using kestan_tests::HeldDocument;
using Json = nlohmann::json;

// What a writer makes of documents, and what it says of them.
class JsonWriterTest : public testing::Test {
 protected:
  // Returns the two lines of a document.
  std::vector<Json> Add(const ExportedDocument& document) {
    testing::internal::CaptureStderr();
    std::istringstream lines(writer_.Add(document, &notes_));
    said_ = testing::internal::GetCapturedStderr();
    std::vector<Json> parsed;
    for (std::string line; std::getline(lines, line);) parsed.push_back(Json::parse(line));
    return parsed;
  }

  // Lends `name` to the document.
  static HeldDocument Named(std::string_view name) {
    HeldDocument document;
    document.info.name = name;
    return document;
  }

  JsonWriter writer_{"texts"};
  ExportNotes notes_;
  std::string said_;
};

TEST_F(JsonWriterTest, BeginsAndEndsWithNothing) {
  EXPECT_EQ(writer_.Begin(), "");
  EXPECT_EQ(writer_.End(), "");
}

TEST_F(JsonWriterTest, DocumentFollowsWhatToDoWithIt) {
  const std::vector<kestan::search::PlacedWord> words = {{"Cat", 1}, {"dog", 2}};
  HeldDocument document = Named("a");
  document.info.added = 86400;
  document.info.title = "Title";
  document.info.host_data = "mine";
  document.words = words;
  const std::vector<Json> lines = Add(document);
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_EQ(lines[0], Json::parse(R"({"index": {"_index": "texts", "_id": "a"}})"));
  EXPECT_EQ(lines[1], Json::parse(R"({"name": "a", "title": "Title", "user": "mine",
      "time": "1970-01-02T00:00:00Z", "text": "Cat dog", "in_order": true})"));
  EXPECT_EQ(said_, "");
}

TEST_F(JsonWriterTest, NameIsAnIdOnceAndIfItIsNeitherEmptyNorLong) {
  EXPECT_EQ(Add(Named("a"))[0]["index"].count("_id"), 1u);
  EXPECT_EQ(Add(Named("a"))[0]["index"].count("_id"), 0u);
  EXPECT_EQ(said_, "kestan: 'a': no _id, for it would be that of an earlier document\n");
  EXPECT_EQ(Add(Named(""))[0]["index"].count("_id"), 0u);
  EXPECT_EQ(said_, "kestan: '': no _id, for it would be empty\n");
  EXPECT_EQ(Add(Named(std::string(512, 'x')))[0]["index"].count("_id"), 1u);
  EXPECT_EQ(Add(Named(std::string(513, 'x')))[0]["index"].count("_id"), 0u);
}

TEST_F(JsonWriterTest, OtherBytesThanUtf8AreLatin1) {
  HeldDocument document = Named("a");
  document.info.title = "caf\xe9";
  EXPECT_EQ(Add(document)[1]["title"], "caf\u00e9");
  EXPECT_TRUE(notes_.document_was_latin1);
}

}  // namespace
}  // namespace kestan_cli
