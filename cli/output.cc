#include "output.h"

#include <cerrno>

#include "message.h"

namespace kestan_cli {

void Print(std::string_view text) {
  errno = 0;
  const bool written = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
  if (written && std::fflush(stdout) == 0) return;
  if (errno == EPIPE) throw ReaderLeft();
  throw CommandError("cannot write to the standard output: " + ReasonOf(errno));
}

StandardDescriptors::StandardDescriptors() {
  // Opened for reading only, so that printing to a closed stream still fails.
  for (OpenFile& placeholder : placeholders_) placeholder.reset(std::fopen("/dev/null", "r"));
}

}  // namespace kestan_cli
