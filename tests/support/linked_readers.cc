// SPDX-License-Identifier: GPL-3.0-or-later
// Gives the parts of the command the readers that are linked into a test program, which loads no
// module.
#include "cli/extract/module/loaded_mail_reader.h"
#include "cli/extract/module/loaded_readers.h"
#include "cli/mail_reader/mail_reader.h"
#include "cli/readers/readers.h"

namespace {

struct LinkedReaders {
  LinkedReaders() {
    kestan_cli::UseReaders(*KestanReaders());
    kestan_cli::UseMailReader(*KestanMailReader());
  }
};

const LinkedReaders kLinkedReaders;

}  // namespace
