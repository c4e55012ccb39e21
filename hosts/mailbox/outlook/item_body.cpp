#include "hosts/mailbox/outlook/item_body.h"

#include "hosts/mailbox/outlook/plain_text.h"
#include "hosts/mailbox/outlook/rtf_letters.h"
#include "hosts/mailbox/services/failure.h"

namespace quillfile::mailbox {
namespace {

// The links of `before` that `after` has no more.
Links lost(const std::vector<Text>& before, const std::vector<Text>& after) {
  Links links{before.begin(), before.end()};
  for (const auto& link : after) links.erase(link);
  return links;
}

// Whether two texts differ in nothing but `ends`.
bool sameBut(TextView ends, TextView a, TextView b) {
  const auto passOver = [&](TextView& text) {
    while (startsWith(text, ends)) text.remove_prefix(ends.size());
  };
  for (;;) {
    passOver(a), passOver(b);
    if (a.empty() || b.empty()) return a.empty() && b.empty();
    if (a.front() != b.front()) return false;
    a.remove_prefix(1), b.remove_prefix(1);
  }
}

// Notes are looked for in the text that rich text shows: one that was written where it shows nothing (a
// destination that readers pass over, left open) would never be found again.
void requireNewNotesShown(const TextChange& rtf) {
  const auto notes = [](TextView text) { return linksInPlainText(text).size(); };
  const auto before = notes(rtf.original()), after = notes(rtf.current());
  if (after > before && notes(rtfToText(rtf.current())) < notes(rtfToText(rtf.original())) + (after - before))
    throw failure(
        "Could not write a link into the message's text: the rich text shows nothing in that place");
}

// Takes the notes out of the original anew, with what came with them, where nothing else was changed.
template <class Hunks>
void takeOut(TextChange& change, TextView ends, Hunks&& hunksOf) {
  Text original = change.original();
  const auto gone = lost(linksInPlainText(original), linksInPlainText(change.current()));
  if (gone.empty()) return;
  const auto hunks = hunksOf(original, gone);
  TextChange clean{std::move(original), hunks};
  if (sameBut(ends, change.current(), clean.current())) change = std::move(clean);
}

}  // namespace

TextView ItemBodies::format() const {
  if (message_->layout().html != mime::noPart) return u"HTML";
  return message_->layout().rtf != mime::noPart ? u"RTF" : u"TEXT";
}

mime::PartIndex ItemBodies::part(BodyKind kind) const {
  const auto& layout = message_->layout();
  return kind == BodyKind::html ? layout.html : kind == BodyKind::rtf ? layout.rtf : layout.plain;
}

BodyText ItemBodies::read(mime::PartIndex part) const {
  auto text = bodyText(message_->tree(), part);
  message_->requireAsOpened();
  giveBack(part);
  return text;
}

// The part's bytes, which may be mapped.
void ItemBodies::giveBack(mime::PartIndex part) const {
  if (part == mime::noPart) return;
  const auto range = message_->tree()[part].body;
  if (const auto behind = message_->behind(range)) behind(range.size());
}

ItemBodies::Body& ItemBodies::body(BodyKind kind) {
  if (const auto known = bodies_.find(kind); known != bodies_.end()) return known->second;
  const auto at = part(kind);
  auto [text, doubt] = at == mime::noPart ? BodyText{} : read(at);
  if (kind == BodyKind::rtf) text = rtfUnescaped(text);
  return bodies_.emplace(kind, Body{TextChange{std::move(text)}, doubt}).first->second;
}

// A plain body that the message has not.
bool ItemBodies::isMade(BodyKind kind) {
  return kind == BodyKind::plain && part(kind) == mime::noPart && format() != u"TEXT" &&
         !body(kind).change.changed();
}

// The rich text as it is written, with hunks of what it shows worked in.
Text ItemBodies::rtfDocument(const std::vector<Hunk>& changes) const {
  const auto rtf = read(part(BodyKind::rtf)).text;
  return applied(rtf, rtfHunks(rtf, changes));
}

Text ItemBodies::text(BodyKind kind) {
  if (!isMade(kind)) return Text{body(kind).change.current()};
  if (format() == u"HTML") return htmlToText(withPlainNotes(body(BodyKind::html).change.current()));
  return rtfToText(rtfDocument(body(BodyKind::rtf).change.hunks()));
}

Text ItemBodies::take(BodyKind kind) {
  if (isMade(kind) || body(kind).change.changed()) return text(kind);
  return std::move(bodies_.extract(kind).mapped().change).release();
}

void ItemBodies::set(BodyKind kind, TextView text) {
  auto& change = body(kind).change;
  const bool endsInBrace = kind == BodyKind::rtf && text.ends_with(u'}');
  if (endsInBrace)
    change.set(Text{text}.append(behindDocument(change.current())));
  else
    change.set(text);
}

TextChange* ItemBodies::own(BodyKind kind) { return isMade(kind) ? nullptr : &body(kind).change; }

bool ItemBodies::isChanged(BodyKind kind) const {
  const auto known = bodies_.find(kind);
  return known != bodies_.end() && known->second.change.changed();
}

bool ItemBodies::changed() const {
  return isChanged(BodyKind::html) || isChanged(BodyKind::rtf) || isChanged(BodyKind::plain);
}

mime::Doubt ItemBodies::doubt() {
  for (const auto kind : {BodyKind::html, BodyKind::rtf, BodyKind::plain}) {
    const auto at = part(kind);
    if (at == mime::noPart) continue;
    const auto encoding = message_->tree()[at].encoding;
    const bool keepsStrays =
        encoding == mime::Encoding::identity || encoding == mime::Encoding::quoted_printable;
    if (!keepsStrays && !body(kind).doubt.empty()) return body(kind).doubt;
  }
  return {};
}

void ItemBodies::dropBlankLinesOfNotes() {
  if (format() == u"TEXT") {
    takeOut(body(BodyKind::plain).change, u"\r\n", notesToDrop);
  } else if (format() == u"RTF") {
    takeOut(body(BodyKind::rtf).change, u"\\par\r\n", rtfNotesToDrop);
  } else {
    // A body that holds nothing but the frame which the module made for its notes was empty.
    auto& change = body(BodyKind::html).change;
    const bool empty = change.current() == u"<Body></Body>";
    if (empty && startsWith(change.original(), u"<Body><p>Attachment saved to")) change.set(u"");
  }
}

NotesChange ItemBodies::notesChange(BodyKind kind) const {
  const auto& change = bodies_.at(kind).change;
  if (kind == BodyKind::html) return notesChangeInHtml(change);
  return notesChangeInText(rtfToText(rtfDocument({})), rtfToText(rtfDocument(change.hunks())));
}

void ItemBodies::apply(mime::Edit& edit, std::vector<Splice>& splices) {
  const bool alternative = part(BodyKind::plain) != mime::noPart && !isChanged(BodyKind::plain);
  const auto shown = format() == u"HTML" ? BodyKind::html : BodyKind::rtf;
  for (const auto kind : {BodyKind::html, BodyKind::rtf, BodyKind::plain}) {
    if (!isChanged(kind)) continue;
    const bool isFollowed = alternative && kind == shown && format() != u"TEXT";
    const auto notes = isFollowed ? notesChange(kind) : NotesChange{};
    apply(kind, bodies_.at(kind), edit, splices);
    bodies_.erase(kind);
    giveBack(part(kind));
    if (isFollowed) follow(body(BodyKind::plain).change, notes);
  }
}

void ItemBodies::apply(BodyKind kind, const Body& body, mime::Edit& edit,
                       std::vector<Splice>& splices) const {
  const auto at = part(kind);
  if (at == mime::noPart) {
    if (kind == BodyKind::rtf) throw failure("Could not write a rich-text body: the message has none");
    edit.addBody(kind == BodyKind::html ? mime::BodyFormat::html : mime::BodyFormat::plain,
                 body.change.current());
    return;
  }
  // What rich text shows is another text than the one that is written.
  std::optional<TextChange> written;
  if (kind == BodyKind::rtf) {
    auto rtf = rtfDocument({});
    const auto hunks = rtfHunks(rtf, body.change.hunks());
    written.emplace(std::move(rtf), hunks);
    requireNewNotesShown(*written);
  }
  const TextChange& change = written ? *written : body.change;
  if (auto changes = bodySplices(message_->tree(), at, change)) {
    splices.insert(splices.end(), std::make_move_iterator(changes->begin()),
                   std::make_move_iterator(changes->end()));
    return;
  }
  if (!body.doubt.empty()) throw failure("Could not write the message's text: " + toUtf8(body.doubt));
  edit.setText(at, change.current());
}

}  // namespace quillfile::mailbox
