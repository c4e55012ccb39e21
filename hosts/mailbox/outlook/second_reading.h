// The second reading of an attachment: by the decoder that shares nothing with the one that wrote the saved
// file. It is what the file is compared with before the attachment may leave its message.
#pragma once

#include <memory>

#include "hosts/mailbox/outlook/message.h"
#include "hosts/mailbox/services/content.h"

namespace quillfile::mailbox {

// The part's decoded bytes, a stretch at a time. It throws Failure when the part is not exactly as its
// encoding promises.
Content secondReading(std::shared_ptr<const Message> message, mime::PartIndex part);

}  // namespace quillfile::mailbox
