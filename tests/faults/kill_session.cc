// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/faults/kill_session.h"

#include <kestan/kestan.h>

namespace kestan_faults {
namespace {

constexpr int kDocumentsPerRound = 5;
constexpr int kWordsOfItsOwn = 12;
constexpr int kRoundsToShrink = 4;
constexpr int kRoundsToReopen = 5;
constexpr int kRoundOfFlag = 6;

std::string Numbered(const char* word, int number) { return word + std::to_string(number); }

std::string NameOf(int round, int item) {
  return Numbered("round", round) + "/" + Numbered("item", item);
}

// The words that the reference asks for, and some that only make the index grow.
std::string TextOf(int round, int item) {
  std::string text = "kept " + Numbered("round", round) + " and " + Numbered("item", item);
  for (int i = 0; i < kWordsOfItsOwn; ++i) {
    text += " " + Numbered("word", (round * kDocumentsPerRound + item) * kWordsOfItsOwn + i);
  }
  return text;
}

class LongSession {
 public:
  LongSession(const std::string& index, Transcript* transcript)
      : index_(index), transcript_(transcript) {}

  void Run() {
    transcript_->Add("open", engine_.OpenIndex(index_.c_str(), 1));
    for (int round = 0; round < kRounds; ++round) RunRound(round);
    transcript_->Add("close", engine_.CloseIndex());
  }

 private:
  void RunRound(int round) {
    AddDocuments(round);
    ReplaceAndRemove(round);
    transcript_->Add("add", round);
    engine_.FlushIndex();
    transcript_->Add(Numbered("flushed ", round), round);
    if (round % kRoundsToShrink == kRoundsToShrink - 1) {
      transcript_->Add("shrink", engine_.ShrinkIndex());
    }
    if (round % kRoundsToReopen == kRoundsToReopen - 1) Reopen();
    if (round == kRoundOfFlag) transcript_->Add("flag", engine_.SetOptionFlag(2));
  }

  void AddDocuments(int round) {
    for (int item = 0; item < kDocumentsPerRound; ++item) {
      const std::string name = NameOf(round, item);
      engine_.AddDocumentWords(name.c_str(), TextOf(round, item).c_str());
      engine_.DBPutTitle(name.c_str(), "A title");
    }
  }

  void ReplaceAndRemove(int round) {
    const std::string text = "changing kept " + Numbered("round", round);
    engine_.AddDocumentWords("replaced", text.c_str());
    engine_.AddDocumentWords("removed", text.c_str());
    engine_.RemoveDocumentWords("removed");
    engine_.AddDocumentWords("moved", text.c_str());
    engine_.MoveDocumentWords("moved", Numbered("moved", round).c_str());
  }

  void Reopen() {
    engine_.CloseIndex();
    transcript_->Add("reopen", engine_.OpenIndex(index_.c_str(), 1));
  }

  const std::string& index_;
  Transcript* const transcript_;
  Kestan engine_;
};

}  // namespace

void RunLongSession(const std::string& index, Transcript* transcript) {
  LongSession(index, transcript).Run();
}

int RoundsFlushed(std::string_view transcript) {
  int rounds = 0;
  while (transcript.find(Numbered("flushed ", rounds) + ":") != std::string_view::npos) ++rounds;
  return rounds;
}

Reference LongSessionReference(int rounds) {
  Reference reference;
  if (rounds == 0) return reference;
  Names& all = reference.documents;
  std::vector<Question>& questions = reference.questions;
  Names first_items;
  for (int round = 0; round < rounds; ++round) {
    Names names;
    for (int item = 0; item < kDocumentsPerRound; ++item) names.insert(NameOf(round, item));
    all.insert(names.begin(), names.end());
    first_items.insert(NameOf(round, 0));
    questions.push_back({Numbered("round", round), "", ' ', names});
    questions.push_back({"kept", Numbered("round", round), '~', names});
    questions.push_back({"item0", Numbered("round", round), '&', {NameOf(round, 0)}});
  }
  questions.push_back({"kept", "", ' ', all});
  questions.push_back({"kept", "item0", '&', first_items});
  questions.push_back({"round0", "kept", '|', all});
  questions.push_back({"kept", "item0", '~', {}});
  return reference;
}

}  // namespace kestan_faults
