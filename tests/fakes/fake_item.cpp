#include "tests/fakes/fake_item.h"

#include <algorithm>

#include "tests/fakes/fake_outlook.h"

namespace quillfile {
namespace {

class FakeAttachment : public Attachment {
 public:
  FakeAttachment(std::shared_ptr<FakeItem> owner, std::shared_ptr<AttachmentData> data)
      : owner_(std::move(owner)), record_(owner_->record), data_(std::move(data)) {}

  Text typeName() override { return record_.asked(u"Attachment.typeName"), data_->typeName; }
  std::int32_t type() override {
    return record_.asked(u"Attachment.type"), static_cast<std::int32_t>(data_->type);
  }
  Text fileName() override { return record_.asked(u"Attachment.fileName"), data_->fileName; }
  Text displayName() override { return record_.asked(u"Attachment.displayName"), data_->displayName; }
  std::int64_t size() override { return record_.asked(u"Attachment.size"), data_->size; }

  void saveAsFile(TextView path) override {
    record_.asked(u"Attachment.saveAsFile");
    if (!data_->savesNothing) owner_->files.write(path, data_->content);
    record_.did(fill(u"{}: save as {}", name(), path));
  }

  Removal remove() override {
    record_.asked(u"Attachment.remove");
    const bool declined = data_->removal == Removal::declined;
    record_.did(fill(declined ? u"{}: removal declined" : u"{}: remove", name()));
    if (!declined) std::erase(owner_->attached, data_);
    return data_->removal;
  }

 private:
  Text name() const { return fill(u"{}/{}", owner_->data.label, data_->fileName); }

  std::shared_ptr<FakeItem> owner_;
  Recorder& record_;
  std::shared_ptr<AttachmentData> data_;
};

class FakeAttachments : public Attachments {
 public:
  explicit FakeAttachments(std::shared_ptr<FakeItem> owner)
      : owner_(std::move(owner)), record_(owner_->record) {}

  std::int32_t count() override {
    return record_.asked(u"Attachments.count"), static_cast<std::int32_t>(owner_->attached.size());
  }

  Ref<Attachment> item(std::int32_t index) override {
    record_.asked(u"Attachments.item");
    if (index < 1 || index > static_cast<std::int32_t>(owner_->attached.size()))
      throw Failure{9, u"Array index out of bounds"};
    return std::make_shared<FakeAttachment>(owner_, owner_->attached[static_cast<std::size_t>(index - 1)]);
  }

  void add(const NewAttachment& added) override {
    record_.asked(u"Attachments.add");
    const auto* file = owner_->files.find(added.source);
    if (!file) throw Failure{-2147024894, u"Cannot find this file"};
    const Text type = added.type ? decimal(static_cast<std::int32_t>(*added.type)) : u"by default";
    const Text position = added.position ? decimal(*added.position) : u"anywhere";
    record_.did(fill(u"{}: add {} as '{}', type {}, position {}", owner_->data.label, added.source,
                     added.displayName, type, position));
    const auto name = added.source.substr(added.source.find_last_of(u"\\/") + 1);
    owner_->attach({.fileName = name,
                    .displayName = added.displayName,
                    .type = added.type.value_or(AttachmentType::by_value),
                    .content = file->content,
                    .size = static_cast<std::int64_t>(file->content.size())});
  }

 private:
  std::shared_ptr<FakeItem> owner_;
  Recorder& record_;
};

}  // namespace

FakeItem::FakeItem(Recorder& recorder, FakeFiles& fileSystem, ItemData given)
    : data(std::move(given)), record(recorder), files(fileSystem) {
  if (data.label.empty()) data.label = data.subject;
  if (data.saved && data.entryId.empty()) data.entryId = fill(u"{}-id", data.label);
}

FakeItem& FakeItem::attach(AttachmentData attachment) {
  attached.push_back(std::make_shared<AttachmentData>(std::move(attachment)));
  return *this;
}

bool FakeItem::raiseRespond(Response response, bool cancel) {
  listeners.raise([&](ItemEvents& listener) { listener.onRespond(response, cancel); });
  return cancel;
}
bool FakeItem::raiseSend(bool cancel) {
  listeners.raise([&](ItemEvents& listener) { listener.onSend(cancel); });
  return cancel;
}
bool FakeItem::raiseWrite(bool cancel) {
  listeners.raise([&](ItemEvents& listener) { listener.onWrite(cancel); });
  return cancel;
}
bool FakeItem::raiseClose(bool cancel) {
  listeners.raise([&](ItemEvents& listener) { listener.onClose(cancel); });
  return cancel;
}

Text FakeItem::typeName() { return record.asked(u"Item.typeName"), data.type; }
Text FakeItem::entryId() { return record.asked(u"Item.entryId"), data.entryId; }
Text FakeItem::subject() { return record.asked(u"Item.subject"), data.subject; }
LocalTime FakeItem::receivedTime() { return record.asked(u"Item.receivedTime"), data.received; }
Text FakeItem::body() { return record.asked(u"Item.body"), data.body; }
bool FakeItem::unRead() { return record.asked(u"Item.unRead"), data.unRead; }

void FakeItem::setUnRead(bool unRead) {
  record.asked(u"Item.setUnRead");
  data.unRead = unRead;
  record.did(fill(u"{}: UnRead = {}", data.label, unRead ? TextView{u"True"} : TextView{u"False"}));
}

Ref<Attachments> FakeItem::attachments() {
  record.asked(u"Item.attachments");
  return std::make_shared<FakeAttachments>(shared_from_this());
}

void FakeItem::save() {
  record.asked(u"Item.save");
  record.did(fill(u"{}: save", data.label));
  if (!data.entryId.empty()) return;
  data.entryId = fill(u"{}-id", data.label);
  if (home) home->items.push_back(shared_from_this());
}

void FakeItem::remove() {
  record.asked(u"Item.remove");
  record.did(fill(u"{}: delete", data.label));
  removed = true;
  if (home) std::erase(home->items, shared_from_this());
}

void FakeItem::display() {
  record.asked(u"Item.display");
  record.did(fill(u"{}: display", data.label));
  displayed = true;
}

Ref<Item> FakeItem::respond(Response response) {
  record.asked(u"Item.respond");
  constexpr TextView words[] = {u"Forward", u"Reply", u"ReplyAll"};
  const auto word = words[static_cast<std::size_t>(response)];
  record.did(fill(u"{}: {}", data.label, word));
  const bool forward = response == Response::forward;
  ItemData answer = data;
  answer.label = fill(u"{} of {}", word, data.label);
  answer.subject = fill(u"{}{}", forward ? TextView{u"FW: "} : TextView{u"RE: "}, data.subject);
  answer.entryId.clear();
  answer.saved = false;
  auto made = std::make_shared<FakeItem>(record, files, std::move(answer));
  if (forward)
    for (const auto& attachment : attached) made->attach(*attachment);
  made->home = responsesHome;
  responses.push_back(made);
  return made;
}

Subscription FakeItem::listen(ItemEvents& listener) {
  record.asked(u"Item.listen");
  return listeners.add(listener);
}

}  // namespace quillfile
