// Message files, ".msg" ([MS-OXMSG]): a message as storages and streams of a compound file.
#pragma once

#include <optional>
#include <string_view>

#include "hosts/mailbox/formats/message_content.h"

namespace quillfile::formats {

// Writes the message in one pass; memory does not grow with its attachments. Equal messages give equal bytes.
// Throws Failure when it is too large (2 GB), nested too deeply (kMaxDepth) or a source does not keep to its
// size.
void writeMessageFile(const MessageContent& message, const ByteSink& sink);

// Nothing when the bytes are no message file. They and `forget` must outlive the sources of the
// attachments. Attachments
// that are OLE objects come as compound files of their own. Named properties are passed over.
std::optional<ReadMessage> readMessageFile(std::string_view bytes, const Forget& forget = {});

}  // namespace quillfile::formats
