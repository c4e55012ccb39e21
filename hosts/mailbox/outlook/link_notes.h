// Link notes in plain text: the plain form of what the module writes into a body for each attachment that it
// saved. The HTML body is the one that the module reads and writes; a plain-text alternative beside it
// follows here.
#pragma once

#include <functional>
#include <set>
#include <vector>

#include "hosts/mailbox/outlook/text_change.h"

namespace quillfile::mailbox {

// Links as their notes have them, to be asked for by views too.
using Links = std::set<Text, std::less<>>;

// The links of a body's notes, in order: "file:///home/u/a.pdf".
std::vector<Text> linksInHtml(TextView html);
std::vector<Text> linksInPlainText(TextView text);

// A page with its notes in their plain form, ready to be made text.
Text withPlainNotes(TextView html);

// What goes with the notes of these links: in plain text the two line ends that came with each, in rich text
// the paragraph.
std::vector<Hunk> notesToDrop(TextView text, const Links& links);
std::vector<Hunk> rtfNotesToDrop(TextView rtf, const Links& links);

// Without the notes of these links, and without the two line ends that came with each.
Text withoutNotes(TextView text, const std::vector<Text>& links);

// What became of the notes of a body: the links of those that went and of those that came, and whether notes
// stand at the body's end.
struct NotesChange {
  std::vector<Text> went, came;
  bool atEnd = true;
};
NotesChange notesChangeInHtml(const TextChange& html);
NotesChange notesChangeInText(TextView before, TextView after);
// The plain text beside that body: a note that went there goes here, one that came there comes here.
void follow(TextChange& plain, const NotesChange& notes);

}  // namespace quillfile::mailbox
