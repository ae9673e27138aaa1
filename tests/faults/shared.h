// SPDX-License-Identifier: GPL-3.0-or-later
// Memory that a child process writes and its parent reads.
#ifndef KESTAN_TESTS_FAULTS_SHARED_H_
#define KESTAN_TESTS_FAULTS_SHARED_H_

#include <sys/mman.h>

#include <cstdlib>
#include <new>

namespace kestan_faults {

// A `Content`, which has no memory of its own, as it is when it begins.
template <typename Content>
class Shared {
 public:
  Shared()
      : memory_(mmap(nullptr, sizeof(Content), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS,
                     -1, 0)) {
    if (memory_ == MAP_FAILED) std::abort();
    content_ = new (memory_) Content;
  }
  ~Shared() { munmap(memory_, sizeof(Content)); }
  Shared(const Shared&) = delete;
  Shared& operator=(const Shared&) = delete;

  Content* get() const { return content_; }

 private:
  void* memory_;
  Content* content_;
};

}  // namespace kestan_faults

#endif  // KESTAN_TESTS_FAULTS_SHARED_H_
