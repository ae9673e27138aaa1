// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/sync/roots.h"

#include <exception>
#include <stdexcept>
#include <string_view>

#include "cli/console/json.h"
#include "cli/console/message.h"
#include "cli/index/index_errors.h"

namespace kestan_cli {
namespace {

constexpr int kVersion = 1;

// ---- In ----

Json BytesOf(const std::string& text) {
  Json bytes = Json::array();
  for (const char each : text) bytes.push_back(static_cast<unsigned char>(each));
  return bytes;
}

Json Encoded(const std::string& text) {
  Json json = text;
  try {
    static_cast<void>(json.dump());
  } catch (const Json::type_error&) {
    return BytesOf(text);
  }
  return json;
}

void AddTexts(const char* key, const std::vector<std::string>& texts, Json* json) {
  for (const std::string& text : texts) (*json)[key].push_back(Encoded(text));
}

Json Encoded(const std::string& path, const RootOptions& options) {
  Json json{{"path", Encoded(path)}};
  AddTexts("include", options.reading.include, &json);
  AddTexts("exclude", options.reading.exclude, &json);
  AddTexts("converters", options.reading.converters, &json);
  if (!options.given_in.empty()) json["given_in"] = options.given_in;
  if (!options.reading.stop_words.empty()) json["stop_words"] = Encoded(options.reading.stop_words);
  if (options.reading.strip_encoded) json["strip_encoded"] = true;
  if (options.reading.no_ignore) json["no_ignore"] = true;
  if (options.reading.archives) json["archives"] = true;
  if (options.prune) json["prune"] = true;
  return json;
}

// ---- Out ----

// What is not as it is written; the caller says of which index.
auto Wrong(const std::string& what) { return std::runtime_error(what); }

std::string TextOf(const Json& json) {
  std::string text;
  if (json.is_string()) {
    text = json.get<std::string>();
  } else if (json.is_array()) {
    for (const Json& byte : json) {
      if (!byte.is_number_unsigned() || byte > 255) throw Wrong("a byte that is none");
      text += static_cast<char>(byte.get<unsigned>());
    }
  } else {
    throw Wrong("a text is missing");
  }
  if (text.find('\0') != std::string::npos) throw Wrong("a text with a NUL");
  return text;
}

std::string TextAt(const Json& json, const char* key) {
  return json.contains(key) ? TextOf(json[key]) : "";
}

std::vector<std::string> TextsAt(const Json& json, const char* key) {
  std::vector<std::string> texts;
  if (!json.contains(key)) return texts;
  if (!json[key].is_array()) throw Wrong("a list is missing");
  for (const Json& text : json[key]) texts.push_back(TextOf(text));
  return texts;
}

bool IsTrueAt(const Json& json, const char* key) {
  if (!json.contains(key)) return false;
  if (!json[key].is_boolean()) throw Wrong("neither true nor false");
  return json[key].get<bool>();
}

RootOptions OptionsOf(const Json& json) {
  RootOptions options;
  options.reading.include = TextsAt(json, "include");
  options.reading.exclude = TextsAt(json, "exclude");
  options.reading.converters = TextsAt(json, "converters");
  options.reading.stop_words = TextAt(json, "stop_words");
  options.reading.strip_encoded = IsTrueAt(json, "strip_encoded");
  options.reading.no_ignore = IsTrueAt(json, "no_ignore");
  options.reading.archives = IsTrueAt(json, "archives");
  options.prune = IsTrueAt(json, "prune");
  options.given_in = TextAt(json, "given_in");
  return options;
}

Roots Decoded(const std::string& property) {
  const Json json = Json::parse(property);
  if (!json.is_object() || !json.contains("version") || !json.contains("roots")) {
    throw Wrong("not a list of roots");
  }
  if (json["version"] != kVersion) throw Wrong("written by another version of kestan");
  if (!json["roots"].is_array()) throw Wrong("not a list of roots");
  Roots roots;
  for (const Json& each : json["roots"]) {
    if (!each.is_object()) throw Wrong("a root that is none");
    const std::string path = TextAt(each, "path");
    if (path.substr(0, 1) != "/") throw Wrong("a path that does not begin with a slash");
    roots[path] = OptionsOf(each);
  }
  return roots;
}

}  // namespace

bool operator==(const ReadingOptions& left, const ReadingOptions& right) {
  return left.include == right.include && left.exclude == right.exclude &&
         left.converters == right.converters && left.stop_words == right.stop_words &&
         left.strip_encoded == right.strip_encoded && left.no_ignore == right.no_ignore &&
         left.archives == right.archives;
}

std::string EncodeRoots(const Roots& roots) {
  if (roots.empty()) return "";
  Json json{{"version", kVersion}, {"roots", Json::array()}};
  for (const auto& [path, options] : roots) json["roots"].push_back(Encoded(path, options));
  return json.dump();
}

Roots DecodeRoots(const std::string& property, const std::string& index) {
  if (property.empty()) return {};
  std::string reason;
  try {
    return Decoded(property);
  } catch (const Json::exception&) {
    reason = "no JSON";
  } catch (const std::runtime_error& error) {
    reason = error.what();
  }
  throw CommandError("index " + Quoted(index) + ": what it remembers of its roots is damaged (" +
                     reason + "); kestan index --reset with the PATHs replaces it");
}

Roots RememberedRoots(const kestan::search::IndexReader& reader, const std::string& index) {
  return DecodeRoots(ValueOf(reader.Property(kRootsProperty), index), index);
}

}  // namespace kestan_cli
