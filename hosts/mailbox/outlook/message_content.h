// A message as the file formats know it: what .msg and .tnef files are written from.
#pragma once

#include <memory>

#include "hosts/mailbox/formats/message_content.h"
#include "hosts/mailbox/outlook/message.h"

namespace quillfile::mailbox {

// Everything but the flags. Attachments are read from the message, which they keep alive, when they are
// written; messages in the message are opened, down to formats::kMaxDepth. Throws what reading the message
// throws.
formats::MessageContent messageContent(const std::shared_ptr<const Message>& message);

}  // namespace quillfile::mailbox
