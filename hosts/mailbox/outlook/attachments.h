// The attachments of an item. Indexes and counts change at once when one is removed or added, as in the mail
// client; the message follows when the item is saved and its event ends.
#pragma once

#include <memory>

#include "core/platform/attachment.h"
#include "hosts/mailbox/outlook/attachment_source.h"
#include "hosts/mailbox/services/saved_files.h"

namespace quillfile::mailbox {

class MailboxItem;

class MailboxAttachment final : public Attachment {
 public:
  MailboxAttachment(std::shared_ptr<MailboxItem> item, std::shared_ptr<const AttachmentSource> source)
      : item_(std::move(item)), source_(std::move(source)) {}

  Text typeName() override { return u"Attachment"; }
  std::int32_t type() override { return static_cast<std::int32_t>(source_->type()); }
  Text fileName() override { return source_->fileName(); }
  Text displayName() override { return source_->displayName(); }
  std::int64_t size() override { return source_->size(); }
  // Streams the decoded bytes into a file of the batch; it answers under `path` at once.
  void saveAsFile(TextView path) override;
  // Declines where anything is in doubt, see MailboxItem; the reason is told once for each item and event.
  Removal remove() override;

  const std::shared_ptr<const AttachmentSource>& source() const { return source_; }

 private:
  std::shared_ptr<MailboxItem> item_;
  std::shared_ptr<const AttachmentSource> source_;
};

class MailboxAttachments final : public Attachments {
 public:
  explicit MailboxAttachments(std::shared_ptr<MailboxItem> item) : item_(std::move(item)) {}
  std::int32_t count() override;
  Ref<Attachment> item(std::int32_t index) override;
  // By value, whatever the type; the position is not used. A file that the item once lost comes back as the
  // very part that it was.
  void add(const NewAttachment& attachment) override;

 private:
  std::shared_ptr<MailboxItem> item_;
};

}  // namespace quillfile::mailbox
