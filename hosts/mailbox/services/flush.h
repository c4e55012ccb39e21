// Flush: one request to the disk for many files and folders together. Batch gathers what is to be flushed,
// runs the flush, and asks for each whether it got there.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

namespace quillfile::mailbox {

class Flush {
 public:
  // A file whose bytes, or a folder whose names, must be durable. `descriptor` stays open until run() has
  // returned.
  void add(int descriptor);
  bool empty() const { return wanted_.empty(); }

  // Returns when everything that was added is durable or has failed. Uses one syncfs for each file system
  // that many were added of, and fsync for each where they are few, or to find out which one has failed. Safe
  // to call on another thread than add() and error().
  void run();

  // 0 when that descriptor's file is durable, else the error.
  int error(int descriptor) const;

 private:
  std::vector<int> wanted_;
  std::map<int, int> errors_;  // by descriptor
};

}  // namespace quillfile::mailbox
