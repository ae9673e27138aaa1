// SPDX-License-Identifier: GPL-3.0-or-later
// Writing a whole index file at once: kestan::IndexBuilder.
#ifndef KESTAN_INDEX_BUILDER_H_
#define KESTAN_INDEX_BUILDER_H_

#include <kestan/building/index_builder.h>
#include <kestan/storage/gdbm/record_place.h>

#endif  // KESTAN_INDEX_BUILDER_H_
