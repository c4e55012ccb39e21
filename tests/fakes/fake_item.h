// FakeItem: an item of any type with its attachments, which a test fills with designated initialisers and
// raises events on. In transcripts it goes by its label, an attachment by the label, "/" and the file name.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "core/platform/item.h"
#include "tests/fakes/fake_files.h"
#include "tests/fakes/listeners.h"
#include "tests/fakes/recorder.h"

namespace quillfile {

class FakeFolder;

struct AttachmentData {
  Text fileName = {};
  Text displayName = {};  // empty stays empty
  AttachmentType type = AttachmentType::by_value;
  std::string content = "content";
  std::int64_t size = 7;               // of no account to the content
  bool savesNothing = false;           // saveAsFile succeeds, and no file appears
  Removal removal = Removal::removed;  // what remove() answers
  Text typeName = u"Attachment";
};

struct ItemData {
  Text label = {};  // empty: the subject
  Text subject = {};
  Text type = u"MailItem";
  Text entryId = {};  // empty: the label and "-id"; an item that was never saved has `saved` false
  bool saved = true;
  LocalTime received{2009, 3, 4, 14, 5, 0};
  bool unRead = true;
  Text senderName = u"Ada Lovelace";
  bool hasSender = true;  // false: the sender's address entry is Nothing
  Text senderType = u"SMTP";
  Text senderAddress = u"ada@example.com";  // SenderEmailAddress
  Text smtpAddress = {};                    // what GetSMTPAddress answers
  Text format = u"TEXT";                    // the body format
  Text body = {}, htmlBody = {}, rtfBody = {};
};

class FakeItem : public Item, public std::enable_shared_from_this<FakeItem> {
 public:
  FakeItem(Recorder& record, FakeFiles& files, ItemData data);

  ItemData data;
  std::vector<std::shared_ptr<AttachmentData>> attached;
  Listeners<ItemEvents> listeners;
  FakeFolder* home = nullptr;           // where it lies, or will lie once it is saved
  FakeFolder* responsesHome = nullptr;  // where the responses to it will lie
  std::vector<std::shared_ptr<FakeItem>> responses;
  bool displayed = false;
  bool removed = false;

  FakeItem& attach(AttachmentData attachment);
  // The user acts; true when the event came back cancelled.
  bool raiseRespond(Response response, bool cancel = false);
  bool raiseSend(bool cancel = false);
  bool raiseWrite(bool cancel = false);
  bool raiseClose(bool cancel = false);

  Text typeName() override;
  Text entryId() override;
  Text subject() override;
  LocalTime receivedTime() override;
  Text body() override;
  bool unRead() override;
  void setUnRead(bool unRead) override;
  Ref<Attachments> attachments() override;
  void save() override;
  void remove() override;
  void display() override;
  Ref<Item> respond(Response response) override;
  Subscription listen(ItemEvents& listener) override;

  Recorder& record;
  FakeFiles& files;
};

}  // namespace quillfile
