#include "hosts/mailbox/outlook/message.h"

#include <algorithm>
#include <optional>

#include "hosts/mailbox/mime/embedded.h"
#include "hosts/mailbox/mime/protection.h"
#include "hosts/mailbox/mime/scan.h"
#include "hosts/mailbox/services/failure.h"

namespace quillfile::mailbox {
namespace {

using mime::PartIndex;
using mime::PartKind;

// Finds out which parts a mail reader shows as the message's text.
class BodySearch {
 public:
  BodySearch(const mime::PartTree& tree, Layout& layout) : tree_(tree), layout_(layout) {}

  // Takes the body that `part` holds; false when it holds none.
  bool take(PartIndex part) {
    if (tree_[part].kind == PartKind::leaf) return takeLeaf(part);
    if (tree_[part].kind == PartKind::message) return false;
    const auto type = tree_.type(part);
    const auto children = tree_.children(part);
    if (type.is("multipart/alternative")) return takeAlternatives(children);
    if (type.is("multipart/related")) return takeRoot(type, children);
    return std::any_of(children.begin(), children.end(), [&](PartIndex child) { return take(child); });
  }

 private:
  bool takeLeaf(PartIndex part) {
    const auto header = tree_.header(part);
    if (mime::disposition(header).word == "attachment" || !mime::givenName(header).empty()) return false;
    const auto type = tree_.type(part);
    PartIndex* const place = type.is("text/html")         ? &layout_.html
                             : type.is("text/rtf")        ? &layout_.rtf
                             : type.is("application/rtf") ? &layout_.rtf
                             : type.is("text/plain")      ? &layout_.plain
                                                          : nullptr;
    if (place == nullptr || *place != mime::noPart) return false;
    *place = part;
    return true;
  }
  // Every form of the one text counts.
  bool takeAlternatives(const std::vector<PartIndex>& children) {
    bool found = false;
    for (const auto child : children) found = take(child) || found;
    return found;
  }
  // The root is the part that `start` names, else the first (RFC 2387 3.2). Some programs put the pictures in
  // front of the page and name no start: where the root is no text and not what `type` says either, readers
  // show the first page that there is.
  bool takeRoot(const mime::ContentType& type, const std::vector<PartIndex>& children) {
    if (children.empty()) return false;
    const auto root = rootOf(type, children);
    if (take(root)) return true;
    const auto [main, sub, parameters] = tree_.type(root);
    if (mime::lowerCase(type.parameters.bytes("type").value_or("")) == main + "/" + sub) return false;
    return std::any_of(children.begin(), children.end(),
                       [&](PartIndex child) { return child != root && takePage(child); });
  }
  PartIndex rootOf(const mime::ContentType& type, const std::vector<PartIndex>& children) const {
    const auto start = type.parameters.bytes("start").value_or("");
    const auto named = std::find_if(children.begin(), children.end(), [&](PartIndex child) {
      return !start.empty() && tree_.header(child).value("Content-ID") == start;
    });
    return named == children.end() ? children.front() : *named;
  }
  // Takes what `part` holds if an HTML body is among it.
  bool takePage(PartIndex part) {
    Layout taken = layout_;
    if (!BodySearch{tree_, taken}.take(part) || taken.html == layout_.html) return false;
    layout_ = taken;
    return true;
  }

  const mime::PartTree& tree_;
  Layout& layout_;
};

bool isExternal(const mime::ContentType& type) { return type.is("message/external-body"); }

// Whether a person would call the part an attachment.
bool isAttachment(const mime::PartTree& tree, const Layout& layout, PartIndex part) {
  if (mime::isMessage(tree, part)) return true;
  if (tree[part].kind == PartKind::multipart || layout.isBody(part)) return false;
  const auto header = tree.header(part);
  if (mime::disposition(header).word == "attachment" || !mime::givenName(header).empty()) return true;
  const auto type = tree.type(part);
  if (isExternal(type) || type.type == "image" || type.type == "audio" || type.type == "video") return true;
  if (part == 0) return type.type != "text" && type.type != "multipart" && type.type != "message";
  if (type.type == "multipart") return true;  // one that was not opened: what is in it is seen nowhere else
  const auto parent = tree.type(tree[part].parent);
  if (type.type == "application") return parent.is("multipart/mixed") || parent.is("multipart/related");
  return parent.is("multipart/related") && header.field("Content-ID");  // what an HTML body shows
}

Text reasonToKeep(const mime::PartTree& tree) {
  switch (mime::protection(tree)) {
    case mime::Protection::is_signed:
      return u"the message is signed, and a change would break its signature";
    case mime::Protection::encrypted:
      return u"the message is encrypted, and a change would break it";
    case mime::Protection::none:
      break;
  }
  if (!tree.doubt().empty()) return fill(u"the message cannot be relied upon: {}", tree.doubt());
  for (const auto& part : tree.parts())
    if (part.kind != PartKind::leaf && !part.doubt.empty())
      return fill(u"the message cannot be relied upon: {}", part.doubt);
  return {};
}

// Of bytes that `owner` has mapped.
template <class Owner>
mime::Behind behindIn(const Owner& owner, mime::Range range) {
  return mime::behindOf(range.of(owner.bytes()), [&owner](std::string_view bytes) { owner.forget(bytes); });
}

}  // namespace

Layout layoutOf(const mime::PartTree& tree) {
  Layout layout;
  BodySearch{tree, layout}.take(0);
  for (PartIndex part = 0; part < tree.size();) {
    if (isAttachment(tree, layout, part)) layout.attachments.push_back(part);
    part = tree[part].kind == PartKind::message ? tree.after(part) : part + 1;
  }
  return layout;
}

Message::Message(std::shared_ptr<MessageFile> file)
    : file_(std::move(file)),
      tree_(mime::scan(file_->bytes(), behind({0, file_->bytes().size()}))),
      layout_(layoutOf(tree_)) {
  requireAsOpened();
}

Message::Message(std::string bytes)
    : own_(std::move(bytes)), tree_(mime::scan(own_)), layout_(layoutOf(tree_)) {}

Message::Message(std::unique_ptr<const Scratch> bytes)
    : scratch_(std::move(bytes)),
      tree_(mime::scan(scratch_->bytes(), behind({0, scratch_->bytes().size()}))),
      layout_(layoutOf(tree_)) {}

Message::Message(std::shared_ptr<const Message> outer, mime::Range range)
    : outer_(std::move(outer)),
      offset_(range.begin),
      tree_(mime::scan(range.of(outer_->bytes()))),
      layout_(layoutOf(tree_)) {}

Message::Message(std::shared_ptr<const Message> stored, std::unique_ptr<const Scratch> bytes, Text reason)
    : scratch_(std::move(bytes)),
      stored_(std::move(stored)),
      tree_(mime::scan(scratch_->bytes(), behind({0, scratch_->bytes().size()}))),
      layout_(layoutOf(tree_)) {
  whyNothingMayGo_ = stored_->whyNothingMayGo();
  if (whyNothingMayGo_->empty()) whyNothingMayGo_ = std::move(reason);
  if (whyNothingMayGo_->empty()) whyNothingMayGo_ = reasonToKeep(tree_);
}

void Message::requireAsOpened() const {
  if (outer_) outer_->requireAsOpened();
  if (stored_) stored_->requireAsOpened();
  if (scratch_ && !scratch_->isWhole())
    throw failure("The message could not be read whole: the disk with the temporary files fails");
  if (file_ && !file_->isAsOpened())
    throw failure("The message could not be read whole: another program has changed its file meanwhile");
}

mime::Behind Message::behind(mime::Range range) const {
  if (outer_) return outer_->behind({offset_ + range.begin, offset_ + range.end});
  if (file_) return behindIn(*file_, range);
  if (scratch_) return behindIn(*scratch_, range);
  return {};
}

const Text& Message::whyNothingMayGo() const {
  if (!whyNothingMayGo_) whyNothingMayGo_ = reasonToKeep(tree_);
  return *whyNothingMayGo_;
}

}  // namespace quillfile::mailbox
