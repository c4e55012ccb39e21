#include "hosts/mailbox/outlook/item_body.h"

#include "hosts/mailbox/outlook/link_notes.h"
#include "hosts/mailbox/outlook/plain_text.h"
#include "hosts/mailbox/outlook/rtf_letters.h"
#include "hosts/mailbox/services/failure.h"

namespace quillfile::mailbox {
namespace {

Text without(TextView text, TextView ends) { return replaceAll(text, ends, u""); }

// The links of `before` that `after` has no more.
std::vector<Text> lost(std::vector<Text> before, const std::vector<Text>& after) {
  for (const auto& link : after) std::erase(before, link);
  return before;
}

// `now`, or `clean` where the two differ in nothing but `ends`.
Text preferred(TextView now, TextView clean, TextView ends) {
  return Text{without(now, ends) == without(clean, ends) ? clean : now};
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

ItemBodies::Body& ItemBodies::body(BodyKind kind) {
  if (const auto known = bodies_.find(kind); known != bodies_.end()) return known->second;
  const auto at = part(kind);
  auto read = at == mime::noPart ? BodyText{} : bodyText(message_->tree(), at);
  message_->requireAsOpened();
  return bodies_.emplace(kind, Body{TextChange{std::move(read.text)}, read.doubt}).first->second;
}

Text ItemBodies::text(BodyKind kind) {
  const bool made = kind == BodyKind::plain && part(kind) == mime::noPart && !body(kind).change.changed();
  if (made && format() == u"HTML") return htmlToText(withPlainNotes(text(BodyKind::html)));
  if (made && format() == u"RTF") return rtfToText(body(BodyKind::rtf).change.current());
  const Text& current = body(kind).change.current();
  return kind == BodyKind::rtf ? rtfUnescaped(current) : current;
}

void ItemBodies::set(BodyKind kind, TextView text) {
  auto& change = body(kind).change;
  change.set(kind == BodyKind::rtf ? rtfChanged(change.current(), text) : Text{text});
}

bool ItemBodies::changed() const {
  for (const auto& [kind, body] : bodies_)
    if (body.change.changed()) return true;
  return false;
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
    auto& change = body(BodyKind::plain).change;
    const auto gone = lost(linksInPlainText(change.original()), linksInPlainText(change.current()));
    if (!gone.empty())
      change.set(preferred(change.current(), withoutNotes(change.original(), gone), u"\r\n"));
  } else if (format() == u"RTF") {
    auto& change = body(BodyKind::rtf).change;
    Text clean = change.original();
    for (const auto& link : lost(linksInPlainText(change.original()), linksInPlainText(change.current())))
      clean = replaceAll(clean, fill(u"\\par\r\nAttachment saved to <{}>\\par", link), u"");
    change.set(preferred(change.current(), clean, u"\\par\r\n"));
  } else {
    // A body that holds nothing but the frame which the module made for its notes was empty.
    auto& change = body(BodyKind::html).change;
    const bool framed = startsWith(change.original(), u"<Body><p>Attachment saved to");
    if (framed && change.current() == u"<Body></Body>") change.set(u"");
  }
}

void ItemBodies::apply(mime::Edit& edit, std::vector<Splice>& splices) {
  const bool alternative = part(BodyKind::plain) != mime::noPart && !body(BodyKind::plain).change.changed();
  if (alternative && format() != u"TEXT") {
    auto& plain = body(BodyKind::plain).change;
    const bool html = format() == u"HTML";
    const auto& change = body(html ? BodyKind::html : BodyKind::rtf).change;
    if (change.changed()) {
      plain.set(
          html ? followHtml(plain.original(), change.original(), change.current())
               : followText(plain.original(), rtfToText(change.original()), rtfToText(change.current())));
    }
  }
  for (auto& [kind, body] : bodies_)
    if (body.change.changed()) apply(kind, body, edit, splices);
}

void ItemBodies::apply(BodyKind kind, const Body& body, mime::Edit& edit, std::vector<Splice>& splices) {
  const auto at = part(kind);
  if (at == mime::noPart) {
    if (kind == BodyKind::rtf) throw failure("Could not write a rich-text body: the message has none");
    edit.addBody(kind == BodyKind::html ? mime::BodyFormat::html : mime::BodyFormat::plain,
                 body.change.current());
    return;
  }
  if (auto changes = bodySplices(message_->tree(), at, body.change)) {
    splices.insert(splices.end(), std::make_move_iterator(changes->begin()),
                   std::make_move_iterator(changes->end()));
    return;
  }
  if (!body.doubt.empty()) throw failure("Could not write the message's text: " + toUtf8(body.doubt));
  edit.setText(at, body.change.current());
}

}  // namespace quillfile::mailbox
