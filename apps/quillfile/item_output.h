// An item, as `list` and `show` print it.
#pragma once

#include "apps/quillfile/output.h"
#include "hosts/mailbox/engine/session.h"

namespace quillfile::app {

// One entry of `list`: number, id, type, subject, sender, date, size, format and attachments.
Json itemJson(mailbox::MailboxItem& item, std::size_t number);

// How many attachments, and how large: "2 (48.3 KB)"; empty for none.
std::string attachmentsText(mailbox::MailboxItem& item);

}  // namespace quillfile::app
