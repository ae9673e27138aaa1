// SPDX-License-Identifier: GPL-3.0-or-later
// The checksum of dumps and of the files of an index: kestan::Crc64.
#ifndef KESTAN_CHECKSUM_H_
#define KESTAN_CHECKSUM_H_

#include <kestan/storage/checksum/crc64.h>

#endif  // KESTAN_CHECKSUM_H_
