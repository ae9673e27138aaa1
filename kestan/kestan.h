// SPDX-License-Identifier: GPL-3.0-or-later
// The one header that a host includes: the engine, and with it the store that it stands on.
#ifndef KESTAN_KESTAN_H_
#define KESTAN_KESTAN_H_

#include <kestan/engine/kestan.h>     // IWYU pragma: export
#include <kestan/storage/database.h>  // IWYU pragma: export
#include <kestan/storage/dbdatum.h>   // IWYU pragma: export

#endif  // KESTAN_KESTAN_H_
