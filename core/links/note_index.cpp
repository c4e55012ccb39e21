#include "core/links/note_index.h"

#include <algorithm>
#include <functional>

#include "core/links/link_note.h"

namespace quillfile {
namespace {

constexpr TextView opening = link_note::opening;
constexpr TextView ending = u">";

Position lengthOf(TextView text) { return static_cast<Position>(text.size()); }

}  // namespace

NoteIndex::NoteIndex(LetterCase& letters, TextView body) : letters_(letters) {
  const auto next = [&](Position start) { return findIgnoringCase(letters_, body, opening, start); };
  Position end = 0;  // behind the first ">" after the last opening
  for (auto begin = next(1); begin > 0; begin = next(begin + 1)) {
    const auto link = begin + lengthOf(opening);
    if (end <= link) end = find(body, ending, link) + 1;
    if (end == 1) break;  // nothing ends a note any more
    byKey_.emplace_back(keyOf(middle(body, begin, end - begin)), notes_.size());
    notes_.push_back({begin, end});
  }
  std::sort(byKey_.begin(), byKey_.end());
  cuts_.resize(notes_.size() + 1);
}

// Of a note's length and its last letters: a note may be as long as the body.
NoteIndex::Key NoteIndex::keyOf(TextView note) const {
  constexpr Position most = 256;
  const auto last = from(note, std::max<Position>(1, lengthOf(note) - most + 1));
  return std::hash<Text>{}(letters_.lower(last)) + note.size();
}

std::vector<NoteIndex::Place> NoteIndex::places(TextView body, TextView note) const {
  const Text wanted = letters_.lower(note);
  const auto key = keyOf(note);
  std::vector<Place> found;
  const auto first = std::lower_bound(byKey_.begin(), byKey_.end(), std::pair{key, std::size_t{0}});
  for (auto at = first; at != byKey_.end() && at->first == key; ++at) {
    const auto& known = notes_[at->second];
    const auto begin = known.begin - cutBefore(at->second);
    const bool same = !known.isCut && known.end - known.begin == lengthOf(note) &&
                      letters_.lower(middle(body, begin, lengthOf(note))) == wanted;
    if (same) found.push_back({at->second, begin});
  }
  return found;
}

bool NoteIndex::cut(const Place& place, Position length, TextView body) {
  if (isEntangled(place.number)) return false;
  // An opening across the seam is one that was not there.
  const auto reach = lengthOf(opening) - 1;
  const auto left = std::max<Position>(1, place.begin - reach);
  if (findIgnoringCase(letters_, middle(body, left, place.begin - left + reach), opening) > 0) return false;
  notes_[place.number].isCut = true;
  for (auto i = place.number + 1; i < cuts_.size(); i += i & -i) cuts_[i] += length;
  return true;
}

// Whether the note holds others, or others hold it: they share their ending.
bool NoteIndex::isEntangled(std::size_t number) const {
  return (number > 0 && notes_[number - 1].end == notes_[number].end) ||
         (number + 1 < notes_.size() && notes_[number + 1].end == notes_[number].end);
}

Position NoteIndex::cutBefore(std::size_t number) const {
  Position sum = 0;
  for (auto i = number; i > 0; i -= i & -i) sum += cuts_[i];
  return sum;
}

}  // namespace quillfile
