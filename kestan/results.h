// SPDX-License-Identifier: GPL-3.0-or-later
// What queries and an open index answer, as values instead of text.
#ifndef KESTAN_RESULTS_H_
#define KESTAN_RESULTS_H_

#include <kestan/engine/results.h>
#include <kestan/storage/store_error.h>

#endif  // KESTAN_RESULTS_H_
