// The bytes of a message without its containers: what was inside stands in their place.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "hosts/mailbox/formats/message_content.h"
#include "hosts/mailbox/outlook/message.h"
#include "hosts/mailbox/services/content.h"

namespace quillfile::mailbox {

struct Container {
  mime::PartIndex part = 0;
  std::unique_ptr<const Scratch> bytes;  // decoded; what `content` refers to
  formats::MessageContent content = {};  // prepared
  std::vector<Text> lost = {};           // what is not carried over, a sentence each
};

// Makes what was inside ready for a mail of parts: names and types as attachments of mail have them, the
// bodies that readers of mail show (the page that an RTF body was made from; a plain text beside an RTF
// body). False when there is nothing inside.
bool prepare(formats::MessageContent& content);

// Writes the message. Nothing of it but its containers, and the header fields about a container that is the
// whole message, is left out. Equal messages give equal bytes.
void writeOpened(const Message& message, std::vector<Container> containers, const Sink& sink);

}  // namespace quillfile::mailbox
