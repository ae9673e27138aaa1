// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/mail_reader/message_reader.h"

#include <gmime/gmime.h>

#include <cstdio>
#include <memory>

namespace kestan_cli {
namespace {

struct Unref {
  template <typename Object>
  void operator()(Object* object) const {
    g_object_unref(object);
  }
};
template <typename Object>
using Owned = std::unique_ptr<Object, Unref>;

struct FreeOptions {
  void operator()(GMimeParserOptions* options) const { g_mime_parser_options_free(options); }
};

constexpr int kMaxDepth = 32;  // of parts within parts

void SayNothing(const char* /*domain*/, GLogLevelFlags /*level*/, const char* /*text*/,
                void* /*data*/) {}

// Prepares gmime once. What it has to say about broken mail stays with it.
GMimeParserOptions* Options() {
  static const std::unique_ptr<GMimeParserOptions, FreeOptions> options = [] {
    g_mime_init();
    g_log_set_default_handler(SayNothing, nullptr);
    std::unique_ptr<GMimeParserOptions, FreeOptions> made(g_mime_parser_options_new());
    return made;
  }();
  return options.get();
}

const char* OrNothing(const char* text) { return text != nullptr ? text : ""; }

class MessageWalk {
 public:
  explicit MessageWalk(const MailEvents& events) : events_(events) {}

  bool is_whole() const { return is_whole_; }

  void ReadMessage(GMimeMessage* message, int depth) {
    SendHeader(MailHeader::kSubject, message, "Subject");
    SendHeader(MailHeader::kFrom, message, "From");
    SendHeader(MailHeader::kTo, message, "To");
    SendHeader(MailHeader::kCc, message, "Cc");
    GDateTime* const date = g_mime_message_get_date(message);
    if (date != nullptr) events_.date(events_.context, g_date_time_to_unix(date));
    GMimeObject* const part = g_mime_message_get_mime_part(message);
    if (part != nullptr) ReadObject(part, depth + 1);
  }

 private:
  void SendHeader(MailHeader kind, GMimeMessage* message, const char* name) {
    GMimeHeaderList* const all = g_mime_object_get_header_list(GMIME_OBJECT(message));
    GMimeHeader* const header = all != nullptr ? g_mime_header_list_get_header(all, name) : nullptr;
    const char* const text = header != nullptr ? g_mime_header_get_raw_value(header) : nullptr;
    if (text != nullptr && *text != '\0') events_.header(events_.context, kind, text);
  }

  void ReadObject(GMimeObject* object, int depth) {
    if (depth > kMaxDepth) {
      is_whole_ = false;
    } else if (GMIME_IS_MULTIPART(object)) {
      auto* const parts = GMIME_MULTIPART(object);
      const int count = g_mime_multipart_get_count(parts);
      for (int i = 0; i < count; ++i) ReadObject(g_mime_multipart_get_part(parts, i), depth + 1);
    } else if (GMIME_IS_MESSAGE_PART(object)) {
      GMimeMessage* const inner = g_mime_message_part_get_message(GMIME_MESSAGE_PART(object));
      if (inner != nullptr) ReadMessage(inner, depth + 1);
    } else if (GMIME_IS_PART(object)) {
      ReadPart(GMIME_PART(object));
    }
  }

  void ReadPart(GMimePart* part) {
    auto* const object = GMIME_OBJECT(part);
    GMimeContentType* const type = g_mime_object_get_content_type(object);
    MailPart sent{};
    sent.is_text = type == nullptr || g_mime_content_type_is_type(type, "text", "*") != FALSE;
    sent.is_html = type != nullptr && g_mime_content_type_is_type(type, "text", "html") != FALSE;
    sent.name = OrNothing(g_mime_part_get_filename(part));
    sent.charset = OrNothing(g_mime_object_get_content_type_parameter(object, "charset"));
    sent.bytes = "";
    const Owned<GMimeStream> stream(g_mime_stream_mem_new());
    GMimeDataWrapper* const content = sent.is_text ? g_mime_part_get_content(part) : nullptr;
    if (content != nullptr) {
      g_mime_data_wrapper_write_to_stream(content, stream.get());
      const GByteArray* const bytes =
          g_mime_stream_mem_get_byte_array(GMIME_STREAM_MEM(stream.get()));
      sent.bytes = reinterpret_cast<const char*>(bytes->data);
      sent.size = bytes->len;
    }
    if (sent.size > 0 || *sent.name != '\0') events_.part(events_.context, sent);
  }

  const MailEvents& events_;
  bool is_whole_ = true;
};

ReadStatus Refuse(const char* reason, ReadProblem* problem) {
  std::snprintf(problem->text, sizeof problem->text, "%s", reason);
  return ReadStatus::kUnread;
}

}  // namespace

ReadStatus ReadMessage(const char* bytes, std::size_t size, const MailEvents& events,
                       ReadProblem* problem) noexcept {
  GMimeParserOptions* const options = Options();
  const Owned<GMimeStream> stream(g_mime_stream_mem_new_with_buffer(bytes, size));
  const Owned<GMimeParser> parser(g_mime_parser_new_with_stream(stream.get()));
  const Owned<GMimeMessage> message(g_mime_parser_construct_message(parser.get(), options));
  if (message == nullptr) return Refuse("it is not a message", problem);
  MessageWalk walk(events);
  walk.ReadMessage(message.get(), 0);
  return walk.is_whole() ? ReadStatus::kRead : Refuse("its parts are nested too deeply", problem);
}

}  // namespace kestan_cli
