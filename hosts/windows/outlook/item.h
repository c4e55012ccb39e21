// Outlook's items and their attachments.
#pragma once

#include "core/platform/item.h"
#include "hosts/windows/outlook/adapted.h"

namespace quillfile::windows {

class OutlookAttachment final : public Adapted<Attachment> {
 public:
  using Adapted::Adapted;
  Text typeName() override { return object().typeName(); }
  std::int32_t type() override { return object().get(u"Type").number(); }
  Text fileName() override { return object().get(u"FileName").text(); }
  Text displayName() override { return object().get(u"DisplayName").text(); }
  std::int64_t size() override { return object().get(u"Size").number(); }
  void saveAsFile(TextView path) override { object().run(u"SaveAsFile", path); }
  Removal remove() override {
    object().run(u"Delete");
    return Removal::removed;
  }
};

class OutlookAttachments final : public Adapted<Attachments> {
 public:
  using Adapted::Adapted;
  std::int32_t count() override { return object().get(u"Count").number(); }
  Ref<Attachment> item(std::int32_t index) override {
    return adapt<OutlookAttachment>(object().call(u"Item", index).object());
  }
  void add(const NewAttachment& attachment) override;
};

class OutlookItem final : public Adapted<Item> {
 public:
  using Adapted::Adapted;
  Text typeName() override { return object().typeName(); }
  Text entryId() override { return object().get(u"EntryID").text(); }
  Text subject() override { return object().get(u"Subject").text(); }
  LocalTime receivedTime() override { return object().get(u"ReceivedTime").date(); }
  Text body() override { return object().get(u"Body").text(); }
  bool unRead() override { return object().get(u"UnRead").boolean(); }
  void setUnRead(bool unRead) override { object().put(u"UnRead", unRead); }
  Ref<Attachments> attachments() override {
    return adapt<OutlookAttachments>(object().get(u"Attachments").object());
  }
  void save() override { object().run(u"Save"); }
  void remove() override { object().run(u"Delete"); }
  void display() override { object().run(u"Display", false); }
  Ref<Item> respond(Response response) override;
  Subscription listen(ItemEvents& listener) override;
};

class OutlookAddressEntry final : public Adapted<AddressEntry> {
 public:
  using Adapted::Adapted;
  Text type() override { return object().get(u"Type").text(); }
};

}  // namespace quillfile::windows
