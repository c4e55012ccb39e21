// Attachments of an item, by the item itself or through the mail-helper's wrapper. Every call may throw
// Failure.
#pragma once

#include <cstdint>
#include <optional>

#include "core/platform/reference.h"
#include "core/text/text.h"

namespace quillfile {

enum class AttachmentType : std::int32_t { by_value = 1, by_reference = 4, embedded_item = 5, ole = 6 };

// What became of a removal. A host declines when it cannot be sure that nothing would be lost: the attachment
// stays, and the host has reported why. That is no failure.
enum class Removal { removed, declined };

class Attachment {
 public:
  virtual ~Attachment() = default;
  virtual Text typeName() = 0;      // the object's own type name, "Attachment"
  virtual std::int32_t type() = 0;  // an AttachmentType, or a number that the mail client has added since
  virtual Text fileName() = 0;      // one clean path component, possibly empty
  virtual Text displayName() = 0;
  virtual std::int64_t size() = 0;  // bytes, decoded
  virtual void saveAsFile(TextView path) = 0;
  virtual Removal remove() = 0;  // Outlook's Delete
};

// What Attachments.Add is given.
struct NewAttachment {
  Text source;                         // a path
  std::optional<AttachmentType> type;  // none: the default, by value
  std::optional<Position> position;    // in the body; none: anywhere. May be 0 or below, as computed
  Text displayName;
};

class Attachments {
 public:
  virtual ~Attachments() = default;
  virtual std::int32_t count() = 0;
  virtual Ref<Attachment> item(std::int32_t index) = 0;  // from 1
  virtual void add(const NewAttachment& attachment) = 0;
};

}  // namespace quillfile
