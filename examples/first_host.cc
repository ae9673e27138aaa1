#include <kestan/kestan.h>

#include <cstdio>

int main() {
  Kestan engine;
  if (engine.OpenIndex("first.index", 1) != 0) return 1;
  engine.AddDocumentWords("roses.txt", "Roses are red");
  engine.AddDocumentWords("violets.txt", "Violets are blue and so are some roses");

  const int roses = engine.QueryWord("roses");
  const int are = engine.QueryWord("are");
  const int adjacent = engine.QueryAnd(roses, are, 1);
  std::printf("roses:\n%s", engine.QueryResults(roses));
  std::printf("roses next to are:\n%s", engine.QueryResults(adjacent));
  for (const int id : {roses, are, adjacent}) engine.FreeQueryResult(id);
  return engine.CloseIndex();
}
