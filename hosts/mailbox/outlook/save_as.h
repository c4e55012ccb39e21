// Saving an item as a file: the message's own bytes, a text or a page that stands alone, or the formats of
// Outlook.
#pragma once

#include "core/platform/item.h"

namespace quillfile::mailbox {

class MailboxItem;

// Writes the file through the batch: it answers under `path` at once and is durable when the batch is. Throws
// Failure.
void saveAs(MailboxItem& item, TextView path, SaveAsType type);

}  // namespace quillfile::mailbox
