// SPDX-License-Identifier: GPL-3.0-or-later
// A session with an index that calls every public method of the engine. The tests here make
// something fail in it, or end its process, at each point in turn.
#ifndef KESTAN_TESTS_FAULTS_SESSION_H_
#define KESTAN_TESTS_FAULTS_SESSION_H_

#include <cstddef>
#include <string>
#include <string_view>

namespace kestan_faults {

// What a session did, a line for each call. It takes no memory of its own and may lie in memory
// that processes share, so that it outlives the one that wrote it.
class Transcript {
 public:
  // Adds "WHAT: RESULT"; of a long result only the beginning is kept.
  void Add(std::string_view what, std::string_view result);
  void Add(std::string_view what, long result);

  std::string_view text() const { return {text_, size_}; }

  // Returns whether the call `what` has returned.
  bool Has(std::string_view what) const;

 private:
  void Append(std::string_view bytes);

  std::size_t size_ = 0;
  char text_[32768] = {};
};

// The files of a session, which are new ones.
struct SessionFiles {
  std::string index;
  std::string copy;
};

// Runs the whole session. At its end the index has no positions and holds the documents a.txt,
// c.txt, e.txt, f.txt, moved.txt and more0 to more4.
void RunSession(const SessionFiles& files, Transcript* transcript);

}  // namespace kestan_faults

#endif  // KESTAN_TESTS_FAULTS_SESSION_H_
