// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/storage/store_error.h>

#include <kestan/storage/database.h>

namespace kestan {

const char* ErrorString(StoreError error) { return Database::ErrorString(static_cast<int>(error)); }

}  // namespace kestan
