#include "hosts/mailbox/outlook/safe_item.h"

#include "hosts/mailbox/outlook/item.h"
#include "hosts/mailbox/outlook/save_as.h"
#include "hosts/mailbox/services/failure.h"

namespace quillfile::mailbox {
namespace {

class SmtpEntry final : public AddressEntry {
 public:
  explicit SmtpEntry(Text address) : address_(std::move(address)) {}
  Text type() override { return u"SMTP"; }
  const Text& address() const { return address_; }

 private:
  Text address_;
};

// What is changed in it is changed in the item at once; on disk nothing changes before the item is saved.
class LentBody final : public WorkingCopy {
 public:
  LentBody(std::shared_ptr<MailboxItem> item, BodyKind kind) : item_(std::move(item)), kind_(kind) {}
  TextView text() const override { return item_->ownBody(kind_); }
  void replace(Position begin, Position end, TextView replacement) override {
    item_->replaceInBody(kind_, begin, end, replacement);
  }
  void write() override {}

 private:
  std::shared_ptr<MailboxItem> item_;
  BodyKind kind_;
};

template <class Own, class Port>
std::shared_ptr<Own> own(const Ref<Port>& object) {
  if (auto mine = std::dynamic_pointer_cast<Own>(object)) return mine;
  throw failure("The item is none of this mail store");
}

}  // namespace

Text MailboxSafeItem::subject() { return item_->subject(); }
Text MailboxSafeItem::senderName() { return item_->sender().name; }
Text MailboxSafeItem::senderEmailAddress() { return item_->sender().address; }
Ref<Attachments> MailboxSafeItem::attachments() { return item_->attachments(); }
Text MailboxSafeItem::body(BodyKind kind) { return item_->body(kind); }
void MailboxSafeItem::setBody(BodyKind kind, TextView text) { item_->setBody(kind, text); }
std::unique_ptr<WorkingCopy> MailboxSafeItem::workingCopy(BodyKind kind) {
  if (!item_->ownsBody(kind)) return SafeItem::workingCopy(kind);
  return std::make_unique<LentBody>(item_, kind);
}
void MailboxSafeItem::save() { item_->saveQuietly(); }
void MailboxSafeItem::saveAs(TextView path, SaveAsType type) { mailbox::saveAs(*item_, path, type); }

Ref<AddressEntry> MailboxSafeItem::sender() {
  auto address = item_->sender().address;
  return address.empty() ? nullptr : std::make_shared<SmtpEntry>(std::move(address));
}

Ref<SafeItem> MailboxMailHelper::wrap(const Ref<Item>& item) {
  return std::make_shared<MailboxSafeItem>(own<MailboxItem>(item));
}

Text MailboxMailHelper::smtpAddress(const Ref<AddressEntry>& sender) {
  const auto entry = std::dynamic_pointer_cast<SmtpEntry>(sender);
  return entry ? entry->address() : Text{};
}

Text MailboxMailHelper::bodyFormat(const Ref<Item>& item) { return own<MailboxItem>(item)->bodyFormat(); }

Text MailboxMailHelper::bodyFormat(const Ref<SafeItem>& item) {
  return own<MailboxSafeItem>(item)->item()->bodyFormat();
}

}  // namespace quillfile::mailbox
