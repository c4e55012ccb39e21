// UpdateEmailBody: the note that is left in an item's body for a saved attachment.
#include "core/saving/quillfile_routines.h"

namespace quillfile {
namespace {

constexpr TextView name = u"UpdateEmailBody";

Position lengthOf(TextView text) { return static_cast<Position>(text.size()); }

// At the very end of a body, or at its start.
void putIn(WorkingCopy& body, TextView text, bool atEnd) {
  const auto at = atEnd ? lengthOf(body.text()) + 1 : 1;
  body.replace(at, at, text);
}

Text htmlNote(TextView link) { return fill(u"<p>Attachment saved to <a href=\"{}\">{}</a></p>", link, link); }

Text plainNote(TextView link) { return fill(u"Attachment saved to <{}>", link); }

// At every body tag; a body without one gets the note at its very start or end. A tag with attributes does
// not count as one, and a tag that was found is written anew in its own spelling.
void putIntoHtml(LetterCase& letters, WorkingCopy& body, TextView note, bool atBottom) {
  const TextView tag = atBottom ? u"</Body>" : u"<Body>";
  const auto noted = atBottom ? Text{note}.append(tag) : Text{tag}.append(note);
  const auto next = [&](Position start) { return findIgnoringCase(letters, body.text(), tag, start); };
  auto at = next(1);
  if (at == 0) return putIn(body, note, atBottom);
  for (; at > 0; at = next(at + lengthOf(noted))) body.replace(at, at + lengthOf(tag), noted);
}

// Before the last closing brace; none where there is no brace.
std::optional<Text> rtfWithNote(TextView body, TextView note) {
  const auto brace = findLast(body, u"}");
  if (brace == 0) return std::nullopt;
  return fill(u"{}\\par\r\n{}\\par}", left(body, brace - 1), replaceAll(note, u"\\", u"\\\\"));
}

}  // namespace

bool QuillfileRoutines::UpdateEmailBody(const Ref<Item>& item, TextView link) {
  const auto body = [&](Step&) -> bool {
    const auto format = ports_.mailHelper.bodyFormat(item);
    ports_.trace(name, u"Format: {}", format);
    const bool atBottom = ports_.settings.text(u"LinkLocation") == u"Bottom";
    const auto safe = ports_.mailHelper.wrap(item);
    const auto note = format == u"HTML" ? htmlNote(link) : plainNote(link);
    if (format == u"HTML")
      noteInHtml(*safe, note, atBottom);
    else if (format == u"RTF")
      noteInRtf(*safe, note);
    else
      noteInPlainText(*safe, note, atBottom);
    safe->save();
    ports_.trace(name, u"*** Body updated: {}", note);
    return true;
  };
  return guarded(body, [](const Failure&, const Step&) { return false; });
}

void QuillfileRoutines::noteInHtml(SafeItem& safe, TextView note, bool atBottom) {
  const auto body = safe.workingCopy(BodyKind::html);
  if (body->text().empty()) {
    state_.pendingHtmlLinks.append(note);
    return;
  }
  putIntoHtml(ports_.letters, *body, note, atBottom);
  body->write();
}

void QuillfileRoutines::noteInPlainText(SafeItem& safe, TextView note, bool atBottom) {
  const auto body = safe.workingCopy(BodyKind::plain);
  putIn(*body, atBottom ? fill(u"\r\n\r\n{}", note) : fill(u"{}\r\n\r\n", note), atBottom);
  body->write();
}

// A body without a closing brace is no rich text at all: the note becomes the whole plain body.
void QuillfileRoutines::noteInRtf(SafeItem& safe, TextView note) {
  const auto body = safe.body(BodyKind::rtf);
  ports_.trace(name, u"RAW RTF BEFORE: {}", body);
  const auto noted = rtfWithNote(body, note);
  if (!noted) return safe.setBody(BodyKind::plain, note);
  safe.setBody(BodyKind::rtf, *noted);
  ports_.trace(name, u"RAW RTF AFTER: {}", *noted);
}

}  // namespace quillfile
