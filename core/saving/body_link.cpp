// UpdateEmailBody: the note that is left in an item's body for a saved attachment.
#include "core/saving/quillfile_routines.h"

namespace quillfile {
namespace {

constexpr TextView name = u"UpdateEmailBody";

Text htmlNote(TextView link) { return fill(u"<p>Attachment saved to <a href=\"{}\">{}</a></p>", link, link); }

Text plainNote(TextView link) { return fill(u"Attachment saved to <{}>", link); }

// At every body tag; a body without one gets the note at its very start or end. A tag with attributes does
// not count as one, and a tag that was found is written anew in its own spelling.
Text htmlWithNote(LetterCase& letters, TextView body, TextView note, bool atBottom) {
  const TextView tag = atBottom ? u"</Body>" : u"<Body>";
  const auto noted = atBottom ? Text{note}.append(tag) : Text{tag}.append(note);
  auto result = replaceAllIgnoringCase(letters, body, tag, noted);
  if (result.size() == body.size()) result.insert(atBottom ? result.size() : 0, note);
  return result;
}

// Before the last closing brace; none where there is no brace.
std::optional<Text> rtfWithNote(TextView body, TextView note) {
  const auto brace = findLast(body, u"}");
  if (brace == 0) return std::nullopt;
  return fill(u"{}\\par\r\n{}\\par}", left(body, brace - 1), replaceAll(note, u"\\", u"\\\\"));
}

Text plainWithNote(TextView body, TextView note, bool atBottom) {
  return atBottom ? fill(u"{}\r\n\r\n{}", body, note) : fill(u"{}\r\n\r\n{}", note, body);
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
      safe->setBody(BodyKind::plain, plainWithNote(safe->body(BodyKind::plain), note, atBottom));
    safe->save();
    ports_.trace(name, u"*** Body updated: {}", note);
    return true;
  };
  return guarded(body, [](const Failure&, const Step&) { return false; });
}

void QuillfileRoutines::noteInHtml(SafeItem& safe, TextView note, bool atBottom) {
  const auto body = safe.body(BodyKind::html);
  if (body.empty())
    state_.pendingHtmlLinks.append(note);
  else
    safe.setBody(BodyKind::html, htmlWithNote(ports_.letters, body, note, atBottom));
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
