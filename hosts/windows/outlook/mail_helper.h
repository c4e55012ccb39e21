// The mail-helper library, by its ProgIDs; and what serves in its place where it is not registered.
#pragma once

#include "core/platform/item.h"
#include "hosts/windows/engine/services.h"
#include "hosts/windows/outlook/adapted.h"

namespace quillfile::windows {

// "TSOutlook.TSSafeMailItem", behind which the client asks the user nothing.
class LibrarySafeItem final : public Adapted<SafeItem> {
 public:
  explicit LibrarySafeItem(const Object& item);
  Text subject() override { return object().get(u"Subject").text(); }
  Text senderName() override { return object().get(u"SenderName").text(); }
  Ref<AddressEntry> sender() override;
  Text senderEmailAddress() override { return object().get(u"SenderEmailAddress").text(); }
  Ref<Attachments> attachments() override;
  Text body(BodyKind kind) override;
  void setBody(BodyKind kind, TextView text) override;
  void save() override { object().run(u"Save"); }
  void saveAs(TextView path, SaveAsType type) override;
};

// The item itself, where the library is missing. The client may ask the user before it hands out addresses.
class PlainSafeItem final : public Adapted<SafeItem> {
 public:
  using Adapted::Adapted;
  Text subject() override { return object().get(u"Subject").text(); }
  Text senderName() override { return object().get(u"SenderName").text(); }
  Ref<AddressEntry> sender() override;
  Text senderEmailAddress() override { return object().get(u"SenderEmailAddress").text(); }
  Ref<Attachments> attachments() override;
  Text body(BodyKind kind) override;
  void setBody(BodyKind kind, TextView text) override;
  void save() override { object().run(u"Save"); }
  // The library's own two formats are a Failure here: the client cannot write them.
  void saveAs(TextView path, SaveAsType type) override;
};

class OutlookMailHelper final : public MailHelper {
 public:
  explicit OutlookMailHelper(ComServices& services) : services_(services) {}
  Ref<SafeItem> wrap(const Ref<Item>& item) override;
  Text smtpAddress(const Ref<AddressEntry>& sender) override;
  void cleanUp() override;
  Text bodyFormat(const Ref<Item>& item) override { return services_.bodyFormat(behind(item)); }
  Text bodyFormat(const Ref<SafeItem>& item) override { return services_.bodyFormat(behind(item)); }

 private:
  ComServices& services_;
};

}  // namespace quillfile::windows
