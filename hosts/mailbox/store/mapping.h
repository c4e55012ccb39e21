// Mapping: the bytes of an open file, mapped read-only. Where a page cannot be had any more (another program
// has cut the file short, the disk fails), its bytes read as zeros instead of stopping the program with
// SIGBUS, and the mapping says so from then on. The first mapping of a process takes over that signal; one
// that is about no mapping goes to whoever had it before. Mappings may be made, read and given up on any
// thread, each by one at a time.
#pragma once

#include <atomic>
#include <cstddef>
#include <string_view>

namespace quillfile::mailbox {

class Mapping {
 public:
  // The first `size` bytes (more than 0) of `file`, which need not stay open. Throws Failure; `path` is for
  // its sentence.
  Mapping(int file, std::size_t size, std::string_view path);
  ~Mapping();
  Mapping(const Mapping&) = delete;
  Mapping& operator=(const Mapping&) = delete;

  std::string_view bytes() const { return {begin_, size_}; }
  // The caller is done with these bytes for now: they leave memory, and come back when looked at again.
  void forget(std::string_view range) const;
  // Whether every byte that was looked at so far was the file's.
  bool isWhole() const { return whole_; }

 private:
  friend bool replaceLostPage(const void* address);

  char* begin_ = nullptr;
  std::size_t size_;
  std::atomic<bool> whole_ = true;  // the signal clears it in the middle of a read
  Mapping* next_ = nullptr;         // of all mappings
};

}  // namespace quillfile::mailbox
