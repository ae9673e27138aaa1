// SPDX-License-Identifier: GPL-3.0-or-later
// Errors as values.
#ifndef KESTAN_SEARCH_STATUS_H_
#define KESTAN_SEARCH_STATUS_H_

#include <cstddef>
#include <optional>
#include <string>
#include <utility>

namespace kestan::search {

enum class StatusCode {
  kOk,
  kNotFound,         // there is no such index or document
  kAlreadyExists,    // a document of that name exists
  kInvalidArgument,  // the caller asked for something that makes no sense
  kBusy,             // another process is writing the index
  kDamaged,          // a file of the index is missing, cut short, changed or contradicts another
  kVersion,          // the index was written by another version, or for another word size
  kSystem,           // the system refused a call
  kOutOfMemory,
  kInterrupted,   // the progress callback asked to stop
  kInvalidQuery,  // a query built by calls makes no sense, or the text of a strict search has a
                  // mistake
  kForked,        // this process has a copy of what the process opened that forked it
};

// What became of a call: success, or an error with a message for a person.
class [[nodiscard]] Status {
 public:
  // Success.
  Status() = default;

  // An error. `message` is one line without a line feed; `file` is what it is about, "" for none.
  Status(StatusCode code, std::string message, std::string file = "")
      : code_(code), message_(std::move(message)), file_(std::move(file)) {}

  // An error at the byte `column` of a query, counted from 0.
  static Status InQuery(std::string message, std::size_t column) {
    Status status(StatusCode::kInvalidQuery, std::move(message));
    status.column_ = column;
    return status;
  }

  // An error for which the system gave the reason `error`, an errno.
  static Status OfSystem(StatusCode code, int error, std::string message, std::string file) {
    Status status(code, std::move(message), std::move(file));
    status.system_error_ = error;
    return status;
  }

  bool ok() const { return code_ == StatusCode::kOk; }
  StatusCode code() const { return code_; }

  // "" for success. The names of files are in file(), not here.
  const std::string& message() const { return message_; }
  const std::string& file() const { return file_; }

  // Of kInvalidQuery: the byte of the query's text where the mistake is, counted from 0.
  std::optional<std::size_t> column() const { return column_; }

  // The errno for which the system refused a call; 0 if no call of the system's is the reason, as
  // where a library is missing. Errors of other codes than kSystem may have one: that of an index
  // that is not there is ENOENT.
  int system_error() const { return system_error_; }

  // Returns "FILE: MESSAGE", or the message alone where there is no file.
  std::string ToString() const { return file_.empty() ? message_ : file_ + ": " + message_; }

 private:
  StatusCode code_ = StatusCode::kOk;
  std::string message_;
  std::string file_;
  std::optional<std::size_t> column_;
  int system_error_ = 0;
};

// A value, or the error that took its place.
template <typename T>
class [[nodiscard]] Result {
 public:
  Result(T value) : value_(std::move(value)) {}          // NOLINT(google-explicit-constructor)
  Result(Status status) : status_(std::move(status)) {}  // NOLINT(google-explicit-constructor)

  bool ok() const { return value_.has_value(); }
  const Status& status() const { return status_; }

  // The value; there must be one.
  T& operator*() { return *value_; }
  const T& operator*() const { return *value_; }
  T* operator->() { return &*value_; }
  const T* operator->() const { return &*value_; }

 private:
  std::optional<T> value_;
  Status status_;
};

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_STATUS_H_
