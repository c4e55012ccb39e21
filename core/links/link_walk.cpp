#include "core/links/link_walk.h"

#include <algorithm>

#include "core/links/link_note.h"

namespace quillfile {

bool LinkWalk::next() {
  // Where nothing got shorter the walk goes on behind the link; position 0, from a link that points to
  // nothing, is not made good: the search ends on it.
  const bool shorter = cut_ > grown_;
  if (shorter && position_ > 0) position_ = std::max(searchedFrom_, position_ - cut_);
  searchedFrom_ = position_;
  cut_ = grown_ = 0;
  return links_.CheckForLink(body(), position_, format_, fileName_, fieldStyle_);
}

void LinkWalk::read(BodyKind kind, std::unique_ptr<WorkingCopy> body) {
  const Position before = length();
  const bool isTheSame = body->text().data() == body_->text().data();  // lent once more
  if (!isTheSame) {
    clear_ = 1;
    notes_.reset();
  }
  body_ = std::move(body);
  if (kind == kind_) {
    grown_ += std::max<Position>(0, length() - before);
    return;
  }
  kind_ = kind;
  position_ = searchedFrom_ = 1;
  cut_ = grown_ = 0;
}

void LinkWalk::replace(Position begin, Position end, TextView replacement) {
  change(begin, end, replacement);
  notes_.reset();
}

void LinkWalk::change(Position begin, Position end, TextView replacement) {
  const Position before = length();
  body_->replace(begin, end, replacement);
  cut_ += std::max<Position>(0, before - length());
  // What now stands together may make a phrase.
  clear_ = std::max<Position>(1, std::min(clear_, begin - static_cast<Position>(link_note::phrase.size())));
}

Position LinkWalk::firstPhrase() {
  const auto found = links_.findUnbrokenPhrase(body(), clear_);
  return clear_ = found > 0 ? found : length() + 1;
}

void LinkWalk::eraseAll(TextView note, TextView behind, Position exact) {
  if (!notes_) notes_.emplace(links_.letters(), body());
  const auto size = static_cast<Position>(note.size());
  const auto tail = from(note, size - exact + 1);
  Position gone = 0;
  for (auto place : notes_->places(body(), note)) {
    place.begin -= gone;
    const auto end = place.begin + size;
    if (middle(body(), end - exact, exact) != tail || !startsWith(from(body(), end), behind)) continue;
    const auto all = size + static_cast<Position>(behind.size());
    change(place.begin, place.begin + all, u"");
    gone += all;
    if (notes_ && !notes_->cut(place, all, body())) notes_.reset();
  }
}

void LinkWalk::eraseNote() {
  const auto [begin, end] =
      links_.noteToErase(body(), format_, firstPhrase()).value_or(Stretch{1, length() + 1});
  replace(begin, end, u"");
}

}  // namespace quillfile
