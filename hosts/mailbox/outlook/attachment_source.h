// AttachmentSource: where an attachment's name, kind and bytes come from: a part of a message, or a file
// on disk.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "core/platform/attachment.h"
#include "hosts/mailbox/mime/edit.h"
#include "hosts/mailbox/outlook/message.h"
#include "hosts/mailbox/services/content.h"

namespace quillfile::mailbox {

class AttachmentSource {
 public:
  virtual ~AttachmentSource() = default;
  virtual AttachmentType type() const = 0;
  virtual Text fileName() const = 0;          // one clean path component, possibly empty
  virtual Text displayName() const = 0;       // what a person calls it
  virtual std::string mediaType() const = 0;  // "image/png", lower case
  virtual std::string contentId() const = 0;  // without angle brackets; empty when there is none
  virtual std::int64_t size() const = 0;      // bytes, decoded; counted at the first call, without a copy
  // The decoded bytes. It keeps alive what it reads from.
  virtual Content content() const = 0;
  // Why the bytes cannot be relied upon; empty when they can. Decodes once.
  virtual Text doubt() const = 0;
  // The part that it is, within the message that lists it; none when it is no part of its own.
  virtual std::optional<mime::PartIndex> part() const { return std::nullopt; }
};

using AttachmentSources = std::vector<std::shared_ptr<const AttachmentSource>>;

// The bytes of a part, decoded before anybody asked.
struct DecodedPart {
  mime::PartIndex part = 0;
  mime::DecodedBytes content;
  mime::Doubt doubt;
};
using DecodedParts = std::vector<DecodedPart>;  // by part

// Decodes the attachments of a message that are in base64 or quoted-printable.
DecodedParts decodedAttachments(const Message& message);

// A part of a message. `number` is its place among the message's attachments, from 1: an attachment without
// any name is called after it, "ATT00001". What was decoded of it is used once and not kept.
std::shared_ptr<const AttachmentSource> partSource(std::shared_ptr<const Message> message,
                                                   mime::PartIndex part, std::int32_t number,
                                                   std::optional<DecodedPart> decoded = {});

// What an attachment without any name is called: "ATT00001".
Text numberedName(std::int32_t number);

// A file on disk. `bytesAt` is where its bytes are now, which is not `path` while the file waits for its
// batch.
std::shared_ptr<const AttachmentSource> fileSource(Text path, std::string bytesAt, Text displayName);

// All attachments of a message; `decoded`: those of them that were decoded already.
AttachmentSources attachmentsOf(const std::shared_ptr<const Message>& message, DecodedParts decoded = {});

}  // namespace quillfile::mailbox
