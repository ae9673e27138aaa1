// SPDX-License-Identifier: GPL-3.0-or-later
// Marks what libkestan-search shows to a host; everything else stays hidden inside it.
#ifndef KESTAN_SEARCH_EXPORT_H_
#define KESTAN_SEARCH_EXPORT_H_

#define KESTAN_SEARCH_EXPORT __attribute__((visibility("default")))

#endif  // KESTAN_SEARCH_EXPORT_H_
