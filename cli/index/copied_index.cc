#include "cli/index/copied_index.h"

#include <kestan/maintenance.h>

#include "cli/console/message.h"
#include "cli/index/atomic_create.h"
#include "cli/index/captured_stderr.h"
#include "cli/index/opened_index.h"

namespace kestan_cli {
namespace {

// Copies the index of the engine to `part`. The engine's messages about a failure are dropped: they
// name a file that the user does not know.
bool Copies(Kestan& engine, const std::string& part) {
  CapturedStderr lines;
  const bool copied = engine.CopyIndexTo(part.c_str()) == 0;
  if (!copied) lines.Drop();
  return copied;
}

bool AreSame(const std::string& left, const std::string& right) {
  Database a;
  Database b;
  if (a.Open(left.c_str(), 0) != 0 || b.Open(right.c_str(), 0) != 0) return false;
  return kestan::HaveSameRecords(a, b);
}

}  // namespace

void CopyIndex(Kestan& engine, const std::string& index, const std::string& path) {
  ExamineIndex(index, Access::kRead);
  CreateAtomically(path, index, [&](const std::string& part) {
    {
      const OpenedIndex opened(engine, index, Access::kRead);
      if (!Copies(engine, part))
        throw CannotMake(path, "not all was written, perhaps for want of room");
    }
    if (!AreSame(RealPath(index), part)) {
      throw CannotMake(path, "the copy is not complete; see kestan check " + Quoted(index));
    }
  });
}

}  // namespace kestan_cli
