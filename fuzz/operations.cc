// SPDX-License-Identifier: GPL-3.0-or-later
// Any sequence of calls, with hostile records planted between them: the engine answers, prints and
// stores what the naive model of tests/model does.
//
// Input: for each step a byte that chooses it and the bytes that its arguments are read from.
#include <rapidcheck.h>

#include <array>

#include "fuzz/support/arguments.h"
#include "fuzz/support/input.h"
#include "fuzz/support/reporting.h"
#include "fuzz/support/scratch_index.h"
#include "tests/model/world.h"

namespace {

using kestan_fuzz::Bound;
using kestan_fuzz::Distance;
using kestan_fuzz::File;
using kestan_fuzz::Flags;
using kestan_fuzz::Input;
using kestan_fuzz::Name;
using kestan_fuzz::Word;
using kestan_fuzz::Words;
using kestan_model::Engine;
using kestan_model::Records;
using kestan_model::Taken;
using kestan_model::World;

constexpr unsigned kMostSteps = 64;
constexpr std::size_t kMostPairs = 20000;

// A result set by how long ago it was made.
int Result(World& world, Input* input) { return world.Id(static_cast<int>(input->Below(12))); }

// ---- Documents ----

void Add(World& world, Input* input) {
  const std::string name = Name(input);
  const std::string text = Words(input);
  if (world.model.MustNotAdd()) return;  // by design the process would end, or no index is open
  world.Same([&] { return Taken(Engine().AddDocumentWords(name.c_str(), text.c_str())); },
             [&] { return world.model.AddDocumentWords(name, text); });
}

void Remove(World& world, Input* input) {
  const std::string name = Name(input);
  world.Same([&] { return Engine().RemoveDocumentWords(name.c_str()); },
             [&] { return world.model.RemoveDocumentWords(name); });
}

void Move(World& world, Input* input) {
  const std::string from = Name(input);
  const std::string to = Name(input);
  world.Same([&] { return Engine().MoveDocumentWords(from.c_str(), to.c_str()); },
             [&] { return world.model.MoveDocumentWords(from, to); });
}

void Timestamp(World& world, Input* input) {
  const std::string name = Name(input);
  world.Same([&] { return Engine().DocumentTimestamp(name.c_str()); },
             [&] { return world.model.DocumentTimestamp(name); });
}

void Wait(World& world, Input* input) { world.Advance(input->Byte() * 65537); }

void Shrink(World& world, Input*) {
  world.Same([] { return Engine().ShrinkIndex(); }, [&] { return world.model.ShrinkIndex(); });
}

// ---- Queries ----

void Query(World& world, Input* input) {
  const std::string word = Word(input);
  world.Same([&] { return Engine().QueryWord(word.c_str()); },
             [&] { return world.model.QueryWord(word); });
}

void And(World& world, Input* input) {
  const int first = Result(world, input);
  const int second = Result(world, input);
  const int distance = Distance(input);
  // OR of a set and itself doubles its positions; the model tries each with each.
  if (world.model.CountPairs(first, second) > kMostPairs) return;
  world.Same([&] { return Engine().QueryAnd(first, second, distance); },
             [&] { return world.model.QueryAnd(first, second, distance); });
}

void Or(World& world, Input* input) {
  const int first = Result(world, input);
  const int second = Result(world, input);
  world.Same([&] { return Engine().QueryOr(first, second); },
             [&] { return world.model.QueryOr(first, second); });
}

void Not(World& world, Input* input) {
  const int id = Result(world, input);
  if (world.model.MustNotNegate()) return;  // by design the process would end
  world.Same([&] { return Engine().QueryNegate(id); }, [&] { return world.model.QueryNegate(id); });
}

void List(World& world, Input* input) {
  const int id = Result(world, input);
  world.Same([&] { return Taken(Engine().QueryResults(id)); },
             [&] { return world.model.QueryResults(id); });
}

void Free(World& world, Input* input) {
  const int id = Result(world, input);
  Engine().FreeQueryResult(id);
  world.model.FreeQueryResult(id);
}

void Common(World& world, Input* input) {
  const double low = Bound(input);
  const double high = Bound(input);
  world.Same([&] { return Taken(Engine().CommonWords(low, high)); },
             [&] { return world.model.CommonWords(low, high); });
}

void Documents(World& world, Input*) {
  world.Same([] { return Taken(Engine().ListDocuments()); },
             [&] { return world.model.ListDocuments(); });
}

// ---- Side records and word lists ----

struct Family {
  const char* prefix;
  char* (Kestan::*get)(const char* name);
  int (Kestan::*put)(const char* name, const char* text);
  int (Kestan::*del)(const char* name);
};

const Family& FamilyOf(Input* input) {
  static constexpr std::array<Family, 3> kFamilies = {
      {{"u-", &Kestan::DBGetUser, &Kestan::DBPutUser, &Kestan::DBDelUser},
       {"s-", &Kestan::DBGetSummary, &Kestan::DBPutSummary, &Kestan::DBDelSummary},
       {"t-", &Kestan::DBGetTitle, &Kestan::DBPutTitle, &Kestan::DBDelTitle}}};
  return kFamilies[input->Below(kFamilies.size())];
}

void PutText(World& world, Input* input) {
  const Family& family = FamilyOf(input);
  const std::string name = Name(input);
  const std::string text = Words(input);
  world.Same([&] { return (Engine().*family.put)(name.c_str(), text.c_str()); },
             [&] { return world.model.PutSideRecord(family.prefix, name, text); });
}

void GetText(World& world, Input* input) {
  const Family& family = FamilyOf(input);
  const std::string name = Name(input);
  world.Same([&] { return Taken((Engine().*family.get)(name.c_str())); },
             [&] { return world.model.GetSideRecord(family.prefix, name); });
}

void DelText(World& world, Input* input) {
  const Family& family = FamilyOf(input);
  const std::string name = Name(input);
  world.Same([&] { return (Engine().*family.del)(name.c_str()); },
             [&] { return world.model.DelSideRecord(family.prefix, name); });
}

void PutWords(World& world, Input* input) {
  const std::string name = Name(input);
  const std::string words = Words(input);
  world.Same([&] { return Engine().DBPutWords(name.c_str(), words.c_str()); },
             [&] { return world.model.DBPutWords(name, words); });
}

void GetWords(World& world, Input* input) {
  const std::string name = Name(input);
  world.Same([&] { return Taken(Engine().DBGetWords(name.c_str())); },
             [&] { return world.model.DBGetWords(name); });
}

// ---- The index file ----

void Open(World& world, Input* input) {
  const std::string path = world.Path(File(input));
  const int mode = static_cast<int>(input->Below(4)) - 1;
  world.Same([&] { return Engine().OpenIndex(path.c_str(), mode); },
             [&] { return world.model.OpenIndex(path, mode); });
}

void Close(World& world, Input*) {
  world.Same([] { return Engine().CloseIndex(); }, [&] { return world.model.CloseIndex(); });
}

void Reopen(World& world, Input* input) {
  Close(world, input);
  Open(world, input);
}

void Flush(World& world, Input*) {
  world.Same([] { return Engine().FlushIndex(); }, [&] { return world.model.FlushIndex(); });
}

void Copy(World& world, Input* input) {
  const std::string path = world.Path(File(input));
  world.Same([&] { return Engine().CopyIndexTo(path.c_str()); },
             [&] { return world.model.CopyIndexTo(path); });
}

void SetFlag(World& world, Input* input) {
  const std::uint64_t flags = Flags(input);
  world.Same([&] { return Engine().SetOptionFlag(static_cast<unsigned long>(flags)); },
             [&] { return world.model.SetOptionFlag(static_cast<std::uint32_t>(flags)); });
}

void UnsetFlag(World& world, Input* input) {
  const std::uint64_t flags = Flags(input);
  world.Same([&] { return Engine().UnsetOptionFlag(static_cast<unsigned long>(flags)); },
             [&] { return world.model.UnsetOptionFlag(static_cast<std::uint32_t>(flags)); });
}

void LoadOptions(World& world, Input*) {
  world.Same(
      [] {
        Engine().GetOptions();
        return Engine().Options();
      },
      [&] {
        world.model.GetOptions();
        return world.model.Options();
      });
}

void StoreOptions(World& world, Input*) {
  world.Same([] { return Engine().PutOptions(); }, [&] { return world.model.PutOptions(); });
}

void Plant(World& world, Input* input) { world.PlantAndReopen(kestan_fuzz::Record(input)); }

// So many words that walks flush before their end.
void Fill(World& world, Input*) {
  Records words;
  for (int i = 0; i < 110; ++i) {
    words["filler" + std::to_string(i)] = kestan_tests::Units({1, 1, 7});
  }
  world.PlantAndReopen(words);
}

void CompareFiles(World& world, Input*) { world.CompareFiles(); }

struct Method {
  const char* name;
  void (*run)(World& world, Input* input);
};

constexpr std::array<Method, 34> kMethods = {{{"AddDocumentWords", Add},
                                              {"AddDocumentWords", Add},
                                              {"QueryWord", Query},
                                              {"QueryWord", Query},
                                              {"plant a record", Plant},
                                              {"plant a record", Plant},
                                              {"RemoveDocumentWords", Remove},
                                              {"MoveDocumentWords", Move},
                                              {"DocumentTimestamp", Timestamp},
                                              {"wait", Wait},
                                              {"ShrinkIndex", Shrink},
                                              {"QueryAnd", And},
                                              {"QueryOr", Or},
                                              {"QueryNegate", Not},
                                              {"QueryResults", List},
                                              {"FreeQueryResult", Free},
                                              {"CommonWords", Common},
                                              {"ListDocuments", Documents},
                                              {"put a side record", PutText},
                                              {"get a side record", GetText},
                                              {"delete a side record", DelText},
                                              {"DBPutWords", PutWords},
                                              {"DBGetWords", GetWords},
                                              {"OpenIndex", Open},
                                              {"CloseIndex", Close},
                                              {"CloseIndex, OpenIndex", Reopen},
                                              {"FlushIndex", Flush},
                                              {"CopyIndexTo", Copy},
                                              {"SetOptionFlag", SetFlag},
                                              {"UnsetOptionFlag", UnsetFlag},
                                              {"GetOptions", LoadOptions},
                                              {"PutOptions", StoreOptions},
                                              {"plant many words", Fill},
                                              {"compare the files", CompareFiles}}};

void Run(Input input) {
  World world;
  world.Begin("OpenIndex");
  const std::string path = world.Path("index");
  world.Same([&] { return Engine().OpenIndex(path.c_str(), 1); },
             [&] { return world.model.OpenIndex(path, 1); });
  for (unsigned step = 0; step < kMostSteps && !input.IsEmpty(); ++step) {
    const Method& method = kMethods[input.Below(kMethods.size())];
    world.Begin(method.name);
    method.run(world, &input);
  }
  world.Begin("CloseIndex at the end");
  Close(world, &input);
  world.CompareFiles();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kestan_fuzz::ForgetScratch();
  try {
    Run(Input(data, size));
  } catch (const rc::detail::CaseResult& disagreement) {
    kestan_fuzz::Fail(disagreement.description);
  }
  return 0;
}
