// mbox files (RFC 4155 and its kin): many messages in one file, each after a line that begins "From ".
#pragma once

#include <string_view>
#include <vector>

#include "hosts/mailbox/formats/bytes.h"

namespace quillfile::formats {

struct MboxMessage {
  std::string_view bytes;  // the message, without its "From " line and the blank line that ends it
  bool quoted = true;      // its own lines that begin "From " were given a ">" in front
};

bool isMbox(std::string_view bytes);

// The messages in order; none when the bytes are no mbox. A Content-Length is believed where it leads to the
// next "From " line or the end (mboxcl, mboxcl2). Else a message ends before a blank line and a "From " line
// with a time. What stands before the first such line is passed over.
std::vector<MboxMessage> splitMbox(std::string_view bytes, const Forget& forget = {});

// The message with one ">" taken off each line of it that begins ">From ", ">>From " and so on (mboxrd). An
// mboxo file does not say whether such a line had its ">" from the beginning; most had not.
void writeMboxMessage(const MboxMessage& message, const ByteSink& sink, const Forget& forget = {});

}  // namespace quillfile::formats
