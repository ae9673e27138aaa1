// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/model/operations.h"

namespace kestan_model {
namespace {

void OpenBoth(World& world, const std::string& file, int mode) {
  const std::string path = world.Path(file);
  world.Same([&] { return Engine().OpenIndex(path.c_str(), mode); },
             [&] { return world.model.OpenIndex(path, mode); });
}

void CloseBoth(World& world) {
  world.Same([] { return Engine().CloseIndex(); }, [&] { return world.model.CloseIndex(); });
}

Operation Open(const std::string& file, int mode) {
  return {"OpenIndex " + file + " " + std::to_string(mode),
          [=](World& world) { OpenBoth(world, file, mode); }};
}

Operation Close() {
  return {"CloseIndex", [](World& world) { CloseBoth(world); }};
}

Operation Reopen(const std::string& file, int mode) {
  return {"CloseIndex, OpenIndex " + file + " " + std::to_string(mode), [=](World& world) {
            CloseBoth(world);
            OpenBoth(world, file, mode);
          }};
}

Operation Flush() {
  return {"FlushIndex", [](World& world) {
            world.Same([] { return Engine().FlushIndex(); },
                       [&] { return world.model.FlushIndex(); });
          }};
}

Operation Copy(const std::string& file) {
  return {"CopyIndexTo " + file, [=](World& world) {
            const std::string path = world.Path(file);
            world.Same([&] { return Engine().CopyIndexTo(path.c_str()); },
                       [&] { return world.model.CopyIndexTo(path); });
          }};
}

Operation CompareFiles() {
  return {"compare the files", [](World& world) { world.CompareFiles(); }};
}

Operation SetFlag(std::uint64_t flags) {
  return {"SetOptionFlag " + std::to_string(flags), [=](World& world) {
            const auto given = static_cast<unsigned long>(flags);
            world.Same([&] { return Engine().SetOptionFlag(given); },
                       [&] { return world.model.SetOptionFlag(std::uint32_t(given)); });
          }};
}

Operation UnsetFlag(std::uint64_t flags) {
  return {"UnsetOptionFlag " + std::to_string(flags), [=](World& world) {
            const auto given = static_cast<unsigned long>(flags);
            world.Same([&] { return Engine().UnsetOptionFlag(given); },
                       [&] { return world.model.UnsetOptionFlag(std::uint32_t(given)); });
          }};
}

Operation LoadOptions() {
  return {"GetOptions, Options", [](World& world) {
            const auto library = [] {
              Engine().GetOptions();
              return Engine().Options();
            };
            const auto naive = [&] {
              world.model.GetOptions();
              return world.model.Options();
            };
            world.Same(library, naive);
          }};
}

Operation StoreOptions() {
  return {"PutOptions", [](World& world) {
            world.Same([] { return Engine().PutOptions(); },
                       [&] { return world.model.PutOptions(); });
          }};
}

Operation Fill(int count) {
  return {"close, plant " + std::to_string(count) + " words, and open", [=](World& world) {
            Records words;
            for (int i = 0; i < count; ++i) {
              words["filler" + std::to_string(i)] = kestan_tests::Units({1, 1, 7});
            }
            world.PlantAndReopen(words);
          }};
}

}  // namespace

Operations LifecycleOperations() {
  namespace gen = rc::gen;
  const auto files =
      gen::weightedElement<std::string>({{6, "index"}, {3, "copy"}, {1, "missing/index"}});
  const auto modes = gen::weightedElement<int>({{5, 1}, {3, 0}, {1, -1}});
  const auto flags = gen::weightedElement<std::uint64_t>({{2, 1},
                                                          {2, 2},
                                                          {2, 4},
                                                          {1, 0},
                                                          {1, 5},
                                                          {1, 6},
                                                          {1, 0x80000000},
                                                          {1, 0x100000001},
                                                          {1, 1ull << 32}});
  return gen::weightedOneOf<Operation>(
      {{6, gen::apply(Reopen, files, modes)},
       {2, gen::apply(Open, files, modes)},
       {1, gen::exec(Close)},
       {6, gen::exec(Flush)},
       {3, gen::map(gen::element<std::string>("index", "copy", "copy", "missing/index"), Copy)},
       {6, gen::exec(CompareFiles)},
       {2, gen::map(flags, SetFlag)},
       {2, gen::map(flags, UnsetFlag)},
       {1, gen::exec(LoadOptions)},
       {1, gen::exec(StoreOptions)},
       {1, FillOperation(gen::element(90, 100, 101, 205))}});
}

Operations FillOperation(const rc::Gen<int>& counts) { return rc::gen::map(counts, Fill); }

std::vector<Operation> CopyAndCompare() { return {Copy("copy"), CompareFiles()}; }

}  // namespace kestan_model
