// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/files/glob.h"

#include <kestan/search.h>

#include <algorithm>

#include "cli/console/message.h"
#include "cli/files/paths.h"

namespace kestan_cli {
namespace {

using kestan::search::CharacterBytes;

std::string_view FirstCharacter(std::string_view text) {
  return text.substr(0, std::max<std::size_t>(CharacterBytes(text), 1));
}

std::string_view WithoutSlash(std::string_view pattern) {
  if (pattern.size() > 1 && pattern.back() == '/') pattern.remove_suffix(1);
  return pattern;
}

// Returns where the set at the start of `text` is closed; npos if it is not. A "]" that begins a
// set is one of its characters.
std::size_t EndOfSet(std::string_view text) {
  const std::size_t first = text.substr(0, 2) == "[!" || text.substr(0, 2) == "[^" ? 3 : 2;
  return text.find(']', first);
}

bool IsInSet(std::string_view set, std::string_view character) {
  const bool negated = !set.empty() && (set.front() == '!' || set.front() == '^');
  if (negated) set.remove_prefix(1);
  bool found = false;
  while (!set.empty()) {
    const std::string_view low = FirstCharacter(set);
    set.remove_prefix(low.size());
    std::string_view high = low;
    if (set.size() > 1 && set.front() == '-') {
      high = FirstCharacter(set.substr(1));
      set.remove_prefix(1 + high.size());
    }
    // The bytes of UTF-8 sort as its characters do.
    if (low <= character && character <= high) found = true;
  }
  return found != negated;
}

}  // namespace

Glob::Glob(std::string_view pattern) : pattern_(WithoutSlash(pattern)) {
  std::string_view rest = pattern_;
  while (!rest.empty()) AddToken(&rest);
}

void Glob::AddToken(std::string_view* rest) {
  const auto take = [this, rest](Token::Kind kind, std::size_t bytes, std::string_view text) {
    tokens_.push_back({kind, std::string(text)});
    rest->remove_prefix(bytes);
  };
  if (rest->substr(0, 3) == "**/") return take(Token::Kind::kFolders, 3, "");
  if (rest->substr(0, 2) == "**") return take(Token::Kind::kAll, 2, "");
  if (rest->front() == '*') return take(Token::Kind::kStar, 1, "");
  if (rest->front() == '?') return take(Token::Kind::kAny, 1, "");
  if (rest->front() == '[' && EndOfSet(*rest) != std::string_view::npos) {
    const std::size_t end = EndOfSet(*rest);
    return take(Token::Kind::kSet, end + 1, rest->substr(1, end - 1));
  }
  if (rest->front() == '\\' && rest->size() > 1) rest->remove_prefix(1);
  const std::string_view literal = FirstCharacter(*rest);
  take(Token::Kind::kLiteral, literal.size(), literal);
}

// Adds the state "token `at` is next". A token that may match nothing adds the state after it.
void Glob::Enter(std::size_t at, std::vector<bool>* states) const {
  for (; !(*states)[at]; ++at) {
    (*states)[at] = true;
    if (at == tokens_.size() || tokens_[at].kind < Token::Kind::kStar) return;
  }
}

bool Glob::TakesOne(const Token& token, std::string_view character) {
  if (token.kind == Token::Kind::kLiteral) return token.text == character;
  if (character == "/") return false;
  return token.kind == Token::Kind::kAny || IsInSet(token.text, character);
}

bool Glob::Matches(std::string_view path) const {
  std::vector<bool> states(tokens_.size() + 1);
  // Inside "**/", after the first character: only a "/" ends it.
  std::vector<bool> in_folders(tokens_.size() + 1);
  Enter(0, &states);
  while (!path.empty()) {
    const std::string_view character = FirstCharacter(path);
    path.remove_prefix(character.size());
    std::vector<bool> next(states.size());
    std::vector<bool> next_in_folders(states.size());
    for (std::size_t i = 0; i < tokens_.size(); ++i) {
      const Token& token = tokens_[i];
      if (token.kind == Token::Kind::kFolders && (states[i] || in_folders[i])) {
        next_in_folders[i] = true;
        if (character == "/") Enter(i + 1, &next);
      }
      if (!states[i] || token.kind == Token::Kind::kFolders) continue;
      if (token.kind == Token::Kind::kAll) Enter(i, &next);
      if (token.kind == Token::Kind::kStar && character != "/") Enter(i, &next);
      if (token.kind < Token::Kind::kStar && TakesOne(token, character)) Enter(i + 1, &next);
    }
    states.swap(next);
    in_folders.swap(next_in_folders);
  }
  return states[tokens_.size()];
}

std::string NameFilter::ReasonAgainst(std::string_view path, bool is_folder) const {
  const auto matches = [path](const Glob& glob) {
    return glob.Matches(path) || glob.Matches(LastPart(path));
  };
  const auto excluding = std::find_if(exclude.begin(), exclude.end(), matches);
  if (excluding != exclude.end()) return "excluded by " + Quoted(excluding->pattern());
  // Files in a directory may be included though no pattern names the directory.
  if (is_folder || include.empty()) return "";
  if (std::any_of(include.begin(), include.end(), matches)) return "";
  return "not included";
}

}  // namespace kestan_cli
