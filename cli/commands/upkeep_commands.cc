#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "cli/app/commands.h"
#include "cli/console/json.h"
#include "cli/console/message.h"
#include "cli/console/output.h"
#include "cli/index/copied_index.h"
#include "cli/index/index_transaction.h"

namespace kestan_cli {
namespace {

namespace fs = std::filesystem;

// ---- shrink ----

void PrintSizes(const Values& values, std::uintmax_t before, std::uintmax_t after) {
  const bool dry = values.Has("--dry-run");
  if (values.Has("--json")) {
    Print(JsonLine({{"schema", kJsonSchema},
                    {"dry_run", dry},
                    {"bytes_before", before},
                    {"bytes_after", after}}));
  } else if (!values.Has("--quiet")) {
    Print(std::string(dry ? "would shrink" : "shrunk") + " from " + std::to_string(before) +
          " to " + std::to_string(after) + " bytes\n");
  }
}

// gdbm rewrites the file, and wants to give the new one to the owner of the old one.
void CheckOwner(const std::string& index) {
  struct stat status {};
  const uid_t user = geteuid();
  if (user == 0 || stat(index.c_str(), &status) != 0 || status.st_uid == user) return;
  throw CommandError("cannot shrink index " + Quoted(index) +
                     " in place: it belongs to another user; it works without --in-place");
}

int RunShrink(Kestan& engine, const Values& values) {
  const std::string index = values.Text("INDEX");
  const bool dry = values.Has("--dry-run");
  const bool in_place = values.Has("--in-place") && !dry;
  IndexChange change(engine, index, Access::kWrite, WayOf(in_place, index));
  if (in_place) CheckOwner(index);
  const auto before = fs::file_size(index);
  const OpenedIndex& opened = change.Begin();
  opened.WriteOut([&] {
    engine.PurgeShortWords(true);  // first, so that the shrink gives back what they took
    engine.ShrinkIndex();
  });
  opened.PrepareCodes();
  // A dry run shrinks the copy, which is then forgotten: no estimate could be as good.
  const auto after = dry ? change.Measure() : (change.Commit(), fs::file_size(index));
  PrintSizes(values, before, after);
  return kDone;
}

// ---- option ----

unsigned long FlagsIn(const Values& values) {
  return static_cast<unsigned long>(values.Number("FLAGS", 0, 1, 0xffffffffLL));
}

int RunGetOption(Kestan& engine, const Values& values) {
  const OpenedIndex opened(engine, values.Text("INDEX"), Access::kRead);
  if (values.Has("--json")) {
    Print(JsonLine({{"schema", kJsonSchema},
                    {"flags", engine.Options()},
                    {"positions_kept", (engine.Options() & 1) == 0}}));
  } else {
    Print(std::to_string(engine.Options()) + "\n");
  }
  return kDone;
}

int RunSetOption(Kestan& engine, const Values& values) {
  const std::string index = values.Text("INDEX");
  const unsigned long flags = FlagsIn(values);
  IndexChange change(engine, index, Access::kWrite, WayOf(values.Has("--in-place"), index));
  const OpenedIndex& opened = change.Begin();
  if ((engine.Options() & flags) != 0) {
    throw CommandError("index " + Quoted(index) + " has flags " +
                       std::to_string(engine.Options() & flags) + " set already");
  }
  opened.WriteOut([&] { engine.SetOptionFlag(flags); });
  change.Commit();
  return kDone;
}

int RunClearOption(Kestan& engine, const Values& values) {
  const std::string index = values.Text("INDEX");
  const unsigned long flags = FlagsIn(values);
  IndexChange change(engine, index, Access::kWrite, WayOf(values.Has("--in-place"), index));
  change.Begin();
  if (engine.UnsetOptionFlag(flags) != 0) {
    throw CommandError("flag 1 of index " + Quoted(index) +
                       " cannot be cleared: the positions of its words are gone");
  }
  change.Commit();
  return kDone;
}

Positional FlagsArgument() { return {"FLAGS", "the sum of the flags"}; }

// ---- copy ----

int RunCopy(Kestan& engine, const Values& values) {
  CopyIndex(engine, values.Text("INDEX"), values.Text("NEW"));
  return kDone;
}

}  // namespace

std::vector<Command> OptionCommands() {
  return {
      {"option get",
       "Print the option flags.",
       {IndexArgument()},
       {JsonOption()},
       "Flag 1: the index keeps no positions, so that it is smaller and knows no NEAR. The others "
       "are free for the programs that use the index.",
       {"kestan option get my.index"},
       RunGetOption},
      {"option set",
       "Set option flags.",
       {IndexArgument(), FlagsArgument()},
       {InPlaceOption()},
       "Flag 1 drops the positions of all words, for good.",
       {"kestan option set my.index 1"},
       RunSetOption},
      {"option clear",
       "Clear option flags.",
       {IndexArgument(), FlagsArgument()},
       {InPlaceOption()},
       "",
       {"kestan option clear my.index 4"},
       RunClearOption},
  };
}

std::vector<Command> UpkeepCommands() {
  return {
      {"shrink",
       "Reclaim the room of removed documents.",
       {IndexArgument()},
       {{"-n,--dry-run", "", "tell what it would give back, and change nothing"},
        JsonOption(),
        InPlaceOption(),
        QuietOption()},
       "",
       {"kestan shrink my.index"},
       RunShrink},
      {"copy",
       "Copy an index, record by record, into a new file.",
       {IndexArgument(), {"NEW", "the file to make, which must not be there"}},
       {},
       "The copy has no free space in it. Copying the file itself is safe too, while no program "
       "has "
       "the index open for writing.",
       {"kestan copy my.index backup.index"},
       RunCopy},
  };
}

}  // namespace kestan_cli
