// Rewrite: a message with its item's changes worked in, ready for the batch.
#pragma once

#include <functional>
#include <memory>
#include <string_view>
#include <vector>

#include "hosts/mailbox/outlook/item_body.h"
#include "hosts/mailbox/outlook/item_changes.h"
#include "hosts/mailbox/services/batch.h"

namespace quillfile::mailbox {

struct Rewrite {
  Content content;                              // the whole new message
  std::function<bool(const MessageFile&)> check;  // of the new message as read back
  std::vector<RemovedAttachment> removed;
};

// `removedBefore`: what the message's own header tells of parts that went earlier. Throws Failure when a
// change cannot be written without touching what is in doubt.
Rewrite rewrite(const std::shared_ptr<const Message>& message, ItemBodies& bodies, const ItemChanges& changes,
                const std::vector<RemovedPart>& removedBefore);

}  // namespace quillfile::mailbox
