// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/hostile/file_session.h"

#include <kestan/kestan.h>
#include <sys/resource.h>

#include <climits>
#include <csignal>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/environment.h"

namespace kestan_hostile {
namespace {

using kestan_faults::Transcript;

#if defined(__SANITIZE_ADDRESS__)
constexpr bool kSanitised = true;
#elif defined(__has_feature)
constexpr bool kSanitised = __has_feature(address_sanitizer);
#else
constexpr bool kSanitised = false;
#endif

constexpr int kProcessorSeconds = kSanitised ? 8 : 2;
constexpr rlim_t kAddressBytes = 512 << 20;
constexpr rlim_t kFileBytes = 256 << 20;  // thousands of times what the index needs

std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

std::string TextOf(const char* text) { return text != nullptr ? text : ""; }

// Calls every method that only reads.
class Reader {
 public:
  explicit Reader(Kestan& engine) : engine_(engine) {}

  void ReadAll() {
    for (const std::string& word : LinesOf(engine_.CommonWords(0, -1))) Query(word);
    for (const std::string& name : LinesOf(engine_.ListDocuments())) ReadTextsOf(name);
    engine_.DBGetWords("stop");
    engine_.CommonWords(0.1, 5);
    engine_.FreeQueryResult(last_);
  }

 private:
  // Combines the documents of each word with those of the word before.
  void Query(const std::string& word) {
    const int id = engine_.QueryWord(word.c_str());
    List(engine_.QueryAnd(last_, id, 0));
    List(engine_.QueryAnd(last_, id, 5));
    List(engine_.QueryOr(last_, id));
    engine_.QueryResults(id);
    engine_.FreeQueryResult(last_);
    last_ = id;
  }

  void List(int id) {
    engine_.QueryResults(id);
    engine_.FreeQueryResult(id);
  }

  void ReadTextsOf(const std::string& name) {
    texts_ += TextOf(engine_.DBGetTitle(name.c_str()));
    texts_ += TextOf(engine_.DBGetSummary(name.c_str()));
    texts_ += TextOf(engine_.DBGetUser(name.c_str()));
    engine_.DocumentTimestamp(name.c_str());
  }

  Kestan& engine_;
  std::string texts_;
  int last_ = -1;
};

void Read(const std::string& path, Transcript* transcript) {
  Kestan engine;
  const int error = engine.OpenIndex(path.c_str(), 0);
  transcript->Add("open to read", error);
  if (error != 0) return;
  Reader(engine).ReadAll();
  transcript->Add("read", 0L);
  engine.FreeQueryResult(engine.QueryNegate(0));
  transcript->Add("close", engine.CloseIndex());
}

void Empty(const std::string& path, Transcript* transcript) {
  Kestan engine;
  if (engine.OpenIndex(path.c_str(), 1) != 0) return;
  Reader(engine).ReadAll();
  for (const std::string& name : LinesOf(engine.ListDocuments())) {
    engine.RemoveDocumentWords(name.c_str());
  }
  transcript->Add("removed", 0L);
  transcript->Add("shrink", engine.ShrinkIndex());
  transcript->Add("purge", engine.PurgeShortWords());
  engine.AddDocumentWords("last", "the last cat");
  engine.CopyIndexTo((path + ".copy").c_str());
  transcript->Add("close at last", engine.CloseIndex());
}

}  // namespace

void LimitThisProcess() {
  const int wanted = kestan_tests::NumberFromEnvironment("KESTAN_CHILD_SECONDS", kProcessorSeconds);
  const rlimit seconds{static_cast<rlim_t>(wanted), static_cast<rlim_t>(wanted)};
  setrlimit(RLIMIT_CPU, &seconds);
  const rlimit bytes{kFileBytes, kFileBytes};
  setrlimit(RLIMIT_FSIZE, &bytes);
  std::signal(SIGXFSZ, SIG_IGN);
  if (kSanitised) return;  // a sanitizer reserves addresses by the terabyte
  const rlimit addresses{kAddressBytes, kAddressBytes};
  setrlimit(RLIMIT_AS, &addresses);
}

kestan_faults::Outcome ReadInChild(const std::string& path) {
  return kestan_faults::RunInChild([&](Transcript* transcript) {
    LimitThisProcess();
    Read(path, transcript);
  });
}

kestan_faults::Outcome WriteInChild(const std::string& path) {
  const kestan_faults::SessionFiles files{path, path + ".copy"};
  return kestan_faults::RunInChild([&](Transcript* transcript) {
    LimitThisProcess();
    kestan_faults::RunSession(files, transcript);
    Empty(path, transcript);
  });
}

long MostKib(long base_kib, std::size_t file_bytes) {
  if (kSanitised) return LONG_MAX;
  const int spare_kib = kestan_tests::NumberFromEnvironment("KESTAN_CHILD_SPARE_KIB", 0);
  return base_kib + 64L * 1024 + 8 * static_cast<long>(file_bytes / 1024 + 1) + spare_kib;
}

std::string Complaint(const kestan_faults::Outcome& outcome, long most_kib) {
  if (!outcome.ended) return "did not end in time";
  if (outcome.signal != 0) return "was ended by signal " + std::to_string(outcome.signal);
  if (outcome.peak_kib > most_kib) {
    return "took " + std::to_string(outcome.peak_kib) + " KiB of " + std::to_string(most_kib);
  }
  const bool promised =
      outcome.exit_status == 1 && outcome.standard_error.find("(oops!)\n") != std::string::npos;
  if (outcome.exit_status == 0 || promised) return "";
  return "ended with status " + std::to_string(outcome.exit_status);
}

}  // namespace kestan_hostile
