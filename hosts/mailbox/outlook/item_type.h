// The type of an item, as the mail client names it.
#pragma once

#include "hosts/mailbox/outlook/message.h"

namespace quillfile::mailbox {

// "ReportItem" for a multipart/report, "MeetingItem" for a calendar of a request, reply or cancellation,
// "PostItem" for what has newsgroups and no recipients, else "MailItem".
Text itemType(const Message& message);

}  // namespace quillfile::mailbox
