// SPDX-License-Identifier: GPL-3.0-or-later
// Every chain of eight operators, each step of which the model answers alike.
#include <rapidcheck.h>

#include "tests/model/world.h"

namespace kestan_edges {
namespace {

using kestan_model::Engine;
using kestan_model::World;

constexpr int kDepth = 8;

class NestedQueriesTest : public testing::Test {
 protected:
  void SetUp() override {
    const std::string path = world_.Path("index");
    ASSERT_EQ(Engine().OpenIndex(path.c_str(), 1), 0);
    world_.model.OpenIndex(path, 1);
    Add("1", "cat dog cat bird");
    Add("2", "dog x x x x cat");
    Add("3", "bird cat");
    Add("4", "dog");
    Add("5", "nothing of all this");
    for (const char* word : {"cat", "dog", "bird"}) {
      words_.push_back(Kept(Engine().QueryWord(word), world_.model.QueryWord(word)));
    }
  }

  // Puts every operator on top of `id`, with another word each time, down to the full depth.
  void Nest(int id, int depth) {
    if (depth == kDepth || HasFailure()) return;
    const int word = words_[static_cast<std::size_t>(depth) % words_.size()];
    auto& engine = Engine();
    auto& model = world_.model;
    Go(engine.QueryAnd(id, word, 0), model.QueryAnd(id, word, 0), depth);
    Go(engine.QueryAnd(word, id, 1), model.QueryAnd(word, id, 1), depth);
    Go(engine.QueryOr(id, word), model.QueryOr(id, word), depth);
    Go(engine.QueryNegate(id), model.QueryNegate(id), depth);
  }

  std::vector<int> words_;
  int nodes_ = 0;

 private:
  void Add(const char* name, const char* text) {
    Engine().AddDocumentWords(name, text);
    world_.model.AddDocumentWords(name, text);
  }

  int Kept(int id, int expected) {
    EXPECT_EQ(id, expected);
    EXPECT_STREQ(Engine().QueryResults(id), world_.model.QueryResults(id).bytes.c_str());
    return id;
  }

  // Compares one result, nests on top of it, and frees it.
  void Go(int id, int expected, int depth) {
    ++nodes_;
    Nest(Kept(id, expected), depth + 1);
    Engine().FreeQueryResult(id);
    world_.model.FreeQueryResult(id);
  }

  World world_;
};

TEST_F(NestedQueriesTest, OperatorsToADepthOf8AnswerAsTheModelDoes) {
  Nest(words_[0], 0);
  EXPECT_EQ(nodes_, 87380);  // 4 + 4^2 + ... + 4^8
}

}  // namespace
}  // namespace kestan_edges
