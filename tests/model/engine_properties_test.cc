// SPDX-License-Identifier: GPL-3.0-or-later
// The engine does what the model does, whatever the order in which a host calls it.
//
// Each property runs 100 random scripts. For more of them, and longer ones:
//   RC_PARAMS="max_success=5000" model_tests
//   RC_PARAMS="max_success=1000 max_size=400" model_tests
// A failure prints the shortest script that RapidCheck finds, step by step, the step where engine
// and model part, and the RC_PARAMS that repeat it.
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "tests/model/operations.h"

namespace kestan_model {
namespace {

Vocabulary PlainVocabulary() {
  return {{"cat", "Cat", "CAT", "dog", "Dog", "a", "A", "I", "at", "under_score", "@home",
           "caf\xc3\xa9"},
          {"a", "b", "c", "A", "one two", "notes.txt", "c-x"}};
}

// Words and names that meet the engine's own records, in the middle of its work.
Vocabulary TrapVocabulary() {
  return {{"g-code", "g-avail", "g-deleted", "g-opts", "d-", "d-a", "d-b", "D-B", "c-xy", "w-a",
           "t-a", "x-", "x-y", "-", "--", "cat", "a"},
          {"", "a", "b", "-", "code"}};
}

Vocabulary LongVocabulary() {
  return {{std::string(126, 'c'), std::string(127, 'c'), std::string(128, 'C'),
           std::string(5000, 'w'), "cat"},
          {std::string(2000, 'n'), std::string(4095, 'n'), std::string(9000, 'N'), "b"}};
}

RC_GTEST_PROP(EnginePropertiesTest, DoesWhatTheModelDoes, ()) {
  Run(*Scripts(AllOperations(PlainVocabulary())));
}

RC_GTEST_PROP(EnginePropertiesTest, DoesWhatTheModelDoesWithWordsThatLookLikeSystemKeys, ()) {
  Run(*Scripts(AllOperations(TrapVocabulary())));
}

RC_GTEST_PROP(EnginePropertiesTest, DoesWhatTheModelDoesWithLongWordsAndNames, ()) {
  Run(*Scripts(AllOperations(LongVocabulary())));
}

// One line just fits the buffer as it is after its first growth, or just does not.
RC_GTEST_PROP(EnginePropertiesTest, GrowsTheBufferAsTheModelDoes, ()) {
  const auto length = *rc::gen::element<std::size_t>(4075, 4076, 4077, 4093, 4094, 4095, 4096);
  const Vocabulary vocabulary{{std::string(length, 'w')}, {std::string(length, 'n')}};
  Run(*Scripts(rc::gen::weightedOneOf<Operation>({{2, DocumentOperations(vocabulary)},
                                                  {3, QueryOperations(vocabulary)},
                                                  {3, SideRecordOperations(vocabulary)}})));
}

RC_GTEST_PROP(EnginePropertiesTest, ReusesCodesAsTheModelDoes, ()) {
  Run(*Scripts(DocumentOperations(PlainVocabulary())));
}

RC_GTEST_PROP(EnginePropertiesTest, AnswersNestedQueriesAsTheModelDoes, ()) {
  const Vocabulary vocabulary{{"cat", "dog", "a"}, {"1", "2", "3", "4", "5"}};
  Run(*Scripts(rc::gen::weightedOneOf<Operation>(
      {{1, DocumentOperations(vocabulary)}, {3, QueryOperations(vocabulary)}})));
}

// About as many records as are copied before the first flush, and changes that wait for one.
RC_GTEST_PROP(EnginePropertiesTest, CopiesLargeIndexesAsTheModelDoes, ()) {
  Script script;
  script.steps.push_back(*FillOperation(rc::gen::inRange(985, 1003)));
  for (int i = 0; i < 3; ++i) script.steps.push_back(*DocumentOperations(PlainVocabulary()));
  for (const Operation& step : CopyAndCompare()) script.steps.push_back(step);
  Run(script);
}

// The counter stands just before the last code.
RC_GTEST_PROP(EnginePropertiesTest, FillsUpAsTheModelDoes, ()) {
  const auto counters = rc::gen::map(rc::gen::inRange(65533u, 65536u), [](unsigned code) {
    return Records{{"g-code", kestan_tests::Units({code})}};
  });
  Run(*Scripts(rc::gen::weightedOneOf<Operation>({{1, PlantOperation(counters)},
                                                  {12, DocumentOperations(PlainVocabulary())},
                                                  {3, LifecycleOperations()}})));
}

}  // namespace
}  // namespace kestan_model
