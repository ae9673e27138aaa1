// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/mail/mail_text.h"

#include <algorithm>
#include <exception>
#include <optional>
#include <utility>

#include "cli/extract/charset/decode.h"
#include "cli/extract/charset/latin1.h"
#include "cli/extract/document/document.h"
#include "cli/extract/html/html.h"
#include "cli/extract/mail/encoded_words.h"
#include "cli/extract/module/loaded_mail_reader.h"
#include "cli/files/skip.h"

namespace kestan_cli {
namespace {

std::string OnOneLine(std::string_view text) { return Excerpt(text, text.size()); }

std::string WithoutNul(std::string text) {
  std::replace(text.begin(), text.end(), '\0', ' ');
  return text;
}

std::string TextOfPart(const MailPart& part) {
  const std::string bytes(part.bytes, part.size);
  const std::string_view charset = part.charset;
  if (!part.is_html) return WithoutNul(FromMailCharset(charset, bytes));
  const HtmlPage page = charset.empty() && !StartsAsUtf16(bytes)
                            ? ReadHtml(bytes)
                            : ReadUtf8Html(WithoutNul(FromMailCharset(charset, bytes)));
  return WithoutNul(page.text);
}

// What the module calls. No exception may pass through it.
class MessageBuilder {
 public:
  MailEvents Events() {
    return {this,
            [](void* context, MailHeader header, const char* text) noexcept {
              Take(context, [&](MessageBuilder& builder) { builder.AddHeader(header, text); });
            },
            [](void* context, long long seconds) noexcept {
              Take(context, [&](MessageBuilder& builder) { builder.AddDate(seconds); });
            },
            [](void* context, const MailPart& part) noexcept {
              Take(context, [&](MessageBuilder& builder) { builder.AddPart(part); });
            }};
  }

  // Throws what a function has thrown.
  MailText Finish() {
    if (thrown_ != nullptr) std::rethrow_exception(thrown_);
    mail_.text = subject_ + "\n" + body_ + addresses_;
    return std::move(mail_);
  }

  void AddNote(const std::string& note) {
    if (mail_.note.empty()) mail_.note = note;
  }

 private:
  template <typename Event>
  static void Take(void* context, const Event& event) noexcept {
    auto* const builder = static_cast<MessageBuilder*>(context);
    if (builder->thrown_ != nullptr) return;
    try {
      event(*builder);
    } catch (...) {
      builder->thrown_ = std::current_exception();
    }
  }

  // The first header of each kind is that of the message; others are of messages in it.
  void AddHeader(MailHeader header, const char* text) {
    const std::string line = OnOneLine(WithoutNul(DecodedHeader(text)));
    if (header == MailHeader::kSubject) {
      (is_started_ ? body_ : subject_) += is_started_ ? line + "\n" : line;
      return;
    }
    const bool is_from = header == MailHeader::kFrom;
    if (!is_started_ && is_from) mail_.facts.from = line;
    if (!is_started_ && header == MailHeader::kTo) mail_.facts.to = line;
    const char* const label = is_from ? "From: " : header == MailHeader::kTo ? "To: " : "Cc: ";
    addresses_.append(label).append(line).append("\n");
  }

  void AddDate(long long seconds) {
    if (!mail_.facts.date.has_value()) mail_.facts.date = seconds;
    is_started_ = true;
  }

  void AddPart(const MailPart& part) {
    is_started_ = true;
    const std::string name = Utf8OrLatin1(OnOneLine(part.name));
    if (!name.empty()) body_ += name + "\n";
    if (!part.is_text) return;
    try {
      body_ += TextOfPart(part);
    } catch (const SkipFile& skip) {
      AddNote(std::string("a part is missing: ") + skip.what());
    }
    if (!body_.empty() && body_.back() != '\n') body_ += '\n';
  }

  MailText mail_;
  std::string subject_;
  std::string body_;
  std::string addresses_;
  bool is_started_ = false;  // the headers of the message itself are over
  std::exception_ptr thrown_;
};

}  // namespace

MailText ReadMail(std::string_view bytes) {
  if (bytes.substr(0, 3) == "\xef\xbb\xbf") bytes.remove_prefix(3);
  if (bytes.substr(0, 5) == "From ") {
    bytes.remove_prefix(std::min(bytes.find('\n') + 1, bytes.size()));
  }
  MessageBuilder builder;
  ReadProblem problem{};
  const ReadStatus status =
      LoadedMailReader().read(bytes.data(), bytes.size(), builder.Events(), &problem);
  if (status == ReadStatus::kUnread) builder.AddNote(&problem.text[0]);
  MailText mail = builder.Finish();
  if (mail.text == "\n" && status == ReadStatus::kUnread) {
    throw SkipFile(SkipKind::kUnreadable, "cannot be read as mail: " + mail.note);
  }
  return mail;
}

}  // namespace kestan_cli
