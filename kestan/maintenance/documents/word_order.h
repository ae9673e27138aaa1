// SPDX-License-Identifier: GPL-3.0-or-later
// The words of one document in the order of its text.
#ifndef KESTAN_MAINTENANCE_DOCUMENTS_WORD_ORDER_H_
#define KESTAN_MAINTENANCE_DOCUMENTS_WORD_ORDER_H_

#include <kestan/maintenance/documents.h>
#include <kestan/maintenance/documents/contents.h>
#include <kestan/maintenance/documents/places.h>
#include <kestan/storage/memory/memory.h>

#include <cstddef>

namespace kestan {

// Puts the words of one document together.
class WordOrder {
 public:
  // Borrows `contents`.
  explicit WordOrder(const Contents& contents) : contents_(contents) {}

  // Takes the places of one document, in order.
  //   Returns  its words, valid until the next call.
  const Vector<PlacedWord>& Restore(const Place* begin, const Place* end);

 private:
  struct Counted {
    WordId word;
    std::size_t count;
  };

  void CountWords(const Place* begin, const Place* end);
  void DropFoldedForms();

  const Contents& contents_;
  Vector<Counted> here_;  // the words at one position, in order
  Vector<PlacedWord> words_;
};

}  // namespace kestan

#endif  // KESTAN_MAINTENANCE_DOCUMENTS_WORD_ORDER_H_
