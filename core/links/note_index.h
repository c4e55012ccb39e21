// NoteIndex: where the plain notes of a body stand, by what they say. They are found in one pass, and their
// places stay known while notes are cut out. A note is whatever begins with "Attachment saved to <" and ends
// with the next ">".
#pragma once

#include <utility>
#include <vector>

#include "core/platform/letter_case.h"
#include "core/text/text.h"

namespace quillfile {

class NoteIndex {
 public:
  NoteIndex(LetterCase& letters, TextView body);

  struct Place {
    std::size_t number;  // of the note, in this index
    Position begin;      // in the body as it is now
  };
  // Where `body`, the one that this index is of, has the note `note` in whatever letter case; ascending.
  std::vector<Place> places(TextView body, TextView note) const;

  // The note at `place` was cut out of what is `body` now, with what may stand behind it: `length` units.
  // False when other notes may have been made or broken by that: the index is then worth nothing.
  bool cut(const Place& place, Position length, TextView body);

 private:
  struct Note {
    Position begin, end;  // in the body that the index was made from
    bool isCut = false;
  };
  using Key = std::size_t;
  Key keyOf(TextView note) const;
  bool isEntangled(std::size_t number) const;
  Position cutBefore(std::size_t number) const;

  LetterCase& letters_;
  std::vector<Note> notes_;
  std::vector<std::pair<Key, std::size_t>> byKey_;  // ascending
  std::vector<Position> cuts_;  // what was cut, as a tree of sums over the notes (Fenwick 1994)
};

}  // namespace quillfile
