// LinkWalk: a walk from link to link through a body out of which notes are cut on the way.
//
// A position that CheckForLink answers belongs to the text that it searched. When text is cut out, the walk
// goes back by as much, never behind the place where its last search began: so it cannot jump over a note
// that stood close to the one just cut. It ends, because each turn has made the body shorter or has moved
// forward in it.
#pragma once

#include "core/links/quillfile_extended.h"

namespace quillfile {

class LinkWalk {
 public:
  LinkWalk(QuillfileExtended& links, TextView format, bool fieldStyle, BodyKind kind, Text body)
      : links_(links), format_(format), fieldStyle_(fieldStyle), kind_(kind), body_(std::move(body)) {}

  // Goes to the next link; false when there is none.
  bool next();

  const Text& fileName() const { return fileName_; }  // of the link it stands at
  const Text& body() const { return body_; }
  Position position() const { return position_; }  // where it goes on

  // The body was read anew. One of another kind than before is another text: the walk begins again in it.
  void read(BodyKind kind, Text body);
  // Something was cut out of the body, or replaced in it.
  void change(Text body);

 private:
  Position length() const { return static_cast<Position>(body_.size()); }

  QuillfileExtended& links_;
  Text format_;
  bool fieldStyle_;
  BodyKind kind_;
  Text body_;
  Text fileName_;
  Position position_ = 1;
  Position searchedFrom_ = 1;
  Position cut_ = 0;    // since the last search
  Position grown_ = 0;  // by being read anew: where what was written was not kept as it was
};

}  // namespace quillfile
