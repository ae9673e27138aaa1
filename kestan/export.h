// Marks what the shared library shows to a host; everything else stays hidden inside it.
#ifndef KESTAN_EXPORT_H_
#define KESTAN_EXPORT_H_

#define KESTAN_EXPORT __attribute__((visibility("default")))

#endif  // KESTAN_EXPORT_H_
