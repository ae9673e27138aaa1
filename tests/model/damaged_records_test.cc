// SPDX-License-Identifier: GPL-3.0-or-later
// The engine reads damaged records as the model does: what is missing is 0, a count reaches no
// further than its record. RC_PARAMS="max_success=5000" runs longer.
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "tests/model/operations.h"
#include "tests/model/units.h"

namespace kestan_model {
namespace {

namespace gen = rc::gen;

const Vocabulary kVocabulary = {{"", "cat", "dog", "Dog", "a", "d-", "g-code", "g-deleted", "d-a"},
                                {"", "a", "b"}};

// Small numbers, which make for postings and codes in use, and any others.
rc::Gen<unsigned> Units() {
  return gen::weightedOneOf<unsigned>({{12, gen::inRange(0u, 6u)},
                                       {1, gen::inRange(0u, 65536u)},
                                       {1, gen::element(32767u, 32768u, 65534u, 65535u)}});
}

// Any units; now and then the last of them lacks a byte.
rc::Gen<std::string> Values() {
  return gen::apply(
      [](const std::vector<unsigned>& units, bool odd) {
        std::string record = RecordOf(units);
        if (odd && !record.empty()) record.pop_back();
        return record;
      },
      gen::container<std::vector<unsigned>>(Units()),
      gen::weightedElement<bool>({{3, false}, {1, true}}));
}

rc::Gen<std::string> ShortValues() {
  return gen::map(Values(), [](const std::string& value) { return value.substr(0, 9); });
}

// A record with its key and a value that fits nothing in particular.
rc::Gen<Records> DamagedRecords() {
  const auto record = [](const std::string& key, const std::string& value) {
    return Records{{key, value}};
  };
  const auto words = gen::elementOf(kVocabulary.words);
  const auto arrays = gen::element<std::string>("g-deleted", "g-avail", "d-a", "d-b", "g-opts");
  const auto name_keys =
      gen::map(gen::inRange(0u, 6u), [](unsigned code) { return "c-" + BytesOf(code, 2); });
  const auto counters = gen::weightedElement<std::string>(
      {{1, ""}, {2, "\x02"}, {4, BytesOf(4, 2)}, {2, BytesOf(300, 3)}});
  const auto lists = gen::container<std::string>(gen::weightedOneOf<char>(
      {{4, gen::inRange('a', 'd')}, {3, gen::inRange('\x80', '\x84')}, {1, gen::nonZero<char>()}}));
  return gen::weightedOneOf<Records>(
      {{6, gen::apply(record, words, Values())},
       {6, gen::apply(record, arrays, ShortValues())},
       {2, gen::apply(record, name_keys, gen::element<std::string>("", "a", "name"))},
       {1, gen::apply(record, gen::just<std::string>("g-code"), counters)},
       {1, gen::apply(record, gen::just<std::string>("w-a"), lists)}});
}

RC_GTEST_PROP(DamagedRecordsTest, AreReadAsTheModelReadsThem, ()) {
  Run(*Scripts(gen::weightedOneOf<Operation>(
      {{1, PlantOperation(DamagedRecords())}, {3, AllOperations(kVocabulary)}})));
}

RC_GTEST_PROP(DamagedRecordsTest, AreQueriedAsTheModelQueriesThem, ()) {
  Run(*Scripts(gen::weightedOneOf<Operation>(
      {{2, PlantOperation(DamagedRecords())}, {3, QueryOperations(kVocabulary)}})));
}

}  // namespace
}  // namespace kestan_model
