#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <string>

#include "cli/commands/commands.h"
#include "cli/console/json.h"
#include "cli/console/message.h"
#include "cli/index/index_transaction.h"

namespace kestan_cli {
namespace {

namespace fs = std::filesystem;

struct Sizes {
  std::uintmax_t before = 0;
  std::uintmax_t after = 0;
};

std::string JsonOf(const Sizes& sizes, bool dry_run) {
  return JsonReport(
      {{"dry_run", dry_run}, {"bytes_before", sizes.before}, {"bytes_after", sizes.after}});
}

std::string TextOf(const Sizes& sizes, bool dry_run) {
  return std::string(dry_run ? "would shrink" : "shrunk") + " from " +
         std::to_string(sizes.before) + " to " + std::to_string(sizes.after) + " bytes\n";
}

// gdbm rewrites the file and changes the owner of the new one to that of the old one.
void CheckOwner(const std::string& index) {
  struct stat status {};
  const uid_t user = geteuid();
  if (user == 0 || stat(index.c_str(), &status) != 0 || status.st_uid == user) return;
  throw CommandError("cannot shrink index " + Quoted(index) +
                     " in place: it belongs to another user; it works without --in-place");
}

void Shrink(Kestan& engine, const OpenedIndex& opened) {
  opened.WriteOut([&] {
    engine.PurgeShortWords(true);  // first, so that the shrink reclaims what they took
    engine.ShrinkIndex();
  });
  opened.PrepareCodes();
}

int RunShrink(Kestan& engine, const Values& values) {
  const std::string index = values.Text("INDEX");
  const bool dry_run = values.Has("--dry-run");
  const bool in_place = values.Has("--in-place") && !dry_run;
  IndexTransaction transaction(engine, index, Access::kWrite, UpdateModeOf(in_place));
  if (in_place) CheckOwner(index);
  Sizes sizes;
  sizes.before = fs::file_size(index);
  Shrink(engine, transaction.Begin());
  if (dry_run) {
    sizes.after = transaction.Measure();  // exact, for the copy was shrunk; it is discarded
  } else {
    transaction.Commit();
    sizes.after = fs::file_size(index);
  }
  PrintReport(
      ReportFormatOf(values), [&] { return JsonOf(sizes, dry_run); },
      [&] { return TextOf(sizes, dry_run); });
  return kDone;
}

}  // namespace

Command ShrinkCommand() {
  return {"shrink",
          "Reclaim the room of removed documents.",
          {IndexArgument()},
          {{"-n,--dry-run", "", "tell what it would give back, and change nothing"},
           JsonOption(),
           InPlaceOption(),
           QuietOption()},
          "",
          {"kestan shrink my.index"},
          RunShrink};
}

}  // namespace kestan_cli
