// SPDX-License-Identifier: GPL-3.0-or-later
// What postings are made of, and reading them from the bytes of a record: kestan::PostingCursor.
#ifndef KESTAN_POSTINGS_H_
#define KESTAN_POSTINGS_H_

#include <kestan/format/posting.h>
#include <kestan/format/posting_cursor.h>

#endif  // KESTAN_POSTINGS_H_
