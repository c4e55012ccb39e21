// A message as RFC 5322 and MIME bytes, for the mail store.
#pragma once

#include "hosts/mailbox/formats/message_content.h"

namespace quillfile::formats {

// Writes the message with line ends of LF or CR LF. Its transport headers are kept where it has them, but for
// the fields that describe the body; else they are made from what is known. Streams: attachments are encoded
// on their way. Equal messages give equal bytes. Throws what a source throws.
void writeRfc5322(const MessageContent& message, const ByteSink& sink, std::string_view lineEnd = "\n");

}  // namespace quillfile::formats
