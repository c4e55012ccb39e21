// WorkingCopy: a body of an item in hand: read once, changed piece by piece, written back whole.
//
// A host that keeps the text itself can lend it: the copy is then the item's own text, a change of it costs
// no more than what moves, and writing it back is no work. Positions start at 1.
#pragma once

#include "core/text/text.h"

namespace quillfile {

class WorkingCopy {
 public:
  virtual ~WorkingCopy() = default;
  virtual TextView text() const = 0;  // until the next change of it or of the item
  // Puts `replacement` in the place of what stands from position `begin` up to `end`.
  virtual void replace(Position begin, Position end, TextView replacement) = 0;
  virtual void write() = 0;  // Body = text()
};

// One that is nobody's: writing it does nothing.
class LooseCopy : public WorkingCopy {
 public:
  explicit LooseCopy(Text text) : text_(std::move(text)) {}
  TextView text() const override { return text_; }
  void replace(Position begin, Position end, TextView replacement) override {
    text_ = Text{left(text_, begin - 1)}.append(replacement).append(from(text_, end));
  }
  void write() override {}

 private:
  Text text_;
};

}  // namespace quillfile
