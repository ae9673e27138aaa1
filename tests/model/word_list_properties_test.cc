// SPDX-License-Identifier: GPL-3.0-or-later
// Word lists: stored bytes and what is read back. RC_PARAMS="max_success=5000" runs longer.
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "tests/model/operations.h"

namespace kestan_model {
namespace {

namespace gen = rc::gen;

// Any bytes but the one that ends a string, with so many blanks and like letters that words occur.
rc::Gen<std::string> Lists() {
  return gen::container<std::string>(gen::weightedOneOf<char>({{6, gen::inRange('a', 'c')},
                                                               {2, gen::element(' ', '\n', '\v')},
                                                               {1, gen::nonZero<char>()}}));
}

// Long words that share up to all of the bytes that are kept of them.
rc::Gen<std::string> LongLists() {
  const auto word = gen::apply(
      [](int length, const std::string& end) {
        return std::string(static_cast<std::size_t>(length), 'w') + end;
      },
      gen::inRange(120, 135), gen::element<std::string>(" ", "x ", "  "));
  return gen::map(gen::container<std::vector<std::string>>(word),
                  [](const std::vector<std::string>& words) {
                    std::string list;
                    for (const std::string& each : words) list += each;
                    return list;
                  });
}

// Under one of many names, so that many stored lists are left to be compared at the end.
Operation StoreAndRead(int number, const std::string& list) {
  const std::string name = "list" + std::to_string(number);
  const auto run = [=](World& world) {
    world.Same([&] { return Engine().DBPutWords(name.c_str(), list.c_str()); },
               [&] { return world.model.DBPutWords(name, list); });
    world.Same([&] { return Taken(Engine().DBGetWords(name.c_str())); },
               [&] { return world.model.DBGetWords(name); });
  };
  return {"DBPutWords, DBGetWords " + Shown(name) + " " + Shown(list), run};
}

RC_GTEST_PROP(WordListTest, IsStoredAndReadAsTheModelDoes, ()) {
  Run(*Scripts(gen::apply(StoreAndRead, gen::inRange(0, 200), gen::oneOf(Lists(), LongLists()))));
}

}  // namespace
}  // namespace kestan_model
