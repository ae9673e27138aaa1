// SPDX-License-Identifier: GPL-3.0-or-later
// Marks what the shared library shows to a host; everything else stays hidden inside it.
#ifndef KESTAN_STORAGE_EXPORT_H_
#define KESTAN_STORAGE_EXPORT_H_

#define KESTAN_EXPORT __attribute__((visibility("default")))

#endif  // KESTAN_STORAGE_EXPORT_H_
