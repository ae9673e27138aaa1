// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/model/operations.h"

namespace kestan_model {
namespace {

rc::Gen<std::string> Names(const Vocabulary& vocabulary) {
  return rc::gen::elementOf(vocabulary.names);
}

// Words of the vocabulary with any white space around them.
rc::Gen<std::string> Texts(const Vocabulary& vocabulary) {
  const auto separators =
      rc::gen::weightedElement<std::string>({{12, " "}, {2, "\n"}, {1, "  "}, {1, "\t\v\f\r"}});
  const auto words = rc::gen::pair(rc::gen::elementOf(vocabulary.words), separators);
  using Words = std::vector<std::pair<std::string, std::string>>;
  return rc::gen::map(rc::gen::container<Words>(words), [](const Words& made) {
    std::string text;
    for (const auto& [word, separator] : made) text += word + separator;
    return text;
  });
}

// A text of `count` words that all begin alike and are `length` bytes long or a little more.
std::string ManyWords(int count, int length) {
  std::string text;
  for (int i = 0; i < count; ++i) {
    text += std::string(static_cast<std::size_t>(length), 'w') + std::to_string(i) + " ";
  }
  return text;
}

void Add(World& world, const std::string& name, const std::string& text) {
  if (world.model.MustNotAdd()) return;
  world.Same([&] { return Taken(Engine().AddDocumentWords(name.c_str(), text.c_str())); },
             [&] { return world.model.AddDocumentWords(name, text); });
}

Operation AddText(const std::string& name, const std::string& text) {
  return {"AddDocumentWords " + Shown(name) + " " + Shown(text),
          [=](World& world) { Add(world, name, text); }};
}

Operation AddManyWords(const std::string& name, int count, int length) {
  return {"AddDocumentWords " + Shown(name) + " " + std::to_string(count) + " words of " +
              std::to_string(length) + " bytes",
          [=](World& world) { Add(world, name, ManyWords(count, length)); }};
}

// The text lies in the buffer that the call itself writes into.
Operation AddTitle(const std::string& name, const std::string& titled) {
  const auto run = [=](World& world) {
    if (world.model.MustNotAdd()) return;
    const auto library = [&] {
      const char* text = Engine().DBGetTitle(titled.c_str());
      return text == nullptr ? Null() : Taken(Engine().AddDocumentWords(name.c_str(), text));
    };
    const auto naive = [&] {
      const Text text = world.model.GetSideRecord("t-", titled);
      return text.is_null ? text : world.model.AddDocumentWords(name, text.bytes.c_str());
    };
    world.Same(library, naive);
  };
  return {"AddDocumentWords " + Shown(name) + " DBGetTitle " + Shown(titled), run};
}

Operation Remove(const std::string& name) {
  return {"RemoveDocumentWords " + Shown(name), [=](World& world) {
            world.Same([&] { return Engine().RemoveDocumentWords(name.c_str()); },
                       [&] { return world.model.RemoveDocumentWords(name); });
          }};
}

Operation Move(const std::string& from, const std::string& to) {
  return {"MoveDocumentWords " + Shown(from) + " " + Shown(to), [=](World& world) {
            world.Same([&] { return Engine().MoveDocumentWords(from.c_str(), to.c_str()); },
                       [&] { return world.model.MoveDocumentWords(from, to); });
          }};
}

Operation Timestamp(const std::string& name) {
  return {"DocumentTimestamp " + Shown(name), [=](World& world) {
            world.Same([&] { return Engine().DocumentTimestamp(name.c_str()); },
                       [&] { return world.model.DocumentTimestamp(name); });
          }};
}

Operation Wait(std::uint32_t seconds) {
  return {"wait " + std::to_string(seconds) + " seconds",
          [=](World& world) { world.Advance(seconds); }};
}

Operation Shrink() {
  return {"ShrinkIndex", [](World& world) {
            world.Same([] { return Engine().ShrinkIndex(); },
                       [&] { return world.model.ShrinkIndex(); });
          }};
}

}  // namespace

Operations DocumentOperations(const Vocabulary& vocabulary) {
  namespace gen = rc::gen;
  const auto names = Names(vocabulary);
  const auto seconds = gen::element<std::uint32_t>(1, 60, 86400, 0x7fffffff);
  return gen::weightedOneOf<Operation>(
      {{16, gen::apply(AddText, names, Texts(vocabulary))},
       {1, gen::apply(AddManyWords, names, gen::inRange(0, 60), gen::element(1, 80, 130))},
       {1, gen::apply(AddTitle, names, names)},
       {6, gen::map(names, Remove)},
       {5, gen::apply(Move, names, names)},
       {2, gen::map(names, Timestamp)},
       {1, gen::map(seconds, Wait)},
       {3, gen::exec(Shrink)}});
}

}  // namespace kestan_model
