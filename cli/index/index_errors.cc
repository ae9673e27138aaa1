#include "cli/index/index_errors.h"

#include <kestan/kestan.h>

namespace kestan_cli {
namespace {

// gdbm's error numbers, which the store hands on.
constexpr int kFileOpenError = 3;
constexpr int kFileWriteError = 4;
constexpr int kFileReadError = 6;  // those between are about seeking and writing
constexpr int kCantBeReader = 9;
constexpr int kCantBeWriter = 10;
constexpr int kNeedsRecovery = 29;

// Returns why the store refused to open a file; errno was `system_error` right after.
std::string ReasonOfStore(int error, int system_error) {
  if (error == kNeedsRecovery) return std::string("damaged; ") + kSeeRepair;
  const bool from_system = error >= kFileOpenError && error <= kFileReadError;
  if (from_system && system_error != 0) return ReasonOf(system_error);
  return std::string("not an index file (") + Database::ErrorString(error) + ")" + kIfItWasOne;
}

// Returns why a record was not written. After the first failure, gdbm reports that recovery is
// needed.
std::string ReasonOfWrite(int error, bool on_copy) {
  const std::string reason = Database::ErrorString(error);
  if (error != kFileWriteError && error != kNeedsRecovery) return reason + "; see kestan check";
  return "a write failed, perhaps for want of room (" + reason + ")" +
         (on_copy ? "; it is as it was" : "");
}

}  // namespace

CommandError CannotOpen(const std::string& path, const std::string& reason, int status) {
  return CommandError("cannot open index " + Quoted(path) + ": " + reason, status);
}

CommandError CannotChange(const std::string& path, const std::string& reason, int status) {
  return CommandError("cannot change index " + Quoted(path) + ": " + reason, status);
}

CommandError Locked(const std::string& path, const std::string& holds_it) {
  return CannotOpen(path, "another process " + holds_it + "; try again later", kBusy);
}

CommandError StoreNotOpened(const std::string& path, int error, int system_error) {
  if (error == kCantBeReader) return Locked(path, "is changing it");
  if (error == kCantBeWriter) return Locked(path, "has it open");
  return CannotOpen(path, ReasonOfStore(error, system_error));
}

CommandError CannotRead(const std::string& path, int error) {
  return CommandError("cannot read index " + Quoted(path) + ": " + Database::ErrorString(error) +
                      "; see kestan check");
}

CommandError CannotWrite(const std::string& path, int error, bool on_copy) {
  return CommandError("cannot write to index " + Quoted(path) + ": " +
                      ReasonOfWrite(error, on_copy));
}

}  // namespace kestan_cli
