// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/office/office.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <exception>
#include <map>
#include <new>
#include <utility>

#include "cli/extract/charset/ascii.h"
#include "cli/extract/converter/converter.h"
#include "cli/extract/document/document.h"
#include "cli/extract/html/html.h"
#include "cli/extract/module/loaded_readers.h"
#include "cli/extract/packed/unpack.h"
#include "cli/files/skip.h"

namespace kestan_cli {
namespace {

// Which members of a format hold text. A `*` at the end stands for anything that ends in .xml.
struct OfficeFormat {
  std::string_view extensions;  // between blanks
  std::string_view members;     // between blanks; empty: all pages
  std::string_view text;        // the elements that hold text, between blanks; empty: all
};

constexpr std::array kFormats{
    OfficeFormat{" docx ",
                 "word/document.xml word/footnotes.xml word/endnotes.xml word/comments.xml "
                 "word/header* word/footer*",
                 " w:t "},
    OfficeFormat{" pptx ", "ppt/slides/slide* ppt/notesSlides/notesSlide*", " a:t "},
    OfficeFormat{" xlsx ", "xl/sharedStrings.xml xl/worksheets/sheet* xl/comments*", " t "},
    OfficeFormat{" odt ods odp ", "content.xml", ""},
    OfficeFormat{" epub ", "", ""},
};

// Elements after which a new line begins, and those that stand for a blank.
constexpr std::string_view kBlocks =
    " w:p w:tr a:p si is row c text:p text:h table:table-row text:list-item dc:title ";
constexpr std::string_view kBlanks = " w:tab w:br w:cr a:br text:tab text:s text:line-break ";

bool IsAmong(std::string_view names, std::string_view name) {
  return names.find(" " + std::string(name) + " ") != std::string_view::npos;
}

const OfficeFormat* FormatOfOffice(std::string_view name) {
  const std::string extension = ExtensionOf(name);
  const auto* const found = std::find_if(
      kFormats.begin(), kFormats.end(),
      [&](const OfficeFormat& format) { return IsAmong(format.extensions, extension); });
  return found != kFormats.end() ? found : nullptr;
}

bool EndsWith(std::string_view text, std::string_view end) {
  return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

bool IsDescription(std::string_view member) {
  return member == "docProps/core.xml" || member == "meta.xml" || EndsWith(member, ".opf");
}

bool IsPage(std::string_view member) {
  const std::string extension = ExtensionOf(member);
  return extension == "html" || extension == "xhtml" || extension == "htm";
}

bool HoldsText(const OfficeFormat& format, std::string_view member) {
  if (format.members.empty()) return IsPage(member);
  std::string_view rest = format.members;
  while (!rest.empty()) {
    std::string_view pattern = rest.substr(0, rest.find(' '));
    rest.remove_prefix(std::min(pattern.size() + 1, rest.size()));
    if (pattern == member) return true;
    if (pattern.back() != '*') continue;
    pattern.remove_suffix(1);
    if (member.substr(0, pattern.size()) == pattern && EndsWith(member, ".xml")) return true;
  }
  return false;
}

// Collects the text of an XML document. No exception may pass through the parser.
class XmlText {
 public:
  // Takes text within the elements `names` only; within all if there are none.
  explicit XmlText(std::string_view names) : names_(names), depth_(names.empty() ? 1 : 0) {}

  HtmlEvents Events() {
    return {this,
            [](void* context, const char* element) noexcept {
              static_cast<XmlText*>(context)->Start(element);
            },
            [](void* context, const char* element) noexcept {
              static_cast<XmlText*>(context)->End(element);
            },
            [](void* context, const char* bytes, std::size_t size) noexcept {
              static_cast<XmlText*>(context)->Add({bytes, size});
            }};
  }

  std::string Finish() {
    if (lacks_memory_) throw std::bad_alloc();
    return std::move(text_);
  }

 private:
  void Start(std::string_view element) noexcept {
    if (IsAmong(names_, element)) ++depth_;
    if (IsAmong(kBlanks, element)) Append(" ");
  }

  void End(std::string_view element) noexcept {
    if (IsAmong(names_, element) && depth_ > 0) --depth_;
    if (IsAmong(kBlocks, element)) Append("\n");
  }

  void Add(std::string_view text) noexcept {
    if (depth_ > 0) Append(text);
  }

  void Append(std::string_view text) noexcept {
    try {
      text_ += text;
    } catch (const std::exception&) {
      lacks_memory_ = true;
    }
  }

  const std::string_view names_;
  std::string text_;
  unsigned depth_;
  bool lacks_memory_ = false;
};

std::string TextOfXml(std::string_view bytes, std::string_view names) {
  XmlText text(names);
  const ReadStatus status = LoadedReaders().parse_xml(bytes.data(), bytes.size(), text.Events());
  if (status == ReadStatus::kNoMemory) throw std::bad_alloc();
  if (status == ReadStatus::kRead) return text.Finish();
  throw SkipFile(SkipKind::kUnreadable, "its XML is broken");
}

// The wanted members of an archive, in memory.
class Members {
 public:
  Members(const OfficeFormat& format, std::uint64_t packed_bytes, std::uint64_t max_bytes)
      : format_(format),
        max_bytes_(std::min(max_bytes, std::max(kRatioFrom, packed_bytes * kMaxRatio))) {}

  MemberEvents Events() {
    return {this,
            [](void* context, const char* name) noexcept {
              return static_cast<Members*>(context)->Begin(name);
            },
            [](void* context, const char* bytes, std::size_t size) noexcept {
              return static_cast<Members*>(context)->Add({bytes, size});
            }};
  }

  // Returns the members by their names: slide2 comes before slide10.
  //   Throws   what could not pass through the reader.
  std::map<std::pair<std::size_t, std::string>, std::string> Finish() {
    if (thrown_ != nullptr) std::rethrow_exception(thrown_);
    return std::move(members_);
  }

 private:
  bool Begin(std::string_view name) noexcept {
    try {
      if (!IsDescription(name) && !HoldsText(format_, name)) return false;
      const std::size_t rank = format_.members.empty() ? 0 : name.size();
      current_ = &members_[{rank, std::string(name)}];
      current_->clear();
      return true;
    } catch (...) {
      thrown_ = std::current_exception();
      return false;
    }
  }

  bool Add(std::string_view bytes) noexcept {
    try {
      bytes_ += bytes.size();
      if (bytes_ > max_bytes_) {
        throw SkipFile(SkipKind::kTooLarge,
                       "unpacks to more than " + std::to_string(max_bytes_) + " bytes");
      }
      *current_ += bytes;
    } catch (...) {
      thrown_ = std::current_exception();
    }
    return thrown_ == nullptr;
  }

  const OfficeFormat& format_;
  const std::uint64_t max_bytes_;
  std::uint64_t bytes_ = 0;
  std::map<std::pair<std::size_t, std::string>, std::string> members_;
  std::string* current_ = nullptr;
  std::exception_ptr thrown_;
};

std::string WithoutNul(std::string text) {
  std::replace(text.begin(), text.end(), '\0', ' ');
  return text;
}

}  // namespace

bool IsOffice(std::string_view name, std::string_view head) {
  return head.substr(0, 4) == "PK\x03\x04" && FormatOfOffice(name) != nullptr;
}

std::string TextOfOffice(std::string_view name, std::string_view bytes, std::uint64_t max_bytes) {
  const OfficeFormat& format = *FormatOfOffice(name);
  Members members(format, bytes.size(), max_bytes);
  ReadProblem problem{};
  const ReadStatus status =
      LoadedReaders().read_zip(bytes.data(), bytes.size(), members.Events(), &problem);
  const auto read = members.Finish();
  if (status == ReadStatus::kNoMemory) throw std::bad_alloc();
  if (status != ReadStatus::kRead) {
    throw SkipFile(SkipKind::kUnreadable, std::string("cannot be unpacked: ") + &problem.text[0]);
  }
  std::string title;
  std::string text;
  for (const auto& [key, member] : read) {
    if (IsDescription(key.second)) {
      if (title.empty()) title = Excerpt(TextOfXml(member, " dc:title "), kMaxTitleBytes);
    } else {
      text += format.members.empty() ? ReadHtml(member).text : TextOfXml(member, format.text);
      text += '\n';
    }
  }
  return WithoutNul(title.empty() ? std::move(text) : title + "\n" + text);
}

}  // namespace kestan_cli
