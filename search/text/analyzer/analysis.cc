// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/text/analyzer/analysis.h"

#include <array>
#include <cstring>

#include "search/text/analyzer/text_scanner.h"

namespace kestan::search {
namespace {

constexpr std::size_t kRoom = kMaxWordCharacters + 3;  // for what a scanner writes, and a blank

// Gathers words in a small buffer, which stays in the processor's cache, and adds it to a string
// when it is full.
class TextOfWords final : public WordSink {
 public:
  // Borrows `words`.
  explicit TextOfWords(std::string* words) : words_(words) {}

  char* Room() {
    if (next_ > kBufferBytes - kRoom) Flush();
    return buffer_.data() + next_;
  }

  void Took(char* end, std::size_t, std::size_t) {
    *end++ = ' ';
    next_ = static_cast<std::size_t>(end - buffer_.data());
  }

  static bool WantsMore() { return true; }

  void Take(std::string_view word, std::size_t, std::size_t, WordPart) override {
    if (next_ > kBufferBytes - kMaxWordBytes - 1) Flush();
    std::memcpy(buffer_.data() + next_, word.data(), word.size());
    next_ += word.size();
    buffer_[next_++] = ' ';
  }

  void Flush() {
    words_->append(buffer_.data(), next_);
    next_ = 0;
  }

 private:
  static constexpr std::size_t kBufferBytes = std::size_t{1} << 13;

  std::string* const words_;
  std::array<char, kBufferBytes> buffer_;
  std::size_t next_ = 0;
};

// Gives each word to a function of two arguments, which returns whether to go on.
template <typename Visit>
class WordVisitor final : public WordSink {
 public:
  explicit WordVisitor(const Visit& visit) : visit_(visit) {}

  char* Room() { return room_.data(); }

  void Took(char* end, std::size_t start, std::size_t stop) {
    const auto bytes = static_cast<std::size_t>(end - room_.data());
    Take({room_.data(), bytes}, start, stop, WordPart::kWhole);
  }

  bool WantsMore() const { return wants_more_; }

  void Take(std::string_view word, std::size_t start, std::size_t end, WordPart part) override {
    if (wants_more_) wants_more_ = visit_(AnalyzedWord{word, start, end}, part);
  }

 private:
  const Visit& visit_;
  std::array<char, kRoom> room_;
  bool wants_more_ = true;
};

template <typename Visit>
void VisitWords(std::string_view utf8, const Visit& visit) {
  WordVisitor<Visit> visitor(visit);
  TextScanner<WordVisitor<Visit>>(utf8, &visitor).Scan();
}

bool IsDigit(char byte) { return byte >= '0' && byte <= '9'; }

// Returns whether what stands between two words, `between`, joins them.
bool Joins(std::string_view text, std::size_t start, std::size_t end) {
  constexpr std::string_view kJoining = "-_.@'/:&+#~*=%$\\^`";
  const bool is_comma_of_number = end == start + 1 && text[start] == ',' && start > 0 &&
                                  IsDigit(text[start - 1]) && end < text.size() &&
                                  IsDigit(text[end]);
  if (is_comma_of_number) return true;
  // Hyphens, apostrophes and middle dots beyond ASCII.
  constexpr std::array<std::string_view, 18> kBeyond = {
      "\u00ad", "\u00b7", "\u02b9", "\u02ba", "\u02bb", "\u02bc", "\u02bd", "\u02be", "\u02bf",
      "\u2010", "\u2011", "\u2012", "\u2013", "\u2018", "\u2019", "\u2027", "\u2032", "\u30fb"};
  for (std::string_view rest = text.substr(start, end - start); !rest.empty();) {
    std::size_t joining = kJoining.find(rest.front()) != std::string_view::npos ? 1 : 0;
    for (const std::string_view beyond : kBeyond) {
      if (rest.substr(0, beyond.size()) == beyond) joining = beyond.size();
    }
    if (joining == 0) return false;
    rest.remove_prefix(joining);
  }
  return true;
}

// Puts words together that hang together.
class Grouper {
 public:
  // Borrows `text`. With `is_phrase`, all words hang together.
  explicit Grouper(std::string_view text, bool is_phrase = false)
      : text_(text), is_phrase_(is_phrase) {}

  void Add(const AnalyzedWord& word, WordPart part) {
    const bool joins = !groups_.empty() && (is_phrase_ || word.start <= groups_.back().end ||
                                            Joins(text_, groups_.back().end, word.start));
    if (!joins) {
      EndGroup();
      groups_.emplace_back();
    }
    WordGroup& group = groups_.back();
    group.words.emplace_back(word.word);
    group.end = std::max(group.end, word.end);
    last_part_ = part;
  }

  std::vector<WordGroup> Finish() {
    EndGroup();
    return std::move(groups_);
  }

 private:
  // The last character of a run of pairs is part of the pair before it. It matters only where
  // another word follows right after it.
  void EndGroup() {
    if (groups_.empty()) return;
    if (last_part_ == WordPart::kLastOfRun) groups_.back().words.pop_back();
    groups_.back().last_is_prefix = last_part_ == WordPart::kOnlyOne;
  }

  const std::string_view text_;
  const bool is_phrase_;
  std::vector<WordGroup> groups_;
  WordPart last_part_ = WordPart::kWhole;
};

std::vector<WordGroup> Grouped(std::string_view utf8, bool is_phrase) {
  Grouper grouper(utf8, is_phrase);
  VisitWords(utf8, [&grouper](const AnalyzedWord& word, WordPart part) {
    grouper.Add(word, part);
    return true;
  });
  return grouper.Finish();
}

}  // namespace

std::string AnalyzedWords(std::string_view utf8) {
  std::string words;
  words.reserve(utf8.size() + 1);
  TextOfWords sink(&words);
  TextScanner<TextOfWords>(utf8, &sink).Scan();
  sink.Flush();
  return words;
}

void ForEachAnalyzedWord(std::string_view utf8,
                         const std::function<bool(const AnalyzedWord&)>& visit) {
  VisitWords(utf8, [&visit](const AnalyzedWord& word, WordPart) { return visit(word); });
}

std::vector<WordGroup> AnalyzedGroups(std::string_view utf8) { return Grouped(utf8, false); }

WordGroup AnalyzedPhrase(std::string_view utf8) {
  std::vector<WordGroup> groups = Grouped(utf8, true);
  return groups.empty() ? WordGroup() : std::move(groups.front());
}

}  // namespace kestan::search
