// SPDX-License-Identifier: GPL-3.0-or-later
// Filters of a search that are functions of C.
#ifndef KESTAN_C_FILTER_H_
#define KESTAN_C_FILTER_H_

#include <kestan/c.h>
#include <kestan/search/filtered_document.h>

#include <atomic>

namespace kestan::c {

struct OpenReader;

// Makes a filter of a search in `reader` of a function of C. It must outlive the search.
class Filter {
 public:
  // Borrows all. A null `callback` makes no filter.
  Filter(kestan_filter_callback callback, void* payload, const OpenReader* reader)
      : callback_(callback), payload_(payload), reader_(reader) {}
  Filter(const Filter&) = delete;
  Filter& operator=(const Filter&) = delete;

  // Returns what a search takes; empty for no filter. Borrows the filter.
  search::DocumentFilter function();

  // Returns whether the function has asked to stop.
  bool has_stopped() const { return has_stopped_; }

 private:
  bool Passes(const search::FilteredDocument& document);

  const kestan_filter_callback callback_;
  void* const payload_;
  const OpenReader* const reader_;
  std::atomic<bool> has_stopped_{false};
};

}  // namespace kestan::c

#endif  // KESTAN_C_FILTER_H_
