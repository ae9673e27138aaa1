// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/c.h>

int kestan_version(int* major, int* minor, int* patch) {
  if (major == nullptr || minor == nullptr || patch == nullptr) return KESTAN_EINVALID;
  *major = KESTAN_VERSION_MAJOR;
  *minor = KESTAN_VERSION_MINOR;
  *patch = KESTAN_VERSION_PATCH;
  return KESTAN_OK;
}
