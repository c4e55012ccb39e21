// Items: mail, post, meeting and report items, the events they raise, and the mail-helper library's wrapper.
// Every call may throw Failure.
#pragma once

#include <cstdint>
#include <memory>

#include "core/platform/attachment.h"
#include "core/platform/date_time.h"
#include "core/platform/reference.h"
#include "core/platform/subscription.h"
#include "core/platform/working_copy.h"
#include "core/text/text.h"

namespace quillfile {

// What a user does to answer an item; Outlook's Forward, Reply and ReplyAll.
enum class Response { forward, reply, reply_all };

// What an item tells whoever listens. `cancel` comes in as the client set it and goes back to the client.
class ItemEvents {
 public:
  virtual ~ItemEvents() = default;
  virtual void onRespond(Response response, bool& cancel) = 0;
  virtual void onSend(bool& cancel) = 0;
  virtual void onWrite(bool& cancel) = 0;
  virtual void onClose(bool& cancel) = 0;
};

class Item {
 public:
  virtual ~Item() = default;
  virtual Text typeName() = 0;  // "MailItem", "PostItem", "MeetingItem", "ReportItem", or any other
  virtual Text entryId() = 0;   // empty while the item has never been saved
  virtual Text subject() = 0;
  virtual LocalTime receivedTime() = 0;
  virtual Text body() = 0;  // the plain-text body
  virtual bool unRead() = 0;
  virtual void setUnRead(bool unRead) = 0;
  virtual Ref<Attachments> attachments() = 0;
  virtual void save() = 0;
  virtual void remove() = 0;                         // Outlook's Delete
  virtual void display() = 0;                        // opens the item, not modal
  virtual Ref<Item> respond(Response response) = 0;  // a new, unsent item of the same kind
  // Delivers events to `listener` until the subscription ends; the listener must outlive it.
  virtual Subscription listen(ItemEvents& listener) = 0;
};

class AddressEntry {
 public:
  virtual ~AddressEntry() = default;
  virtual Text type() = 0;  // "EX" for an Exchange sender, "SMTP" and others
};

enum class BodyKind { plain, html, rtf };

// The numbers that SaveAs takes.
enum class SaveAsType : std::int32_t { text = 1, message = 3, html = 5, rfc822 = 1024, tnef = 1025 };

// "TSOutlook.TSSafeMailItem": reads and writes an item without the client's security prompts.
class SafeItem {
 public:
  virtual ~SafeItem() = default;
  virtual Text subject() = 0;
  virtual Text senderName() = 0;
  virtual Ref<AddressEntry> sender() = 0;  // may be Nothing
  virtual Text senderEmailAddress() = 0;
  virtual Ref<Attachments> attachments() = 0;
  virtual Text body(BodyKind kind) = 0;  // Body, HTMLBody, RTFBody; empty where the item has none
  virtual void setBody(BodyKind kind, TextView text) = 0;
  // body(), to be changed and given to setBody() by its write(). The item must outlive it.
  virtual std::unique_ptr<WorkingCopy> workingCopy(BodyKind kind);
  virtual void save() = 0;
  virtual void saveAs(TextView path, SaveAsType type) = 0;
};

// The mail-helper library.
class MailHelper {
 public:
  virtual ~MailHelper() = default;
  virtual Ref<SafeItem> wrap(const Ref<Item>& item) = 0;          // a new wrapper with its Item set
  virtual Text smtpAddress(const Ref<AddressEntry>& sender) = 0;  // GetSMTPAddress; empty when it has none
  virtual void cleanUp() = 0;                                     // once, at shutdown
  // The item's body format: "HTML", "RTF", "TEXT" or another word for plain text.
  virtual Text bodyFormat(const Ref<Item>& item) = 0;
  virtual Text bodyFormat(const Ref<SafeItem>& item) = 0;
};

}  // namespace quillfile
