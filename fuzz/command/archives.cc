// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as an archive, a compressed file or an office document: the first byte says as which.
// What comes out keeps the limits, and its text is UTF-8.
#include <kestan/search/text.h>

#include <array>
#include <string>
#include <string_view>
#include <utility>

#include "cli/extract/file_text.h"
#include "cli/extract/packed/archive.h"
#include "cli/files/skip.h"
#include "fuzz/support/reporting.h"

namespace {

using kestan_cli::ArchiveLimits;
using kestan_cli::Converters;
using kestan_cli::ReadingRules;
using kestan_cli::SkipFile;
using kestan_cli::SkipKind;
using kestan_fuzz::Require;

constexpr std::uint64_t kMaxBytes = std::uint64_t{1} << 16;
constexpr std::uint64_t kMaxAllBytes = std::uint64_t{1} << 18;
constexpr std::uint64_t kMaxMembers = 200;

constexpr std::array kNames{"a.zip",     "a.tar",     "a.tar.gz", "a.txt.gz", "a.txt.bz2",
                            "a.html.xz", "a.txt.zst", "a.docx",   "a.odt",    "a.epub"};
constexpr std::size_t kArchives = 3;  // the first ones

const ReadingRules& Rules() {
  static const Converters none({});
  static const ReadingRules rules{none, {}, kMaxBytes, {}, true};
  return rules;
}

void ReadFile(const std::string& name, std::string bytes) {
  try {
    kestan_cli::LoadedFile file = kestan_cli::MemberOf("x#" + name, "x", std::move(bytes), Rules());
    if (file.converter != nullptr) return;  // no program is started here
    const kestan_cli::FileText text = kestan_cli::TextOf(std::move(file));
    Require(kestan::search::IsUtf8(text.text), "text that is not UTF-8");
    Require(text.text.find('\0') == std::string::npos, "a NUL");
  } catch (const SkipFile& skip) {
    Require(*skip.what() != '\0', "no reason");
  }
}

class Members : public kestan_cli::MemberVisitor {
 public:
  bool Wants(const std::string& name) override {
    Require(!name.empty(), "a member without a name");
    Require(++members_ <= kMaxMembers, "too many members");
    return name.find("unwanted") == std::string::npos;
  }
  std::string ReasonToSkip(const std::string& name, const std::string& before,
                           std::string_view piece) override {
    return kestan_cli::IsBinaryMember("x#" + name, before, piece, Rules().converters) ? "binary"
                                                                                      : "";
  }
  bool Take(const std::string& name, std::string bytes, std::int64_t /*seconds*/) override {
    Require(bytes.size() <= kMaxBytes, "a member that is too large");
    bytes_ += bytes.size();
    Require(bytes_ <= kMaxAllBytes, "members that are too large together");
    ReadFile(name, std::move(bytes));
    return true;
  }
  void Skip(const std::string& /*name*/, SkipKind /*kind*/, const std::string& reason) override {
    Require(!reason.empty(), "no reason");
  }

 private:
  std::uint64_t members_ = 0;
  std::uint64_t bytes_ = 0;
};

void ReadArchive(std::string_view bytes) {
  ArchiveLimits limits;
  limits.max_member_bytes = kMaxBytes;
  limits.max_bytes = kMaxAllBytes;
  limits.max_members = kMaxMembers;
  limits.is_archive = [](const std::string& name, std::string_view head) {
    return kestan_cli::IsReadAsArchive(name, head, Rules().converters);
  };
  Members members;
  try {
    kestan_cli::ReadMembers(kestan_cli::ArchiveBytesOf(bytes), limits, members);
  } catch (const SkipFile& skip) {
    Require(*skip.what() != '\0', "no reason");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  if (size == 0) return 0;
  const std::size_t kind = data[0] % kNames.size();
  const std::string_view bytes(reinterpret_cast<const char*>(data + 1), size - 1);
  if (kind < kArchives) {
    ReadArchive(bytes);
  } else {
    ReadFile(kNames.at(kind), std::string(bytes));
  }
  return 0;
}
