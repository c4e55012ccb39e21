// LinkWalk: a walk from link to link through a body out of which notes are cut on the way.
//
// A position that CheckForLink answers belongs to the text that it searched. When text is cut out, the walk
// goes back by as much, never behind the place where its last search began: so it cannot jump over a note
// that stood close to the one just cut. It ends, because each turn has made the body shorter or has moved
// forward in it.
#pragma once

#include <memory>

#include "core/links/note_index.h"
#include "core/links/quillfile_extended.h"
#include "core/platform/item.h"

namespace quillfile {

class LinkWalk {
 public:
  LinkWalk(QuillfileExtended& links, TextView format, bool fieldStyle, BodyKind kind,
           std::unique_ptr<WorkingCopy> body)
      : links_(links), format_(format), fieldStyle_(fieldStyle), kind_(kind), body_(std::move(body)) {}

  // Goes to the next link; false when there is none.
  bool next();

  const Text& fileName() const { return fileName_; }  // of the link it stands at
  TextView body() const { return body_->text(); }     // until it is changed or read
  Position position() const { return position_; }     // where it goes on

  // The body was read anew. One of another kind than before is another text: the walk begins again in it.
  void read(BodyKind kind, std::unique_ptr<WorkingCopy> body);
  void replace(Position begin, Position end, TextView replacement);
  // Takes the note out that EraseString would; where that finds none, the body becomes empty.
  void eraseNote();
  // Takes the plain note `note`, with `behind` right behind it, out wherever it stands in the body now: in
  // whatever letter case, but for its last `exact` units.
  void eraseAll(TextView note, TextView behind, Position exact);
  void write() { body_->write(); }

 private:
  Position length() const { return static_cast<Position>(body().size()); }
  // Where the first unbroken phrase of a note stands in the body; behind its end when there is none. What was
  // searched for it once is not searched again.
  Position firstPhrase();
  void change(Position begin, Position end, TextView replacement);

  QuillfileExtended& links_;
  Text format_;
  bool fieldStyle_;
  BodyKind kind_;
  std::unique_ptr<WorkingCopy> body_;
  Text fileName_;
  Position position_ = 1;
  Position searchedFrom_ = 1;
  Position cut_ = 0;                // since the last search
  Position clear_ = 1;              // no unbroken phrase begins before
  Position grown_ = 0;              // by being read anew: where what was written was not kept as it was
  std::optional<NoteIndex> notes_;  // of the body as it is; made when it is needed
};

}  // namespace quillfile
