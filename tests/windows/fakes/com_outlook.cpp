#include "tests/windows/fakes/com_outlook.h"

#include <gtest/gtest.h>

#include "hosts/windows/com/bstr.h"

namespace quillfile::windows {

namespace {

// The user's events, from the fakes to whoever is connected to the automation object.
class ItemEventsOut final : public ItemEvents {
 public:
  explicit ItemEventsOut(Scripted& object) : object_(object) {}
  void onRespond(Response response, bool& cancel) override {
    constexpr DISPID events[] = {0xF468, 0xF466, 0xF467};
    VARIANT answer{};
    answer.vt = VT_DISPATCH;
    raise(events[static_cast<std::size_t>(response)], cancel, &answer);
  }
  void onSend(bool& cancel) override { raise(0xF005, cancel); }
  void onWrite(bool& cancel) override { raise(0xF002, cancel); }
  void onClose(bool& cancel) override { raise(0xF004, cancel); }

 private:
  void raise(DISPID event, bool& cancel, const VARIANT* response = nullptr) {
    VARIANT_BOOL asked = cancel ? VARIANT_TRUE : VARIANT_FALSE;
    VARIANT byReference{};
    byReference.vt = VT_BOOL | VT_BYREF;
    byReference.pboolVal = &asked;
    std::vector<VARIANT> lastFirst{byReference};
    if (response != nullptr) lastFirst.push_back(*response);
    object_.raise(itemEventsId, event, lastFirst);
    cancel = asked != VARIANT_FALSE;
  }

  Scripted& object_;
};

class ExplorerEventsOut final : public ExplorerEvents {
 public:
  explicit ExplorerEventsOut(Scripted& object) : object_(object) {}
  void onSelectionChange() override { object_.raise(explorerEventsId, 0xF007, {}); }

 private:
  Scripted& object_;
};

std::optional<std::int32_t> optionalNumber(const Call& call, std::size_t index) {
  if (!call.given(index)) return std::nullopt;
  return call[index].number();
}

NewAttachment newAttachment(const Call& call) {
  NewAttachment added{.source = call[0].text(), .type = {}, .position = {}, .displayName = {}};
  if (const auto type = optionalNumber(call, 1)) added.type = static_cast<AttachmentType>(*type);
  if (const auto position = optionalNumber(call, 2)) added.position = *position;
  if (call.given(3)) added.displayName = call[3].text();
  return added;
}

}  // namespace

void writeToDisk(FakePlatform& world, const Text& path) {
  const FakeFile* saved = world.files.find(path);
  if (saved == nullptr) return;
  const HANDLE file =
      CreateFileW(wide(path), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  DWORD written = 0;
  WriteFile(file, saved->content.data(), static_cast<DWORD>(saved->content.size()), &written, nullptr);
  CloseHandle(file);
}

ComOutlook::~ComOutlook() = default;

template <class Port, class FillIn>
Variant ComOutlook::known(const Ref<Port>& port, TextView type, FillIn&& fillIn) {
  if (!port) return Variant{static_cast<IDispatch*>(nullptr)};
  const void* key = dynamic_cast<const void*>(port.get());
  const auto before = known_.find(key);
  if (before != known_.end()) return variant(before->second.object);
  const Fake made = fake(calls_, type);
  Known& added = known_[key];
  added.fake = port;
  added.object = made;
  fillIn(*made.get(), added);
  return variant(made);
}

Variant ComOutlook::application(const std::shared_ptr<FakeApplication>& app) {
  return known<Application>(app, u"Application", [&](Scripted& object, Known&) {
    object.on(u"Version", [app](const Call&) { return Variant{app->version()}; })
        .on(u"GetNamespace",
            [this, app](const Call& call) {
              EXPECT_EQ(call[0].text(), u"MAPI");
              return nameSpace(app->nameSpace());
            })
        .on(u"ActiveExplorer", [this, app](const Call&) { return explorer(app->activeExplorer()); });
  });
}

Variant ComOutlook::nameSpace(const Ref<NameSpace>& port) {
  return known(port, u"NameSpace", [&](Scripted& object, Known&) {
    auto* space = port.get();
    object.on(u"GetDefaultFolder", [this, space](const Call& call) {
      return folder(space->defaultFolder(static_cast<DefaultFolder>(call[0].number())));
    });
  });
}

Variant ComOutlook::folder(const Ref<Folder>& port) {
  return known(port, u"Folder", [&](Scripted& object, Known&) {
    auto* shown = port.get();
    object.on(u"Name", [shown](const Call&) { return Variant{shown->name()}; })
        .on(u"EntryID", [shown](const Call&) { return Variant{shown->entryId()}; })
        .on(u"StoreID", [shown](const Call&) { return Variant{shown->storeId()}; })
        .on(u"Items", [this, shown](const Call&) {
          const Fake items = fake(calls_, u"Items");
          items->on(u"Count", [shown](const Call&) { return Variant{shown->itemCount()}; })
              .on(u"Item", [this, shown](const Call& call) { return item(shown->item(call[0].number())); });
          return variant(items);
        });
  });
}

Variant ComOutlook::selection(const Ref<Selection>& port) {
  if (!port) return Variant{static_cast<IDispatch*>(nullptr)};
  const Fake made = fake(calls_, u"Selection");
  made->on(u"Count", [port](const Call&) { return Variant{port->count()}; })
      .on(u"Item", [this, port](const Call& call) { return item(port->item(call[0].number())); });
  return variant(made);
}

Variant ComOutlook::explorer(const Ref<Explorer>& port) {
  return known(port, u"Explorer", [&](Scripted& object, Known& added) {
    auto* shown = dynamic_cast<FakeExplorer*>(port.get());
    object.offer(explorerEventsId);
    object.on(u"CurrentFolder", [this, shown](const Call&) { return folder(shown->currentFolder()); })
        .on(u"Selection", [this, shown](const Call&) { return selection(shown->selection()); });
    object.onConnect([this] { world_.record.asked(u"Explorer.listen"); });
    const auto events = std::make_shared<ExplorerEventsOut>(object);
    added.events = events;
    added.delivery = shown->listeners.add(*events);
  });
}

Variant ComOutlook::inspector(const Ref<Inspector>& port) {
  return known(port, u"Inspector", [&](Scripted& object, Known&) {
    auto* shown = port.get();
    object.on(u"CurrentItem", [this, shown](const Call&) { return item(shown->currentItem()); });
  });
}

Variant ComOutlook::item(const Ref<Item>& port) {
  const auto shown = std::dynamic_pointer_cast<FakeItem>(port);
  return known(port, shown ? TextView{shown->data.type} : TextView{}, [&](Scripted& object, Known& added) {
    fillIn(object, shown);
    const auto events = std::make_shared<ItemEventsOut>(object);
    added.events = events;
    added.delivery = shown->listeners.add(*events);
  });
}

void ComOutlook::fillIn(Scripted& object, const std::shared_ptr<FakeItem>& shared) {
  FakeItem* item = shared.get();
  object.offer(itemEventsId);
  object.onConnect([this] { world_.record.asked(u"Item.listen"); });
  object.onTypeName([item] { return item->typeName(); });
  object.on(u"EntryID", [item](const Call&) { return Variant{item->entryId()}; })
      .on(u"Subject", [item](const Call&) { return Variant{item->subject()}; })
      .on(u"ReceivedTime", [item](const Call&) { return Variant::date(item->receivedTime()); })
      .on(u"Body", [item](const Call&) { return Variant{item->body()}; })
      .on(u"UnRead", [item](const Call&) { return Variant{item->unRead()}; })
      .onPut(u"UnRead", [item](const Variant& value) { item->setUnRead(value.boolean()); })
      .on(u"Attachments", [this, item](const Call&) { return attachments(item->attachments()); })
      .on(u"Save", [item](const Call&) { return item->save(), Variant{}; })
      .on(u"Delete", [item](const Call&) { return item->remove(), Variant{}; })
      .on(u"Display", [item](const Call&) { return item->display(), Variant{}; });
  fillInWithoutLibrary(object, shared);
  struct Row {
    const char16_t* name;
    Response response;
  };
  for (const auto& [name, response] : {Row{u"Forward", Response::forward}, Row{u"Reply", Response::reply},
                                       Row{u"ReplyAll", Response::reply_all}}) {
    object.on(name, [this, item, which = response](const Call&) { return this->item(item->respond(which)); });
  }
}

// What the module asks of the item itself where the mail-helper library is not registered.
void ComOutlook::fillInWithoutLibrary(Scripted& object, const std::shared_ptr<FakeItem>& item) {
  const auto safe = std::make_shared<FakeSafeItem>(item);
  object.on(u"SenderName", [safe](const Call&) { return Variant{safe->senderName()}; })
      .on(u"Sender", [this, safe](const Call&) { return addressEntry(safe->sender()); })
      .on(u"SenderEmailAddress", [safe](const Call&) { return Variant{safe->senderEmailAddress()}; })
      .on(u"SaveAs",
          [this, safe](const Call& call) {
            safe->saveAs(call[0].text(), static_cast<SaveAsType>(call[1].number()));
            writeToDisk(world_, call[0].text());
            return Variant{};
          })
      .onPut(u"Body", [safe](const Variant& value) { safe->setBody(BodyKind::plain, value.text()); })
      .on(u"HTMLBody", [safe](const Call&) { return Variant{safe->body(BodyKind::html)}; })
      .onPut(u"HTMLBody", [safe](const Variant& value) { safe->setBody(BodyKind::html, value.text()); })
      .on(u"RTFBody", [safe](const Call&) { return Variant::bytes(safe->body(BodyKind::rtf)); })
      .onPut(u"RTFBody", [safe](const Variant& value) {
        EXPECT_EQ(value.raw().vt, VT_ARRAY | VT_UI1);  // the client keeps rich text as bytes
        safe->setBody(BodyKind::rtf, value.text());
      });
}

Variant ComOutlook::attachments(const Ref<Attachments>& port) {
  const Fake made = fake(calls_, u"Attachments");
  made->on(u"Count", [port](const Call&) { return Variant{port->count()}; })
      .on(u"Item", [this, port](const Call& call) { return attachment(port->item(call[0].number())); })
      .on(u"Add", [port](const Call& call) { return port->add(newAttachment(call)), Variant{}; });
  return variant(made);
}

Variant ComOutlook::attachment(const Ref<Attachment>& port) {
  const Fake made = fake(calls_, u"Attachment");
  made->onTypeName([port] { return port->typeName(); });
  made->on(u"Type", [port](const Call&) { return Variant{port->type()}; })
      .on(u"FileName", [port](const Call&) { return Variant{port->fileName()}; })
      .on(u"DisplayName", [port](const Call&) { return Variant{port->displayName()}; })
      .on(u"Size", [port](const Call&) { return Variant{static_cast<std::int32_t>(port->size())}; })
      .on(u"SaveAsFile",
          [this, port](const Call& call) {
            port->saveAsFile(call[0].text());
            writeToDisk(world_, call[0].text());
            return Variant{};
          })
      .on(u"Delete", [port](const Call&) { return port->remove(), Variant{}; });
  return variant(made);
}

Variant ComOutlook::addressEntry(const Ref<AddressEntry>& port) {
  return known(port, u"AddressEntry", [&](Scripted& object, Known&) {
    auto* entry = port.get();
    object.on(u"Type", [entry](const Call&) { return Variant{entry->type()}; })
        .on(u"GetExchangeUser", [this, entry](const Call&) {
          const Fake user = fake(calls_, u"ExchangeUser");
          user->set(u"PrimarySmtpAddress", dynamic_cast<FakeAddressEntry*>(entry)->item->data.smtpAddress);
          return variant(user);
        });
  });
}

}  // namespace quillfile::windows
