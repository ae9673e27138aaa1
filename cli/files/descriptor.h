// SPDX-License-Identifier: GPL-3.0-or-later
// A file descriptor that closes itself.
#ifndef KESTAN_CLI_FILES_DESCRIPTOR_H_
#define KESTAN_CLI_FILES_DESCRIPTOR_H_

#include <unistd.h>

#include <utility>

namespace kestan_cli {

class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() { Close(); }
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }

  bool is_open() const { return number_ >= 0; }
  int number() const { return number_; }

  // Returns the descriptor, which the caller is to close.
  int Release() { return std::exchange(number_, -1); }

  // Closes it now.
  //   Returns  0, also if nothing was open; -1 with errno set if that fails.
  int Close() { return is_open() ? close(std::exchange(number_, -1)) : 0; }

 private:
  int number_ = -1;
};

}  // namespace kestan_cli

#endif  // KESTAN_CLI_FILES_DESCRIPTOR_H_
