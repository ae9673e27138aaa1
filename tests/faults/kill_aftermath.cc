// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/faults/kill_aftermath.h"

#include <gdbm.h>
#include <kestan/kestan.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <sstream>

#include "tests/faults/system_call_session.h"

namespace kestan_faults {
namespace {

constexpr int kLaterDocuments = 20;

// Returns the lines of `text` without the first `skipped` words of each.
Names NamesIn(const char* text, int skipped) {
  Names names;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    std::istringstream words(line);
    std::string name;
    for (int i = 0; i <= skipped; ++i) words >> name;
    names.insert(name);
  }
  return names;
}

Names Common(const Names& left, const Names& right) {
  Names common;
  std::set_intersection(left.begin(), left.end(), right.begin(), right.end(),
                        std::inserter(common, common.end()));
  return common;
}

Names Ask(Kestan* engine, const Question& question) {
  const int first = engine->QueryWord(question.word.c_str());
  const int second = question.other.empty() ? -1 : engine->QueryWord(question.other.c_str());
  int asked = first;
  if (question.operation == '&') asked = engine->QueryAnd(first, second, 0);
  if (question.operation == '~') asked = engine->QueryAnd(first, second, 1);
  if (question.operation == '|') asked = engine->QueryOr(first, second);
  Names names = NamesIn(engine->QueryResults(asked), 1);
  for (const int id : {first, second, asked}) engine->FreeQueryResult(id);
  return names;
}

// Compares the index with `reference`, and notes the results with `when` after their names.
//   Returns  whether it is whole.
bool Compare(const std::string& index, const Reference& reference, const std::string& when,
             Transcript* transcript) {
  Kestan engine;
  if (engine.OpenIndex(index.c_str(), 0) != 0) return false;
  const Names listed = NamesIn(engine.ListDocuments(), 0);
  const auto missing = reference.documents.size() - Common(listed, reference.documents).size();
  const auto is_wrong = [&](const Question& question) {
    return Common(Ask(&engine, question), reference.documents) != question.answer;
  };
  const auto wrong =
      std::count_if(reference.questions.begin(), reference.questions.end(), is_wrong);
  engine.CommonWords(1, -1);
  transcript->Add("missing" + when, static_cast<long>(missing));
  transcript->Add("wrong" + when, static_cast<long>(wrong));
  return missing == 0 && wrong == 0;
}

// Adds documents with every word that the reference asks for.
void AddMore(const std::string& index, const Reference& reference) {
  Kestan engine;
  if (engine.OpenIndex(index.c_str(), 1) != 0) return;
  std::string words;
  for (const Question& question : reference.questions) words += question.word + " ";
  for (int i = 0; i < kLaterDocuments; ++i) {
    const std::string name = "later" + std::to_string(i);
    engine.AddDocumentWords(name.c_str(), (words + name).c_str());
  }
}

// Notes what gdbm says of a file.
void Diagnose(const std::string& index, Transcript* transcript) {
  GDBM_FILE file = gdbm_open(index.c_str(), 0, GDBM_READER, 0, nullptr);
  transcript->Add("error", file == nullptr ? static_cast<long>(gdbm_errno) : 0);
  if (file == nullptr) return;
  transcript->Add("needs recovery", gdbm_needs_recovery(file));
  gdbm_close(file);
}

// Has gdbm recover the file. It opens none that ends before its header says, so such a file is
// lengthened with zeros first.
void Recover(const std::string& index) {
  constexpr std::uintmax_t kMoreBytes = 65536;
  GDBM_FILE file = gdbm_open(index.c_str(), 0, GDBM_WRITER, 0, nullptr);
  if (file == nullptr) {
    std::error_code ignored;
    const auto bytes = std::filesystem::file_size(index, ignored);
    std::filesystem::resize_file(index, bytes + kMoreBytes, ignored);
    file = gdbm_open(index.c_str(), 0, GDBM_WRITER, 0, nullptr);
  }
  if (file == nullptr) return;
  gdbm_recover(file, nullptr, 0);
  gdbm_close(file);
}

Comparison ComparisonIn(const std::string& transcript, const std::string& when) {
  return {NumberIn(transcript, "missing" + when), NumberIn(transcript, "wrong" + when)};
}

}  // namespace

Reference SessionReference() {
  const Names all = {"a.txt", "c.txt", "e.txt", "f.txt"};
  const Names pair = {"e.txt", "f.txt"};
  return {all,
          {{"cat", "", ' ', all},
           {"seven", "", ' ', pair},
           {"the", "", ' ', {"a.txt", "c.txt"}},
           {"cat", "sat", '&', {"a.txt"}},
           {"cat", "one", '&', pair},
           {"birds", "mat", '|', {"a.txt", "c.txt"}}}};
}

Aftermath Examine(const std::string& index, const Reference& reference) {
  Aftermath aftermath;
  aftermath.outcome = RunInChild([&](Transcript* transcript) {
    Diagnose(index, transcript);
    const bool is_whole = Compare(index, reference, "", transcript);
    AddMore(index, reference);
    Compare(index, reference, " later", transcript);
    if (is_whole) return;
    Recover(index);
    Compare(index, reference, " repaired", transcript);
  });
  const std::string& transcript = aftermath.outcome.transcript;
  aftermath.error = NumberIn(transcript, "error");
  aftermath.needs_recovery = NumberIn(transcript, "needs recovery") == 1;
  aftermath.found = ComparisonIn(transcript, "");
  aftermath.later = ComparisonIn(transcript, " later");
  aftermath.repaired = ComparisonIn(transcript, " repaired");
  return aftermath;
}

}  // namespace kestan_faults
