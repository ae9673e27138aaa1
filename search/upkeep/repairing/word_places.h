// SPDX-License-Identifier: GPL-3.0-or-later
// Words of a salvaged segment that contradict each other.
#ifndef KESTAN_SEARCH_UPKEEP_REPAIRING_WORD_PLACES_H_
#define KESTAN_SEARCH_UPKEEP_REPAIRING_WORD_PLACES_H_

#include <kestan/search/status.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "search/upkeep/repairing/salvaged_postings.h"
#include "search/upkeep/repairing/salvaged_terms.h"

namespace kestan::search {

// Decides which postings of a segment stay, so that they are those of some texts:
//
// (1) No word stands behind the last word of a document, if their number is known.
// (2) One word stands at a position. Of several, a word in doubt yields to one that is not; then
//     one that has others at a larger part of its positions in the document yields, which a posting
//     of another document does; then the one that comes later in order of bytes.
// (3) A word with capitals stands where its form without them stands. Where no word stands, that
//     form is restored. Where another word stands, the word with capitals is left out.
//
// Of a document of more than 65535 words several words share a position. There the forms alone are
// compared, and none is restored. Without positions only (3) is of any use: the form is restored.
class WordPlaces {
 public:
  // Borrows `terms`. `words` are the numbers of words of each document, by code, where they are
  // known.
  WordPlaces(SalvagedTerms* terms, std::vector<std::optional<std::uint32_t>> words);

  // To be called once, before all below.
  Status Resolve();

  // Reads what stays of the postings of a word: each code once, in order, positions ascending.
  Status Read(std::size_t index, SalvagedPostings* kept);

  // How many positions, or without them postings, were left out for each reason, and restored.
  struct Counts {
    std::uint64_t behind = 0;
    std::uint64_t shared = 0;
    std::uint64_t forms = 0;
    std::uint64_t restored = 0;

    bool any() const { return behind + shared + forms + restored != 0; }
  };
  const Counts& counts() const { return counts_; }

 private:
  using Place = std::uint32_t;  // code and position

  // A word at a position that several have.
  struct Claim {
    Place place;
    bool is_doubted;
    std::size_t contested;  // of how many positions
    std::size_t positions;
    std::size_t word;
  };

  static Place PlaceOf(Code code, Position position) { return Place{code} << 16 | position; }
  static Code CodeOf(Place place) { return static_cast<Code>(place >> 16); }
  static bool IsStronger(const Claim& left, const Claim& right);

  template <typename Visit>
  Status ForEachFolded(Visit visit);
  Status FindLongDocuments();
  Status FindContested();
  Status Decide();
  void AddClaims(std::size_t word, const SalvagedPostings& postings, std::vector<Claim>* claims);
  Status CompareForms();

  bool IsBehind(Code code, Position position) const;
  bool IsContested(Place place) const;
  bool IsOwner(std::size_t word, Place place) const;
  bool Take(Code code, Position position);
  void RestoreOrCount(std::size_t folded, Code code, Position position);
  Status ReadPlaced(std::size_t index, SalvagedPostings* kept);
  void AppendPlaced(std::size_t word, Code code, const Positions& found,
                    std::vector<Position>* positions) const;
  void AddPosting(Code code, std::vector<Position>* positions, SalvagedPostings* kept) const;
  template <typename Lack>
  void KeepForms(const SalvagedPostings& found, const SalvagedPostings& forms,
                 SalvagedPostings* kept, Lack lack) const;
  template <typename Lack>
  void KeepPositions(Code code, const Positions& found, const Positions& there,
                     SalvagedPostings* kept, Lack lack) const;

  SalvagedTerms& terms_;
  const std::vector<std::optional<std::uint32_t>> words_;  // by code
  std::vector<bool> is_long_;                              // by code
  std::vector<std::vector<bool>> taken_;                   // by code and position
  std::vector<Place> contested_;                           // sorted
  std::vector<std::size_t> owners_;                        // of the contested places, their words
  std::map<std::size_t, std::vector<Place>> restored_;     // by word
  Counts counts_;
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_UPKEEP_REPAIRING_WORD_PLACES_H_
