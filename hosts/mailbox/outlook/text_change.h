// TextChange: a text that is changed step by step, each time by being given whole, and what in the end was
// changed: hunks of the original that were replaced. Everything between hunks is the original's, so that only
// the hunks have to be written.
#pragma once

#include <cstddef>
#include <vector>

#include "core/text/text.h"

namespace quillfile::mailbox {

// Code units of the original from `begin` up to `end` (from 0) became `replacement`.
struct Hunk {
  std::size_t begin = 0;
  std::size_t end = 0;
  Text replacement;
  bool operator==(const Hunk&) const = default;
};

class TextChange {
 public:
  explicit TextChange(Text original);

  const Text& original() const { return original_; }
  const Text& current() const { return changed_ ? current_ : original_; }
  // The text is `next` now. What differs from current() is found by its common beginning and end, and never
  // parts CR from LF nor the halves of a surrogate pair.
  void set(TextView next);
  bool changed() const { return !hunks_.empty(); }
  // Ascending; they neither overlap nor touch.
  const std::vector<Hunk>& hunks() const { return hunks_; }

 private:
  void replace(std::size_t begin, std::size_t end, TextView text);

  Text original_;
  Text current_;
  bool changed_ = false;
  std::vector<Hunk> hunks_;
};

}  // namespace quillfile::mailbox
