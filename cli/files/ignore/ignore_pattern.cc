// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/files/ignore/ignore_pattern.h"

#include <algorithm>
#include <utility>

namespace kestan_cli {
namespace {

// A path has no more bytes.
constexpr std::size_t kMaxPatternBytes = 4096;

// A blank after a backslash stays; the backslash may itself stand after one.
std::string_view WithoutBlanksAtEnd(std::string_view line) {
  std::size_t end = 0;
  for (std::size_t i = 0; i < line.size(); ++i) {
    if (line[i] == '\\' && i + 1 < line.size()) {
      end = ++i + 1;
    } else if (line[i] != ' ') {
      end = i + 1;
    }
  }
  return line.substr(0, end);
}

// Takes the slash that `rest` begins with, which may stand after a backslash.
bool TakeSlash(std::string_view* rest) {
  const bool is_escaped = rest->substr(0, 2) == "\\/";
  if (!is_escaped && (rest->empty() || rest->front() != '/')) return false;
  rest->remove_prefix(is_escaped ? 2 : 1);
  return true;
}

std::string_view TakeName(std::string_view* path) {
  const std::size_t end = std::min(path->find('/'), path->size());
  const std::string_view name = path->substr(0, end);
  path->remove_prefix(std::min(end + 1, path->size()));
  return name;
}

}  // namespace

std::optional<IgnorePattern> IgnorePattern::Parse(std::string_view line) {
  line = WithoutBlanksAtEnd(line);
  if (line.empty() || line.front() == '#' || line.size() > kMaxPatternBytes) return std::nullopt;
  IgnorePattern pattern;
  pattern.text_ = line;
  pattern.is_negated_ = line.front() == '!';
  if (pattern.is_negated_) line.remove_prefix(1);
  pattern.is_for_folders_only_ = !line.empty() && line.back() == '/';
  if (pattern.is_for_folders_only_) line.remove_suffix(1);
  pattern.is_path_ = line.find('/') != std::string_view::npos;
  if (pattern.is_path_ && line.front() == '/') line.remove_prefix(1);
  if (line.empty() || !pattern.ParseParts(line)) return std::nullopt;
  return pattern;
}

bool IgnorePattern::ParseParts(std::string_view pattern) {
  while (true) {
    const std::size_t stars = std::min(pattern.find_first_not_of('*'), pattern.size());
    const bool is_last = stars == pattern.size();
    if (stars > 1 && is_path_ && (is_last || pattern[stars] == '/')) {
      parts_.push_back({true, false, ""});
      // Of all that is below, there must be something.
      pattern.remove_prefix(is_last ? stars - 1 : stars + 1);
      if (!is_last) continue;
    }
    if (!ParsePart(&pattern)) return false;
    if (!TakeSlash(&pattern)) return true;
  }
}

// Reads up to the next slash or the end.
bool IgnorePattern::ParsePart(std::string_view* rest) {
  Part part;
  while (!rest->empty() && rest->front() != '/' && rest->substr(0, 2) != "\\/") {
    if (!AddToken(rest, &part)) return false;
  }
  if (part.tokens.empty()) return false;  // no name is empty
  parts_.push_back(std::move(part));
  return true;
}

bool IgnorePattern::AddToken(std::string_view* rest, Part* part) {
  using Kind = Token::Kind;
  Token token;
  std::size_t bytes = 1;
  if (rest->front() == '*') {
    token.kind = Kind::kStar;
    bytes = std::min(rest->find_first_not_of('*'), rest->size());
  } else if (rest->front() == '?') {
    token.kind = Kind::kAny;
  } else if (rest->front() == '[') {
    token.kind = Kind::kSet;
    token.set = sets_.size();
    bytes = ReadByteSet(*rest, &sets_.emplace_back());
    if (bytes == 0) return false;
  } else {
    if (rest->front() == '\\') rest->remove_prefix(1);
    if (rest->empty()) return false;
    token.byte = rest->front();
  }
  if (token.kind == Kind::kByte) {
    part->end += token.byte;
  } else {
    part->is_literal = false;
    part->end.clear();
  }
  part->tokens.push_back(token);
  rest->remove_prefix(bytes);
  return true;
}

std::optional<std::string> IgnorePattern::Literal() const {
  std::string literal;
  for (const Part& part : parts_) {
    if (!part.is_literal) return std::nullopt;
    literal += (literal.empty() ? "" : "/") + part.end;
  }
  return literal;
}

bool IgnorePattern::TakesOne(const Token& token, char byte) const {
  switch (token.kind) {
    case Token::Kind::kByte:
      return token.byte == byte;
    case Token::Kind::kSet:
      return sets_[token.set].test(static_cast<unsigned char>(byte));
    default:
      return true;
  }
}

// Where bytes do not fit, the last star takes one more: an earlier star need not.
bool IgnorePattern::PartMatches(const Part& part, std::string_view name) const {
  if (part.is_literal) return part.end == name;
  const bool has_end =
      name.size() >= part.end.size() && name.substr(name.size() - part.end.size()) == part.end;
  if (!has_end) return false;  // as most names, which this finds out soonest
  const std::vector<Token>& tokens = part.tokens;
  const auto is_star = [&](std::size_t i) {
    return i < tokens.size() && tokens[i].kind == Token::Kind::kStar;
  };
  std::size_t token = 0;
  std::size_t after_star = 0;  // 0: there was none
  std::size_t star_end = 0;
  for (std::size_t at = 0; at < name.size();) {
    if (is_star(token)) {
      after_star = ++token;
      star_end = at;
    } else if (token < tokens.size() && TakesOne(tokens[token], name[at])) {
      ++token;
      ++at;
    } else if (after_star != 0) {
      token = after_star;
      at = ++star_end;
    } else {
      return false;
    }
  }
  if (is_star(token)) ++token;
  return token == tokens.size();
}

// The same for names in a path.
bool IgnorePattern::Matches(std::string_view path) const {
  if (!is_path_) return PartMatches(parts_[0], path.substr(path.rfind('/') + 1));
  std::size_t part = 0;
  std::size_t after_depth = 0;  // 0: there was no part of any depth
  std::string_view depth_end;
  while (!path.empty()) {
    std::string_view behind = path;
    const std::string_view name = TakeName(&behind);
    if (part < parts_.size() && parts_[part].is_any_depth) {
      after_depth = ++part;
      depth_end = path;
    } else if (part < parts_.size() && PartMatches(parts_[part], name)) {
      ++part;
      path = behind;
    } else if (after_depth != 0) {
      part = after_depth;
      TakeName(&depth_end);
      path = depth_end;
    } else {
      return false;
    }
  }
  return part == parts_.size();
}

}  // namespace kestan_cli
