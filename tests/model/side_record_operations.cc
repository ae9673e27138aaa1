// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>

#include "tests/model/operations.h"

namespace kestan_model {
namespace {

// The three families have methods of their own in the engine and are one thing in the model.
struct Family {
  const char* prefix;
  char* (Kestan::*get)(const char* name);
  int (Kestan::*put)(const char* name, const char* text);
  int (Kestan::*del)(const char* name);
};

const Family kFamilies[] = {
    {"u-", &Kestan::DBGetUser, &Kestan::DBPutUser, &Kestan::DBDelUser},
    {"s-", &Kestan::DBGetSummary, &Kestan::DBPutSummary, &Kestan::DBDelSummary},
    {"t-", &Kestan::DBGetTitle, &Kestan::DBPutTitle, &Kestan::DBDelTitle}};

void PutBoth(World& world, const Family& family, const std::string& name, const std::string& text) {
  world.Same([&] { return (Engine().*family.put)(name.c_str(), text.c_str()); },
             [&] { return world.model.PutSideRecord(family.prefix, name, text); });
}

Operation Put(int number, const std::string& name, const std::string& text) {
  const Family& family = kFamilies[number];
  return {std::string("put ") + family.prefix + " " + Shown(name) + " " + Shown(text),
          [=](World& world) { PutBoth(world, family, name, text); }};
}

void GetBoth(World& world, const Family& family, const std::string& name) {
  world.Same([&] { return Taken((Engine().*family.get)(name.c_str())); },
             [&] { return world.model.GetSideRecord(family.prefix, name); });
}

Operation Get(int number, const std::string& name) {
  const Family& family = kFamilies[number];
  return {std::string("get ") + family.prefix + " " + Shown(name),
          [=](World& world) { GetBoth(world, family, name); }};
}

// As many bytes as the buffer has, or some more or fewer.
std::string AboutAsLongAsTheBuffer(const World& world, int beyond) {
  const auto length = static_cast<std::int64_t>(world.process.buffer_size) + beyond;
  return std::string(static_cast<std::size_t>(std::max<std::int64_t>(length, 0)), 'x');
}

// A long text may make the stated size of the buffer smaller, which brings its limits near again.
Operation PutAndGetLong(int number, const std::string& name, int beyond) {
  const Family& family = kFamilies[number];
  return {std::string("put and get ") + family.prefix + " " + Shown(name) + " a text " +
              std::to_string(beyond) + " bytes longer than the buffer",
          [=](World& world) {
            PutBoth(world, family, name, AboutAsLongAsTheBuffer(world, beyond));
            GetBoth(world, family, name);
          }};
}

Operation Del(int number, const std::string& name) {
  const Family& family = kFamilies[number];
  return {std::string("delete ") + family.prefix + " " + Shown(name), [=](World& world) {
            world.Same([&] { return (Engine().*family.del)(name.c_str()); },
                       [&] { return world.model.DelSideRecord(family.prefix, name); });
          }};
}

void PutWordsBoth(World& world, const std::string& name, const std::string& words) {
  world.Same([&] { return Engine().DBPutWords(name.c_str(), words.c_str()); },
             [&] { return world.model.DBPutWords(name, words); });
}

Operation PutWords(const std::string& name, const std::string& words) {
  return {"DBPutWords " + Shown(name) + " " + Shown(words),
          [=](World& world) { PutWordsBoth(world, name, words); }};
}

Operation PutLongWord(const std::string& name, int beyond) {
  return {"DBPutWords " + Shown(name) + " one word " + std::to_string(beyond) +
              " bytes longer than the buffer",
          [=](World& world) { PutWordsBoth(world, name, AboutAsLongAsTheBuffer(world, beyond)); }};
}

Operation GetWords(const std::string& name) {
  return {"DBGetWords " + Shown(name), [=](World& world) {
            world.Same([&] { return Taken(Engine().DBGetWords(name.c_str())); },
                       [&] { return world.model.DBGetWords(name); });
          }};
}

// Words that share beginnings, now and then with two blanks between them.
rc::Gen<std::string> WordLists(const Vocabulary& vocabulary) {
  const auto parts = rc::gen::weightedOneOf<std::string>(
      {{4,
        rc::gen::map(rc::gen::elementOf(vocabulary.words), [](std::string w) { return w + " "; })},
       {2, rc::gen::element<std::string>("cat", "catalogue", "at", "s ", "\n")},
       {1, rc::gen::just<std::string>(" ")}});
  using Parts = std::vector<std::string>;
  return rc::gen::map(rc::gen::container<Parts>(parts), [](const Parts& made) {
    std::string words;
    for (const std::string& part : made) words += part;
    return words;
  });
}

}  // namespace

Operations SideRecordOperations(const Vocabulary& vocabulary) {
  namespace gen = rc::gen;
  const auto numbers = gen::inRange(0, 3);
  const auto names = gen::elementOf(vocabulary.names);
  const auto lists = WordLists(vocabulary);
  const auto beyond = gen::element(-1, 0, 1, 2, 4095, 4096, 5000, 8191, 8192);
  return gen::weightedOneOf<Operation>({{6, gen::apply(Get, numbers, names)},
                                        {6, gen::apply(Put, numbers, names, lists)},
                                        {2, gen::apply(PutAndGetLong, numbers, names, beyond)},
                                        {3, gen::apply(Del, numbers, names)},
                                        {4, gen::apply(PutWords, names, lists)},
                                        {1, gen::apply(PutLongWord, names, beyond)},
                                        {4, gen::map(names, GetWords)}});
}

}  // namespace kestan_model
