// The header block of an imported message.
#pragma once

#include <string>
#include <string_view>

#include "hosts/mailbox/formats/message_content.h"

namespace quillfile::formats {

// Every field but those that describe the body, each ended by `lineEnd`; no blank line.
std::string headerBlock(const MessageContent& message, std::string_view lineEnd);

// A text that may stand in a header field as it is: without line ends and other controls.
std::string plainField(std::string_view value);

}  // namespace quillfile::formats
