// TNEF ([MS-OXTNEF]): a message as a stream of attributes; "winmail.dat" is one.
#pragma once

#include <optional>
#include <string_view>

#include "hosts/mailbox/formats/message_content.h"
#include "hosts/mailbox/formats/text_room.h"

namespace quillfile::formats {

// Writes the message in one pass; memory does not grow with its attachments. Equal messages give equal bytes.
// Throws Failure when a part is too large (4 GB), the messages are nested too deeply (kMaxDepth) or a source
// does not keep to its size.
void writeTnef(const MessageContent& message, const ByteSink& sink);

// Nothing when the bytes are no TNEF stream. Attachments are ranges of the bytes given, which must outlive
// them, and `forget`; names are as the stream has them. A stream that is cut off or damaged gives what can be
// read, and doubts.
std::optional<ReadMessage> readTnef(std::string_view bytes, const Forget& forget = {});
// The same, of one stream among several that share the room for texts.
std::optional<ReadMessage> readTnef(std::string_view bytes, const Forget& forget, TextRoom& room);

}  // namespace quillfile::formats
