// SPDX-License-Identifier: GPL-3.0-or-later
// One index file, opened for reading: kestan::IndexFile.
#ifndef KESTAN_INDEX_FILE_H_
#define KESTAN_INDEX_FILE_H_

#include <kestan/engine/index_file.h>

#endif  // KESTAN_INDEX_FILE_H_
