// SPDX-License-Identifier: GPL-3.0-or-later
// A second, naive statement of what the engine does, to be compared with it: maps, strings and
// loops, with no thought of speed and nothing taken from the library.
#ifndef KESTAN_TESTS_MODEL_MODEL_H_
#define KESTAN_TESTS_MODEL_MODEL_H_

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "tests/model/store.h"

namespace kestan_model {

// Text that an engine hands out. Comparing it compares everything that a host can see of it.
struct Text {
  bool is_null = false;
  bool in_buffer = false;  // lies in the scratch buffer, rather than being a constant
  std::string bytes;
};

// One document of a result set.
struct Hit {
  std::uint32_t score = 0;
  std::vector<unsigned> positions;
};
using ResultSet = std::map<unsigned, Hit>;  // by document code

// What outlives an index and an engine.
struct Process {
  std::uint32_t buffer_size = 0;
  int next_id = 1;
  std::map<int, ResultSet> results;
  std::uint32_t now = 0;  // the time, in seconds
  std::string said;       // on the standard error stream
};

class Model {
 public:
  Model(Process& process, Disk& disk, const KeyOrder& order)
      : process_(process), disk_(disk), store_(disk, order, process.said) {}

  // ---- lifecycle.cc ----
  int OpenIndex(const std::string& path, int mode);
  int CloseIndex();
  int FlushIndex();
  int CopyIndexTo(const std::string& path);
  unsigned long Options() const { return flags_; }
  void GetOptions();
  int PutOptions();
  int SetOptionFlag(std::uint32_t flags);
  int UnsetOptionFlag(std::uint32_t flags);

  // ---- side_records.cc; `family` is "u-", "s-" or "t-" ----
  Text GetSideRecord(const std::string& family, const std::string& name);
  int PutSideRecord(const std::string& family, const std::string& name, const std::string& text);
  int DelSideRecord(const std::string& family, const std::string& name);
  int DBPutWords(const std::string& name, const std::string& words);
  Text DBGetWords(const std::string& name);

  // ---- indexing.cc ----
  Text AddDocumentWords(const std::string& name, const std::string& text);
  int RemoveDocumentWords(const std::string& name);
  int MoveDocumentWords(const std::string& oldname, const std::string& newname);
  std::uint32_t DocumentTimestamp(const std::string& name);
  int ShrinkIndex();

  // ---- query.cc ----
  int QueryWord(const std::string& word);
  int QueryAnd(int first, int second, int distance);
  int QueryOr(int first, int second);
  int QueryNegate(int id);
  void FreeQueryResult(int id) { process_.results.erase(id); }

  // ---- listing.cc ----
  Text QueryResults(int id);
  Text CommonWords(double low, double high);
  Text ListDocuments();

  // Whether the call would end the process, or is one that a host must not make.
  bool MustNotAdd() const;
  bool MustNotNegate() const { return store_.Peek("g-code") == nullptr; }

  // How many pairs of positions QueryAnd would try. A hundred thousand take it a second.
  std::size_t CountPairs(int first, int second) const;

 private:
  bool PositionsKept() const { return (flags_ & 1) == 0; }
  std::vector<unsigned> DeletedCodes();
  unsigned TakeCode();
  void AppendPosting(const std::string& word, unsigned code, const std::vector<unsigned>& positions,
                     class Lines* new_words);
  void PurgePostings(const std::set<unsigned>& codes);
  int Register(const ResultSet& result);
  const ResultSet* Find(int id) const;
  Text WordsBetween(std::uint32_t lower, std::uint32_t upper);

  // Calls `visit` for every record and flushes after every `cadence` records, the first time after
  // `first` records.
  void WalkAndFlush(unsigned first, unsigned cadence,
                    const std::function<void(const std::string&, const Value&)>& visit);

  Process& process_;
  Disk& disk_;
  Store store_;
  Value avail_codes_;  // null while closed
  std::uint32_t flags_ = 0;
};

// Lines that grow in the scratch buffer.
class Lines {
 public:
  explicit Lines(Process& process);

  // Adds `line` and a line feed; the buffer is doubled if less than `room` bytes are left.
  void Add(const std::string& line, std::size_t room);

  Text Finish() const { return {false, true, text_}; }

 private:
  Process& process_;
  std::string text_;
};

inline Text Null() { return {true, false, ""}; }
inline Text ConstantEmpty() { return {false, false, ""}; }

// Whether `key` names something else than a word.
inline bool IsSystemKey(std::string_view key) { return key.size() > 2 && key[1] == '-'; }

// White space between words, whatever the locale.
inline bool IsBlank(char byte) { return byte == ' ' || (byte >= '\t' && byte <= '\r'); }

// How a word list is stored, and what is read back from a record; the latter may grow the buffer.
std::string EncodeWords(const std::string& words);
std::string DecodeWords(const std::string& record, std::uint32_t* buffer_size);

}  // namespace kestan_model

#endif  // KESTAN_TESTS_MODEL_MODEL_H_
