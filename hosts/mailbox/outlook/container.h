// Containers: parts that hold attachments of their own. "winmail.dat" (TNEF) is one.
#pragma once

#include <memory>

#include "hosts/mailbox/outlook/attachment_source.h"

namespace quillfile::mailbox {

// What is inside the part; none when the part is no container, or one that cannot be opened, has nothing in
// it or is larger than 48 MB: then the part is an attachment like others. `number` is the place of the first
// of them among the message's attachments, from 1. Messages inside become mail, with the bytes that an import
// would give them.
AttachmentSources containedIn(const std::shared_ptr<const Message>& message, mime::PartIndex part,
                              std::int32_t number);

}  // namespace quillfile::mailbox
