// The mail-helper library over this host's items: the safe item is the item itself, and the sender's type is
// SMTP.
#pragma once

#include <memory>

#include "core/platform/item.h"

namespace quillfile::mailbox {

class MailboxItem;

class MailboxSafeItem final : public SafeItem {
 public:
  explicit MailboxSafeItem(std::shared_ptr<MailboxItem> item) : item_(std::move(item)) {}

  Text subject() override;
  Text senderName() override;
  Ref<AddressEntry> sender() override;
  Text senderEmailAddress() override;
  Ref<Attachments> attachments() override;
  Text body(BodyKind kind) override;
  void setBody(BodyKind kind, TextView text) override;
  std::unique_ptr<WorkingCopy> workingCopy(BodyKind kind) override;  // the item's own text, lent
  void save() override;
  void saveAs(TextView path, SaveAsType type) override;

  const std::shared_ptr<MailboxItem>& item() const { return item_; }

 private:
  std::shared_ptr<MailboxItem> item_;
};

class MailboxMailHelper final : public MailHelper {
 public:
  Ref<SafeItem> wrap(const Ref<Item>& item) override;
  Text smtpAddress(const Ref<AddressEntry>& sender) override;
  void cleanUp() override {}
  Text bodyFormat(const Ref<Item>& item) override;
  Text bodyFormat(const Ref<SafeItem>& item) override;
};

}  // namespace quillfile::mailbox
