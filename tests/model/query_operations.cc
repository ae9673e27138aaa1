// SPDX-License-Identifier: GPL-3.0-or-later
#include <climits>
#include <cmath>

#include "tests/model/operations.h"

namespace kestan_model {
namespace {

// Names a result set by how long ago it was made; some were freed since, or never were.
rc::Gen<int> Recent() {
  return rc::gen::weightedOneOf<int>({{12, rc::gen::inRange(1, 6)},
                                      {1, rc::gen::inRange(6, 20)},
                                      {1, rc::gen::element(0, -1000)}});
}

std::string Result(int back) { return "result[-" + std::to_string(back) + "]"; }

Operation Word(const std::string& word) {
  return {"QueryWord " + Shown(word), [=](World& world) {
            world.Same([&] { return Engine().QueryWord(word.c_str()); },
                       [&] { return world.model.QueryWord(word); });
          }};
}

Operation And(int first, int second, int distance) {
  return {"QueryAnd " + Result(first) + " " + Result(second) + " " + std::to_string(distance),
          [=](World& world) {
            const int a = world.Id(first);
            const int b = world.Id(second);
            world.Same([&] { return Engine().QueryAnd(a, b, distance); },
                       [&] { return world.model.QueryAnd(a, b, distance); });
          }};
}

Operation Or(int first, int second) {
  return {"QueryOr " + Result(first) + " " + Result(second), [=](World& world) {
            const int a = world.Id(first);
            const int b = world.Id(second);
            world.Same([&] { return Engine().QueryOr(a, b); },
                       [&] { return world.model.QueryOr(a, b); });
          }};
}

Operation Not(int operand) {
  return {"QueryNegate " + Result(operand), [=](World& world) {
            if (world.model.MustNotNegate()) return;
            const int id = world.Id(operand);
            world.Same([&] { return Engine().QueryNegate(id); },
                       [&] { return world.model.QueryNegate(id); });
          }};
}

Operation List(int operand) {
  return {"QueryResults " + Result(operand), [=](World& world) {
            const int id = world.Id(operand);
            world.Same([&] { return Taken(Engine().QueryResults(id)); },
                       [&] { return world.model.QueryResults(id); });
          }};
}

Operation Free(int operand) {
  return {"FreeQueryResult " + Result(operand), [=](World& world) {
            const int id = world.Id(operand);
            Engine().FreeQueryResult(id);
            world.model.FreeQueryResult(id);
          }};
}

Operation FreeImpossible(int id) {
  return {"FreeQueryResult " + std::to_string(id), [=](World&) { Engine().FreeQueryResult(id); }};
}

Operation Common(double low, double high) {
  return {"CommonWords " + Shown(low) + " " + Shown(high), [=](World& world) {
            world.Same([&] { return Taken(Engine().CommonWords(low, high)); },
                       [&] { return world.model.CommonWords(low, high); });
          }};
}

Operation Documents() {
  return {"ListDocuments", [](World& world) {
            world.Same([] { return Taken(Engine().ListDocuments()); },
                       [&] { return world.model.ListDocuments(); });
          }};
}

rc::Gen<int> Distances() {
  return rc::gen::weightedOneOf<int>(
      {{3, rc::gen::just(0)},
       {5, rc::gen::inRange(1, 6)},
       {1, rc::gen::element(19, 20, 21, 65535, INT_MAX, -1, -20, INT_MIN)}});
}

rc::Gen<double> Bounds() {
  return rc::gen::weightedOneOf<double>(
      {{3, rc::gen::element(0.0, 0.2, 0.25, 0.5, 0.75, 0.999)},
       {3, rc::gen::element(1.0, 2.0, 2.9999, 3.0, 5.0, 100.0)},
       {1, rc::gen::element(-0.5, -1.0, -1.0005, -1.001, -2.0, 1e9, 4294967296.0, 1e19, -1e19)},
       {1, rc::gen::element(-HUGE_VAL, HUGE_VAL, std::nan(""))}});
}

}  // namespace

Operations QueryOperations(const Vocabulary& vocabulary) {
  namespace gen = rc::gen;
  return gen::weightedOneOf<Operation>(
      {{10, gen::map(gen::elementOf(vocabulary.words), Word)},
       {7, gen::apply(And, Recent(), Recent(), Distances())},
       {5, gen::apply(Or, Recent(), Recent())},
       {3, gen::map(Recent(), Not)},
       {10, gen::map(Recent(), List)},
       {1, gen::map(Recent(), Free)},
       {1, gen::map(gen::element(0, -1, INT_MIN, INT_MAX), FreeImpossible)},
       {3, gen::apply(Common, Bounds(), Bounds())},
       {2, gen::exec(Documents)}});
}

}  // namespace kestan_model
