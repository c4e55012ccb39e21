#include "hosts/mailbox/outlook/item_type.h"

namespace quillfile::mailbox {
namespace {

bool isInvitation(const mime::PartTree& tree, mime::PartIndex part) {
  const auto type = tree.type(part);
  if (!type.is("text/calendar")) return false;
  const auto method = mime::lowerCase(type.parameters.bytes("method").value_or(""));
  return method == "request" || method == "reply" || method == "cancel";
}

}  // namespace

Text itemType(const Message& message) {
  const auto& tree = message.tree();
  if (tree.type(0).is("multipart/report")) return u"ReportItem";
  for (mime::PartIndex part = 0; part < tree.size();) {
    if (isInvitation(tree, part)) return u"MeetingItem";
    part = tree[part].kind == mime::PartKind::message ? tree.after(part) : part + 1;
  }
  const auto header = message.header();
  const bool posted =
      header.field("Newsgroups") && !header.field("To") && !header.field("Cc") && !header.field("Bcc");
  return posted ? u"PostItem" : u"MailItem";
}

}  // namespace quillfile::mailbox
