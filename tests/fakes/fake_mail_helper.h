// The mail-helper library over FakeItem.
#pragma once

#include <memory>
#include <utility>

#include "tests/fakes/fake_item.h"

namespace quillfile {

class FakeAddressEntry : public AddressEntry {
 public:
  explicit FakeAddressEntry(std::shared_ptr<FakeItem> owner) : item(std::move(owner)) {}
  Text type() override { return item->record.asked(u"AddressEntry.type"), item->data.senderType; }
  std::shared_ptr<FakeItem> item;
};

class FakeSafeItem : public SafeItem {
 public:
  explicit FakeSafeItem(std::shared_ptr<FakeItem> item) : item_(std::move(item)), record_(item_->record) {}

  Text subject() override { return record_.asked(u"SafeItem.subject"), item_->data.subject; }
  Text senderName() override { return record_.asked(u"SafeItem.senderName"), item_->data.senderName; }
  Ref<AddressEntry> sender() override {
    record_.asked(u"SafeItem.sender");
    return item_->data.hasSender ? std::make_shared<FakeAddressEntry>(item_) : nullptr;
  }
  Text senderEmailAddress() override {
    return record_.asked(u"SafeItem.senderEmailAddress"), item_->data.senderAddress;
  }
  Ref<Attachments> attachments() override { return item_->attachments(); }
  Text body(BodyKind kind) override { return record_.asked(u"SafeItem.body"), text(kind); }
  void setBody(BodyKind kind, TextView value) override {
    constexpr TextView names[] = {u"Body", u"HTMLBody", u"RTFBody"};
    record_.asked(u"SafeItem.setBody");
    record_.did(fill(u"{}: {} = {}", item_->data.label, names[static_cast<std::size_t>(kind)], value));
    text(kind) = value;
  }
  void save() override {
    record_.asked(u"SafeItem.save");
    record_.did(fill(u"{}: save by the wrapper", item_->data.label));
  }
  void saveAs(TextView path, SaveAsType type) override {
    record_.asked(u"SafeItem.saveAs");
    item_->files.write(path, toUtf8(item_->data.label));
    record_.did(fill(u"{}: save as {} of type {}", item_->data.label, path, static_cast<std::int32_t>(type)));
  }

  const std::shared_ptr<FakeItem>& item() const { return item_; }

 private:
  Text& text(BodyKind kind) {
    auto& data = item_->data;
    return kind == BodyKind::plain ? data.body : kind == BodyKind::html ? data.htmlBody : data.rtfBody;
  }

  std::shared_ptr<FakeItem> item_;
  Recorder& record_;
};

class FakeMailHelper : public MailHelper {
 public:
  explicit FakeMailHelper(Recorder& record) : record_(record) {}

  Ref<SafeItem> wrap(const Ref<Item>& item) override {
    record_.asked(u"MailHelper.wrap");
    return std::make_shared<FakeSafeItem>(std::dynamic_pointer_cast<FakeItem>(item));
  }
  Text smtpAddress(const Ref<AddressEntry>& sender) override {
    record_.asked(u"MailHelper.smtpAddress");
    return dynamic_cast<FakeAddressEntry&>(*sender).item->data.smtpAddress;
  }
  void cleanUp() override {
    record_.asked(u"MailHelper.cleanUp");
    record_.did(u"mail helper: clean up");
  }
  Text bodyFormat(const Ref<Item>& item) override {
    record_.asked(u"MailHelper.bodyFormat");
    return dynamic_cast<FakeItem&>(*item).data.format;
  }
  Text bodyFormat(const Ref<SafeItem>& item) override {
    record_.asked(u"MailHelper.bodyFormat");
    return dynamic_cast<FakeSafeItem&>(*item).item()->data.format;
  }

 private:
  Recorder& record_;
};

}  // namespace quillfile
