// SPDX-License-Identifier: GPL-3.0-or-later
// The files that make_corpus.py and draw_queries.py write.
#ifndef KESTAN_BENCH_PEERS_CORPUS_H_
#define KESTAN_BENCH_PEERS_CORPUS_H_

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "bench/peers/engine.h"

namespace kestan_bench {

// Reads documents one after the other, holding one at a time, so that the memory of a process that
// indexes is that of its engine.
class CorpusReader {
 public:
  // Ends the process if `path` cannot be read.
  explicit CorpusReader(const std::string& path);

  // Reads the next document. Returns false at the end.
  bool Next(std::string* name, std::string* text);

 private:
  struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };

  std::unique_ptr<std::FILE, CloseFile> file_;
};

// The name of a kind in the files, such as "near10".
const char* KindName(QueryKind kind);

// Reads the name of a kind. Ends the process if there is no such kind.
QueryKind KindNamed(const std::string& name);

// Reads all queries of a file. Ends the process if `path` cannot be read.
std::vector<Query> ReadQueries(const std::string& path);

}  // namespace kestan_bench

#endif  // KESTAN_BENCH_PEERS_CORPUS_H_
