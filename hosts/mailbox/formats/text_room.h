// TextRoom: how much text a reader keeps of one file. Bodies, names and other values are held in memory, as
// they stand in the file and, rich text, as it expands; what finds no room is left out, and doubted.
#pragma once

#include <cstddef>

namespace quillfile::formats {

class TextRoom {
 public:
  bool take(std::size_t bytes) {
    const bool fits = bytes <= left_;
    if (fits) left_ -= bytes;
    return fits;
  }
  std::size_t left() const { return left_; }

 private:
  std::size_t left_ = std::size_t{32} << 20;
};

}  // namespace quillfile::formats
