// A message as RFC 5322 and MIME bytes, for the mail store.
#pragma once

#include <string>
#include <vector>

#include "hosts/mailbox/formats/message_content.h"

namespace quillfile::formats {

// Writes the message. Its transport headers are kept where it has them, but for the fields that describe the
// body; those that are missing are made from what is known. Attachments are encoded on their way, so memory
// does not grow with them. Equal messages give equal bytes. Throws Failure when the messages are nested
// deeper than kMaxDepth.
void writeRfc5322(const MessageContent& message, const ByteSink& sink, std::string_view lineEnd = "\n");

// What a message loses on that way, in a sentence each; nothing for an ordinary mail that was read without
// doubt.
std::vector<Text> leftBehind(const ReadMessage& message);

}  // namespace quillfile::formats
