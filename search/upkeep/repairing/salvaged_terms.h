// SPDX-License-Identifier: GPL-3.0-or-later
// The words that can be read of a damaged segment.
#ifndef KESTAN_SEARCH_UPKEEP_REPAIRING_SALVAGED_TERMS_H_
#define KESTAN_SEARCH_UPKEEP_REPAIRING_SALVAGED_TERMS_H_

#include <kestan/index_file.h>
#include <kestan/search/status.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "search/files/file_bytes.h"
#include "search/segment/term_dictionary.h"
#include "search/upkeep/repairing/salvaged_postings.h"

namespace kestan::search {

// All words in order of their bytes, each with the best of its posting records that there are: in
// the index file that the engine has salvaged, and in the damaged one, where the term dictionary
// names its place. A record that is sound and has as many postings as the dictionary says is
// believed. Of any other, the postings are doubted.
//
// What the dictionary lacks is no word of the segment, if there is a dictionary. One that is
// damaged counts as none, and so does one that nobody confirms and that lacks most of the words.
class SalvagedTerms {
 public:
  struct Sources {
    IndexFile* salvaged;  // what the engine has made
    std::string salvaged_path;
    std::shared_ptr<const FileBytes> damaged;  // the index file of the segment; may be null
    const TermDictionary* dictionary;          // null: damaged
    bool is_confirmed;                         // it is that of the segment, as MANIFEST says
    bool with_positions;
    Code highest;  // code of a document
  };

  // Says of a key whether its record is none of a word.
  using IsOther = std::function<bool(std::string_view key)>;

  // Borrows what `sources` points at.
  explicit SalvagedTerms(Sources sources) : sources_(std::move(sources)) {}

  // Finds the words, and the forms without capitals of words that have some.
  Status Find(const IsOther& is_other);

  std::size_t size() const { return terms_.size(); }
  std::string_view TermAt(std::size_t index) const { return terms_[index].term; }
  bool has_dictionary() const { return has_dictionary_; }
  bool with_positions() const { return sources_.with_positions; }
  Code highest() const { return sources_.highest; }

  // Returns the index of `term`; size() if there is none.
  std::size_t IndexOf(std::string_view term) const;

  // Returns the index of the form without capitals that is recorded wherever the word is; size() if
  // the word is that form itself, or may be without it: one whose second byte is a hyphen, for its
  // form may have the key of another record, and one whose form the dictionary lacks.
  std::size_t FoldedForm(std::size_t index) const;

  // Reads the postings of a word. Reads much faster in order.
  Status Read(std::size_t index, SalvagedPostings* postings);

  // How many words of the dictionary were not found, and how many only in part or in doubt; how
  // many records have keys that the dictionary lacks. Known when Find() is done.
  std::size_t lost() const { return lost_; }
  std::size_t doubted() const { return doubted_; }
  std::size_t unknown() const { return unknown_; }

 private:
  struct Term {
    std::string term;
    std::uint32_t documents = 0;  // 0: the dictionary does not say
    RecordPlace place;
  };
  enum class Trust { kNone, kDoubted, kSound };

  Status FindListed();
  Status FindStored(const IsOther& is_other);
  bool IsWord(std::string_view key, std::string_view value, const IsOther& is_other) const;
  void AddFoldedForms();
  Status CountRecords();
  Status ReadTrusted(std::size_t index, SalvagedPostings* postings, Trust* trust);
  void ReadDoubted(const Term& term, SalvagedPostings* postings) const;
  std::optional<Bytes> RecordAt(const Term& term, bool with_key) const;
  bool ReadAtPlace(const Term& term, bool with_key, SalvagedPostings* postings) const;
  Status ReadStored(const Term& term, SalvagedPostings* postings, bool* is_sound);
  bool IsSound(const Term& term, std::string_view record, SalvagedPostings* postings) const;
  Status StatusOf(int error) const;

  const Sources sources_;
  std::vector<Term> terms_;
  bool has_dictionary_ = false;
  std::size_t lost_ = 0;
  std::size_t doubted_ = 0;
  std::size_t unknown_ = 0;
  std::size_t reads_ = 0;
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_UPKEEP_REPAIRING_SALVAGED_TERMS_H_
