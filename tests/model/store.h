// SPDX-License-Identifier: GPL-3.0-or-later
// The files and the write-back cache, as far as anything of them shows.
#ifndef KESTAN_TESTS_MODEL_STORE_H_
#define KESTAN_TESTS_MODEL_STORE_H_

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace kestan_model {

using Records = std::map<std::string, std::string>;

// What the model knows of the machine's disk.
struct Disk {
  std::map<std::string, Records> files;  // by path
  std::set<std::string> no_such_folder;  // paths where no file can be made
};

// The value of a record, shared by the cache and whoever has fetched it.
struct Cell {
  std::string bytes;
  bool dirty = false;
};
using Value = std::shared_ptr<Cell>;

// Returns the order in which the keys of a file are visited. Only the file itself knows it.
using KeyOrder = std::function<std::vector<std::string>(const std::string& path)>;

// One file at a time with the cache in front of it.
class Store {
 public:
  // What would go to the standard error stream is added to `said`.
  Store(Disk& disk, KeyOrder order, std::string& said)
      : disk_(disk), order_(std::move(order)), said_(said) {}

  bool IsOpen() const { return !path_.empty(); }
  bool IsOpenOn(const std::string& path) const { return path_ == path; }

  bool Open(const std::string& path, bool writer);
  void Close();
  int Flush();
  int Shrink();

  // The value of `key`; null if there is none or no file is open.
  Value Get(const std::string& key);

  // Get() for the curious: says nothing and changes nothing.
  Value Peek(const std::string& key) const;

  // Both write through. Put() gives the record bytes of its own; Share() makes it share `value`.
  int Put(const std::string& key, const std::string& bytes);
  int Share(const std::string& key, const Value& value);

  int Del(const std::string& key);

  // Visits every record of the file; its value is held during the visit.
  void ForEach(const std::function<void(const std::string& key, const Value& value)>& visit);

 private:
  bool Refuses(const char* operation);
  int Write(const std::string& key, const std::string& bytes);
  void DropWhatNobodyHolds();

  Disk& disk_;
  KeyOrder order_;
  std::string& said_;
  std::string path_;  // empty: closed
  bool writer_ = false;
  std::map<std::string, Value> cache_;
};

}  // namespace kestan_model

#endif  // KESTAN_TESTS_MODEL_STORE_H_
