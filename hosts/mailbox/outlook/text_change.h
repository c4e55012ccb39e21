// TextChange: a text that is changed step by step, and what in the end was changed: hunks of the original
// that were replaced. Everything between hunks is the original's, so that only the hunks have to be written.
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
  Text was = {};  // what stood there
  bool operator==(const Hunk&) const = default;
};

class TextChange {
 public:
  explicit TextChange(Text original) : text_(std::move(original)), originalSize_(text_.size()) {}
  // With these hunks, ascending, of which `was` need not be set.
  TextChange(Text original, const std::vector<Hunk>& hunks);

  Text original() const;  // put together
  Text release() &&;      // current(), for whoever takes it away
  TextView current() const { return TextView{text_}.substr(front_); }
  // Puts `with` in the place of what stands from index `begin` up to `end` of the current text. It costs what
  // it moves, which is the shorter side where the text gets shorter, and nothing else.
  void replace(std::size_t begin, std::size_t end, TextView with);
  // The text is `next` now. What differs from current() is found by its common beginning and end.
  void set(TextView next);
  bool changed() const { return !hunks_.empty(); }
  // Ascending; they neither overlap nor touch, and never part CR from LF nor the halves of a surrogate pair.
  const std::vector<Hunk>& hunks() const { return hunks_; }

 private:
  void record(std::size_t begin, std::size_t end, TextView with);
  void move(std::size_t begin, std::size_t end, TextView with);

  Text text_;              // from `front_` on
  std::size_t front_ = 0;  // units that are no more
  std::size_t originalSize_;
  std::vector<Hunk> hunks_;
};

// `text` with `hunks` of it replaced.
Text applied(TextView text, const std::vector<Hunk>& hunks);

}  // namespace quillfile::mailbox
