#include "core/links/link_walk.h"

#include <algorithm>

namespace quillfile {

bool LinkWalk::next() {
  // Where nothing got shorter the walk goes on behind the link; position 0, from a link that points to
  // nothing, is not made good: the search ends on it.
  const bool shorter = cut_ > grown_;
  if (shorter && position_ > 0) position_ = std::max(searchedFrom_, position_ - cut_);
  searchedFrom_ = position_;
  cut_ = grown_ = 0;
  return links_.CheckForLink(body_, position_, format_, fileName_, fieldStyle_);
}

void LinkWalk::read(BodyKind kind, Text body) {
  const Position before = length();
  body_ = std::move(body);
  if (kind == kind_) {
    grown_ += std::max<Position>(0, length() - before);
    return;
  }
  kind_ = kind;
  position_ = searchedFrom_ = 1;
  cut_ = grown_ = 0;
}

void LinkWalk::change(Text body) {
  const Position before = length();
  body_ = std::move(body);
  cut_ += std::max<Position>(0, before - length());
}

}  // namespace quillfile
