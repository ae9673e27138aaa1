// Gives the parts of the command the readers that are linked into a test program, which loads no
// module.
#include "cli/extract/module/loaded_readers.h"
#include "cli/readers/readers.h"

namespace {

struct LinkedReaders {
  LinkedReaders() { kestan_cli::UseReaders(*KestanReaders()); }
};

const LinkedReaders kLinkedReaders;

}  // namespace
