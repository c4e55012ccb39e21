// ItemBodies: the bodies of an item as they are read and as they were changed.
#pragma once

#include <map>
#include <memory>
#include <optional>

#include "core/platform/item.h"
#include "hosts/mailbox/mime/edit.h"
#include "hosts/mailbox/outlook/body_part.h"
#include "hosts/mailbox/outlook/link_notes.h"
#include "hosts/mailbox/outlook/message.h"

namespace quillfile::mailbox {

class ItemBodies {
 public:
  explicit ItemBodies(std::shared_ptr<const Message> message) : message_(std::move(message)) {}

  // "HTML", "RTF", "TEXT"
  TextView format() const;
  // Decoded at the first call. The plain body of a message that has none is made from the one it has. In rich
  // text the characters that are written as control words ("\u8364?") are characters.
  Text text(BodyKind kind);
  // The same for whoever needs it once: no second copy of it is kept. What is asked for later is read anew.
  Text take(BodyKind kind);
  void set(BodyKind kind, TextView text);
  // The text of a body that is the message's own, not made: null for any other. Until the bodies go.
  TextChange* own(BodyKind kind);
  bool changed() const;
  // Why no body could be changed without harm; empty when every one can.
  mime::Doubt doubt();

  // Takes the blank lines out that notes have left behind in the plain text since `this` was read.
  void dropBlankLinesOfNotes();

  // Works the changes into an edit: as splices where that is possible. Throws Failure when a body is doubted
  // and could only be written anew. The bodies are given up one by one: to be called once, and last.
  void apply(mime::Edit& edit, std::vector<Splice>& splices);

 private:
  struct Body {
    TextChange change;
    mime::Doubt doubt;
  };
  mime::PartIndex part(BodyKind kind) const;
  Body& body(BodyKind kind);
  bool isMade(BodyKind kind);
  BodyText read(mime::PartIndex part) const;
  void giveBack(mime::PartIndex part) const;
  bool isChanged(BodyKind kind) const;
  Text rtfDocument(const std::vector<Hunk>& changes) const;
  NotesChange notesChange(BodyKind kind) const;
  void apply(BodyKind kind, const Body& body, mime::Edit& edit, std::vector<Splice>& splices) const;

  std::shared_ptr<const Message> message_;
  std::map<BodyKind, Body> bodies_;
};

}  // namespace quillfile::mailbox
