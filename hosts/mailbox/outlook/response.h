// Responses: the forward of an item, and the reply to it, as new items that have not been sent.
#pragma once

#include <memory>

#include "core/platform/item.h"

namespace quillfile::mailbox {

class MailClient;
class MailboxItem;

// A forward carries the original's attachments; replies go to Reply-To or the sender, a reply to all to the
// other recipients too, the user's own addresses left out (RFC 5322 3.6.3). The original's text is quoted
// under its header block, as HTML where it is HTML.
std::shared_ptr<MailboxItem> makeResponse(MailboxItem& original, Response response, MailClient& client);

}  // namespace quillfile::mailbox
