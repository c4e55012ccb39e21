// Range: where some bytes of a message stand. Doubt: why what was read cannot be relied upon. Behind: how the
// owner of a mapped message learns which of its pages are no longer needed.
#pragma once

#include <cstddef>
#include <functional>
#include <string_view>

#include "core/text/text.h"

namespace quillfile::mime {

// Byte offsets into a message, from 0; `end` is one past the last byte.
struct Range {
  std::size_t begin = 0;
  std::size_t end = 0;

  std::size_t size() const { return end - begin; }
  bool empty() const { return begin == end; }
  bool contains(const Range& other) const { return begin <= other.begin && other.end <= end; }
  std::string_view of(std::string_view message) const { return message.substr(begin, end - begin); }
  bool operator==(const Range&) const = default;
};

// Why something is doubted, a sentence for the report; empty when there is no doubt. The text lives forever.
// What is doubted is still read and saved as well as can be, but never removed.
using Doubt = TextView;

// Takes the next bytes of a stream; they are valid during the call only. What it throws goes through.
using Sink = std::function<void(std::string_view)>;

// Called while bytes are read front to back, each `behindStep` bytes and at their end, with the number of
// bytes from the beginning of what is read that will not be looked at again soon: the owner of a mapping may
// drop their pages (MADV_DONTNEED). An empty function is not called.
using Behind = std::function<void(std::size_t)>;
inline constexpr std::size_t behindStep = std::size_t{4} << 20;

// The same, for readers that go to and fro: told which bytes will not be looked at again soon.
using Forget = std::function<void(std::string_view)>;

inline Behind behindOf(std::string_view bytes, const Forget& forget) {
  if (!forget) return {};
  return [bytes, forget](std::size_t read) { forget(bytes.substr(0, read)); };
}

// Tells `behind` how far a reader has come.
class Progress {
 public:
  explicit Progress(const Behind& behind) : behind_{behind} {}
  void reached(std::size_t offset) {
    if (offset < next_) return;
    next_ = offset + behindStep;
    if (behind_) behind_(offset);
  }
  void ended(std::size_t size) {
    if (behind_ && size > 0) behind_(size);
  }

 private:
  const Behind& behind_;
  std::size_t next_ = behindStep;
};

}  // namespace quillfile::mime
