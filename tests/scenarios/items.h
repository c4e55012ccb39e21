// Items that scenarios have in common.
#pragma once

#include "tests/scenarios/scenario.h"

namespace quillfile {

inline const ItemData plainMail{.subject = u"Invoices", .body = u"See the file."};
inline const ItemData htmlMail{
    .subject = u"Invoices", .format = u"HTML", .htmlBody = u"<html><body>See the file.</body></html>"};
inline const ItemData rtfMail{
    .subject = u"Invoices", .format = u"RTF", .body = u"abc", .rtfBody = u"{\\rtf1 abc}"};

inline const AttachmentData pdf{.fileName = u"a.pdf", .displayName = u"a.pdf", .content = "a"};
inline const AttachmentData xls{.fileName = u"b.xls", .displayName = u"b.xls", .content = "bb"};

// One item with attachments.
inline auto one(const ItemData& item, const std::vector<AttachmentData>& attachments) {
  return [=](Stage& stage) { stage.add(item, attachments); };
}

// A mail whose attachments were saved as these files, and linked.
ItemData notedMail(const Stage& stage, TextView subject, const Text& format, const std::vector<Text>& files);

}  // namespace quillfile
