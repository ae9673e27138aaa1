#include "cli/readers/archive_reader.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/packed.h"

namespace kestan_cli {
namespace {

struct Trial {
  std::string wanted;  // the start of the names of wanted members
  std::size_t max_bytes = 1000;
  std::string read{};  // names and bytes
  ReadProblem problem{};

  ReadStatus Read(const std::string& zip) {
    const MemberEvents events{this,
                              [](void* context, const char* name) noexcept {
                                auto* const trial = static_cast<Trial*>(context);
                                const bool is_wanted =
                                    std::string(name).rfind(trial->wanted, 0) == 0;
                                if (is_wanted) trial->read += std::string(name) + ":";
                                return is_wanted;
                              },
                              [](void* context, const char* bytes, std::size_t size) noexcept {
                                auto* const trial = static_cast<Trial*>(context);
                                trial->read.append(bytes, size);
                                return trial->read.size() < trial->max_bytes;
                              }};
    return ReadZip(zip.data(), zip.size(), events, &problem);
  }
};

const std::string& Zip() {
  static const std::string zip =
      kestan_tests::Archive("zip", "none", {{"a/1", "one "}, {"b", "two "}, {"a/2", "three "}});
  return zip;
}

TEST(ArchiveReaderTest, WantedMembersAreRead) {
  Trial trial{"a/"};
  EXPECT_EQ(trial.Read(Zip()), ReadStatus::kRead);
  EXPECT_EQ(trial.read, "a/1:one a/2:three ");
}

TEST(ArchiveReaderTest, ReadingMayStop) {
  Trial trial{"", 5};
  EXPECT_EQ(trial.Read(Zip()), ReadStatus::kRead);
  EXPECT_EQ(trial.read, "a/1:one ");
}

TEST(ArchiveReaderTest, OtherBytesAreNoArchive) {
  for (const std::string& bytes : {std::string("text"), std::string(1000, '\0')}) {
    Trial trial{""};
    EXPECT_EQ(trial.Read(bytes), ReadStatus::kUnread);
    EXPECT_STRNE(trial.problem.text, "");
  }
}

}  // namespace
}  // namespace kestan_cli
