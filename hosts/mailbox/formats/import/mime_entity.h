// A message's content as MIME entities.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "hosts/mailbox/formats/message_content.h"

namespace quillfile::formats {

// A MIME entity: its Content- fields (of a whole message: its header), each ended by a line end, and what
// writes its body. A body ends in a line end or nowhere; the boundary that follows brings its own. It refers
// to the message that it was made of, which must outlive it.
struct Entity {
  std::string fields;
  ByteSource body;
};

// Makes the entities of one message. Equal calls give equal bytes.
class EntityWriter {
 public:
  // `boundaries`: what every boundary begins with; a number follows. No line of base64 or quoted-printable
  // has
  // "=_" in it.
  explicit EntityWriter(std::string_view lineEnd, std::string_view boundaries = "=_quillfile_")
      : end_(lineEnd), stem_(boundaries) {}

  // The whole message: header, blank line, body. Throws Failure when messages are nested deeper than
  // kMaxDepth.
  Entity message(const MessageContent& message, int depth = 1);
  // Bodies and attachments: mixed( body, the other attachments ).
  Entity contents(const MessageContent& message, int depth = 1);
  // What a reader shows: related( alternative( bodies ), pictures of the HTML body ). A message without any
  // body has an empty text.
  Entity body(const MessageContent& message, int depth = 1);
  // Each attachment that `body` does not hold.
  std::vector<Entity> others(const MessageContent& message, int depth = 1);
  // A multipart where there is more than one part, else the part.
  Entity group(std::string_view subtype, std::vector<Entity> parts);

  std::string nextBoundary() { return stem_ + std::to_string(++boundaries_); }

 private:
  Entity text(std::string_view type, std::string_view charset, std::string_view bytes);
  std::vector<Entity> bodies(const MessageContent& message);
  ByteSource encoded(ByteSource source);
  std::string nameFields(const AttachmentContent& one, std::string_view type);
  Entity attachment(const AttachmentContent& one, int depth);
  Entity reference(const AttachmentContent& one);

  std::string end_, stem_;
  int boundaries_ = 0;
};

}  // namespace quillfile::formats
