#include "search/snippet/snippet.h"

#include <algorithm>
#include <map>
#include <utility>

#include "search/text/transliterate.h"
#include "search/text/words.h"

namespace kestan::search {
namespace {

constexpr std::string_view kGap = "...";
constexpr std::size_t kMaxWordBytes = 96;

bool IsAsciiLetter(char byte) {
  const char folded = static_cast<char>(byte | 0x20);
  return folded >= 'a' && folded <= 'z';
}

bool IsAscii(char byte) { return static_cast<unsigned char>(byte) < 0x80; }

bool IsLetter(char byte) { return IsAsciiLetter(byte) || !IsAscii(byte); }

bool IsBlank(char byte) { return static_cast<unsigned char>(byte) <= ' ' || byte == '\x7f'; }

struct Match {
  std::size_t start = 0;
  std::size_t end = 0;
  std::string_view sought;  // which word it is
};

// Tells which of `sought` the word `word` of a text is; nothing if it is none.
class Matcher {
 public:
  explicit Matcher(const std::set<std::string>& sought) : sought_(sought) {}

  std::string_view Find(std::string_view word) const {
    if (std::all_of(word.begin(), word.end(), IsAsciiLetter)) return FindForms(word);
    std::string_view found;
    const std::string cleaned = CleanWords(Transliterated(std::string(word)));
    std::size_t start = 0;
    for (std::size_t end = 0; found.empty() && start < cleaned.size(); start = end + 1) {
      end = std::min(cleaned.find(' ', start), cleaned.size());
      found = FindForms(std::string_view(cleaned).substr(start, end - start));
    }
    return found;
  }

 private:
  std::string_view FindForms(std::string_view word) const {
    constexpr std::size_t kMaxLetters = 64;  // of what is indexed
    std::string form(word.substr(0, kMaxLetters));
    auto found = sought_.find(form);
    if (found == sought_.end()) {
      for (char& letter : form) letter = static_cast<char>(letter | 0x20);
      found = sought_.find(form);
    }
    return found == sought_.end() ? std::string_view() : std::string_view(*found);
  }

  const std::set<std::string>& sought_;
};

bool ContinuesCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xc0) == 0x80; }

// Returns where the word that begins at `start` ends. Apostrophes between letters belong to it.
// Scripts without blanks would make words of whole paragraphs: those are taken piece by piece.
std::size_t EndOfWord(std::string_view text, std::size_t start) {
  std::size_t end = start;
  while (end < text.size()) {
    if (end - start >= kMaxWordBytes && !ContinuesCharacter(text[end])) break;
    const bool joins = text[end] == '\'' && end + 1 < text.size() && IsLetter(text[end + 1]);
    if (!joins && !IsLetter(text[end])) break;
    ++end;
  }
  return end;
}

std::vector<Match> FindMatches(std::string_view text, const std::set<std::string>& sought) {
  const Matcher matcher(sought);
  std::vector<Match> matches;
  for (std::size_t at = 0; at < text.size();) {
    if (!IsLetter(text[at])) {
      ++at;
      continue;
    }
    const std::size_t end = EndOfWord(text, at);
    const std::string_view found = matcher.Find(text.substr(at, end - at));
    if (!found.empty()) matches.push_back({at, end, found});
    at = end;
  }
  return matches;
}

// A stretch of matches: from `first` up to, not including, `last`.
struct Stretch {
  std::size_t first = 0;
  std::size_t last = 0;
  std::size_t different = 0;  // words among them
};

// Finds the stretch of at most kSnippetBytes with the most different words, then with the most
// matches; the first of equals. One pass: both ends only move on.
Stretch BestStretch(const std::vector<Match>& matches) {
  std::map<std::string_view, std::size_t> counts;
  Stretch best;
  std::size_t last = 0;
  for (std::size_t first = 0; first < matches.size(); ++first) {
    while (last < matches.size() &&
           (last == first || matches[last].end - matches[first].start <= kSnippetBytes)) {
      ++counts[matches[last++].sought];
    }
    const bool is_better = std::make_pair(counts.size(), last - first) >
                           std::make_pair(best.different, best.last - best.first);
    if (is_better) best = {first, last, counts.size()};
    const auto count = counts.find(matches[first].sought);
    if (--count->second == 0) counts.erase(count);
  }
  return best;
}

// Returns where to begin so that about `bytes` of `text` precede `at`: where a word begins.
std::size_t StartBefore(std::string_view text, std::size_t at, std::size_t bytes) {
  if (at <= bytes) return 0;
  for (std::size_t start = at - bytes; start < at; ++start) {
    if (IsBlank(text[start - 1]) && !IsBlank(text[start])) return start;
  }
  return at;
}

// Returns where to end so that about `bytes` of `text` follow `at`: where a word ends.
std::size_t EndAfter(std::string_view text, std::size_t at, std::size_t bytes) {
  if (text.size() - at <= bytes) return text.size();
  for (std::size_t end = at + bytes; end > at; --end) {
    if (IsBlank(text[end]) && !IsBlank(text[end - 1])) return end;
  }
  return at;
}

// Joins pieces of text, with one blank for every run of white space.
class Line {
 public:
  void Add(std::string_view text, bool matches) {
    std::string added;
    for (const char byte : text) {
      if (IsBlank(byte)) {
        gap_ = !is_empty_;
        continue;
      }
      if (gap_) added += ' ';
      gap_ = false;
      is_empty_ = false;
      added += byte;
    }
    if (gap_ && !matches && !added.empty()) {
      added += ' ';
      gap_ = false;
    }
    Append(std::move(added), matches);
  }

  std::vector<Piece> Take() {
    const bool ends_in_blank = !pieces_.empty() && pieces_.back().text.back() == ' ';
    if (ends_in_blank) pieces_.back().text.pop_back();
    if (!pieces_.empty() && pieces_.back().text.empty()) pieces_.pop_back();
    return std::move(pieces_);
  }

 private:
  // A blank before a match belongs to the text before it.
  void Append(std::string added, bool matches) {
    if (matches && !added.empty() && added.front() == ' ') {
      Append(" ", false);
      added.erase(0, 1);
    }
    if (added.empty()) return;
    const bool continues = !matches && !pieces_.empty() && !pieces_.back().matches;
    if (continues) {
      pieces_.back().text += added;
    } else {
      pieces_.push_back({std::move(added), matches});
    }
  }

  std::vector<Piece> pieces_;
  bool gap_ = false;
  bool is_empty_ = true;
};

}  // namespace

std::vector<Piece> MakeSnippet(std::string_view text, const std::set<std::string>& sought) {
  const std::vector<Match> matches = FindMatches(text, sought);
  if (matches.empty()) return {};
  const Stretch best = BestStretch(matches);
  const std::size_t first = matches[best.first].start;
  const std::size_t last = matches[best.last - 1].end;
  const std::size_t span = std::min(last - first, kSnippetBytes);
  const std::size_t start = StartBefore(text, first, (kSnippetBytes - span) / 2);
  const std::size_t end = EndAfter(text, last, (kSnippetBytes - span) / 2);
  Line line;
  if (start > 0) line.Add(kGap, false);
  std::size_t at = start;
  for (std::size_t i = best.first; i < best.last; ++i) {
    line.Add(text.substr(at, matches[i].start - at), false);
    line.Add(text.substr(matches[i].start, matches[i].end - matches[i].start), true);
    at = matches[i].end;
  }
  line.Add(text.substr(at, end - at), false);
  if (end < text.size()) line.Add(kGap, false);
  return line.Take();
}

}  // namespace kestan::search
