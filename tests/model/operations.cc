// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/model/operations.h"

namespace kestan_model {

void showValue(const Operation& operation, std::ostream& out) { out << operation.shown; }

void showValue(const Script& script, std::ostream& out) {
  out << "\n";
  int number = 1;
  for (const Operation& step : script.steps) out << "  " << ++number << ". " << step.shown << "\n";
}

Operations AllOperations(const Vocabulary& vocabulary) {
  return rc::gen::weightedOneOf<Operation>({{5, DocumentOperations(vocabulary)},
                                            {6, QueryOperations(vocabulary)},
                                            {3, LifecycleOperations()},
                                            {2, SideRecordOperations(vocabulary)}});
}

// Scripts grow longer than the texts in them, for it takes many steps to get into trouble.
rc::Gen<Script> Scripts(const Operations& operations) {
  constexpr double kLonger = 4;
  const auto steps =
      rc::gen::container<std::vector<Operation>>(rc::gen::scale(1 / kLonger, operations));
  return rc::gen::map(rc::gen::scale(kLonger, steps),
                      [](std::vector<Operation> made) { return Script{std::move(made)}; });
}

void Run(const Script& script) {
  World world;
  world.Begin("OpenIndex");
  const std::string path = world.Path("index");
  world.Same([&] { return Engine().OpenIndex(path.c_str(), 1); },
             [&] { return world.model.OpenIndex(path, 1); });
  for (const Operation& step : script.steps) {
    world.Begin(step.shown);
    step.run(world);
  }
  world.Begin("CloseIndex at the end");
  world.Same([] { return Engine().CloseIndex(); }, [&] { return world.model.CloseIndex(); });
  world.CompareFiles();
}

Operations PlantOperation(const rc::Gen<Records>& records) {
  return rc::gen::map(records, [](const Records& planted) {
    std::string shown = "close, plant";
    for (const auto& [key, value] : planted) shown += " " + Shown(key) + " = " + Shown(value);
    return Operation{shown + ", and open",
                     [planted](World& world) { world.PlantAndReopen(planted); }};
  });
}

}  // namespace kestan_model
