#include "tests/windows/fakes/outlook_world.h"

#include "core/platform/failure.h"

namespace quillfile::windows {

namespace {

constexpr int drafts = 16;

void writeFile(const Text& path, const std::string& bytes) {
  const HANDLE file =
      CreateFileW(wide(path), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) throw Failure{E_ACCESSDENIED, u"Cannot save the attachment"};
  DWORD written = 0;
  WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
  CloseHandle(file);
}

std::size_t place(const Call& call, std::size_t count) {
  const auto index = call[0].number();
  if (index < 1 || static_cast<std::size_t>(index) > count)
    throw Failure{E_INVALIDARG, u"Array index out of bounds"};
  return static_cast<std::size_t>(index) - 1;
}

Variant count(std::size_t number) { return Variant{static_cast<std::int32_t>(number)}; }

}  // namespace

OutlookWorld::OutlookWorld(Recorder& recorder) : recorder_(recorder) {
  for (const auto& [number, name] : std::map<int, Text>{
           {3, u"Deleted Items"}, {4, u"Outbox"}, {5, u"Sent Items"}, {6, u"Inbox"}, {16, u"Drafts"}}) {
    folders_[number] = makeFolder(number, name);
  }
  explorer = fake(recorder_, u"Explorer");
  explorer->offer(explorerEventsId);
  explorer->on(u"CurrentFolder", [this](const Call&) { return variant(folders_.at(currentFolder_)); })
      .on(u"Selection", [this](const Call&) { return variant(makeSelection()); });
  const Fake space = fake(recorder_, u"NameSpace");
  space->on(u"GetDefaultFolder", [this](const Call& call) { return variant(folders_.at(call[0].number())); });
  application = fake(recorder_, u"Application");
  application->set(u"Version", u"16.0.0.1234")
      .on(u"GetNamespace", [space](const Call&) { return variant(space); })
      .on(u"ActiveExplorer", [this](const Call&) { return variant(explorer); });
}

Fake OutlookWorld::makeFolder(int number, const Text& name) {
  const Fake folder = fake(recorder_, u"Folder");
  folder->set(u"Name", name)
      .set(u"EntryID", entryIdOf(number))
      .set(u"StoreID", u"store")
      .on(u"Items", [this, number](const Call&) { return variant(makeItems(number)); });
  return folder;
}

Fake OutlookWorld::makeItems(int folder) {
  const Fake items = fake(recorder_, u"Items");
  items->on(u"Count", [this, folder](const Call&) { return count(itemsIn(folder).size()); })
      .on(u"Item", [this, folder](const Call& call) {
        const auto all = itemsIn(folder);
        return variant(all[place(call, all.size())]->object);
      });
  return items;
}

std::vector<OutlookWorld::Item*> OutlookWorld::itemsIn(int folder) {
  std::vector<Item*> result;
  for (auto& [where, item] : items_) {
    if (where == folder && !item.state->deleted) result.push_back(&item);
  }
  return result;
}

OutlookWorld::Item& OutlookWorld::add(const ItemState& state, int folder) {
  auto kept = std::make_shared<ItemState>(state);
  if (kept->entryId.empty() && folder != 0) kept->entryId = fill(u"item-{}", ++lastId_);
  return items_.emplace_back(folder, Item{.state = kept, .object = makeItem(kept)}).second;
}

void OutlookWorld::save(ItemState& state) {
  ++state.saves;
  if (!state.entryId.empty()) return;
  state.entryId = fill(u"item-{}", ++lastId_);
  for (auto& [folder, item] : items_) {
    if (item.state.get() == &state) folder = drafts;
  }
}

Variant OutlookWorld::respondTo(const ItemState& original) {
  ItemState response = original;
  response.entryId.clear();
  response.saves = response.displayed = 0;
  Item& added = add(response, 0);
  made.push_back(&added);
  return variant(added.object);
}

Fake OutlookWorld::makeItem(const std::shared_ptr<ItemState>& state) {
  const Fake item = fake(recorder_, state->type);
  const auto text = [&](const Text& name, Text ItemState::*field) {
    item->on(name, [state, field](const Call&) { return Variant{(*state).*field}; })
        .onPut(name, [state, field](const Variant& value) { (*state).*field = value.text(); });
  };
  text(u"EntryID", &ItemState::entryId);
  text(u"Subject", &ItemState::subject);
  text(u"SenderName", &ItemState::senderName);
  text(u"SenderEmailAddress", &ItemState::senderAddress);
  text(u"Body", &ItemState::body);
  text(u"HTMLBody", &ItemState::html);
  text(u"RTFBody", &ItemState::rtf);
  if (state->rtfAsBytes) item->on(u"RTFBody", [state](const Call&) { return Variant::bytes(state->rtf); });
  item->offer(itemEventsId);
  item->set(u"UnRead", true)
      .on(u"ReceivedTime", [state](const Call&) { return Variant::date(state->received); })
      .on(u"Attachments", [this, state](const Call&) { return variant(makeAttachments(state)); })
      .on(u"Sender",
          [this, state](const Call&) {
            const Fake user = fake(recorder_, u"ExchangeUser");
            user->set(u"PrimarySmtpAddress", state->smtpAddress);
            const Fake entry = fake(recorder_, u"AddressEntry");
            entry->set(u"Type", state->senderType).on(u"GetExchangeUser", [user](const Call&) {
              return variant(user);
            });
            return variant(entry);
          })
      .on(u"Save", [this, state](const Call&) { return save(*state), Variant{}; })
      .on(u"SaveAs",
          [](const Call& call) {
            writeFile(call[0].text(), toUtf8(fill(u"saved as {}", call[1].number())));
            return Variant{};
          })
      .on(u"Delete", [state](const Call&) { return state->deleted = true, Variant{}; })
      .on(u"Display", [state](const Call&) { return ++state->displayed, Variant{}; });
  for (const Text response : {u"Forward", u"Reply", u"ReplyAll"}) {
    item->on(response, [this, state](const Call&) { return respondTo(*state); });
  }
  return item;
}

Fake OutlookWorld::makeAttachments(const std::shared_ptr<ItemState>& state) {
  const Fake all = fake(recorder_, u"Attachments");
  all->on(u"Count", [state](const Call&) { return count(state->attachments.size()); })
      .on(u"Item",
          [this, state](const Call& call) {
            return variant(makeAttachment(state, place(call, state->attachments.size())));
          })
      .on(u"Add", [state](const Call& call) {
        const Text source = call[0].text();
        const Text name = call.given(3) ? call[3].text() : Text{};
        state->attachments.push_back(
            {.fileName = Text{from(source, findLast(source, u"\\") + 1)}, .displayName = name});
        return Variant{};
      });
  return all;
}

Fake OutlookWorld::makeAttachment(const std::shared_ptr<ItemState>& state, std::size_t index) {
  const Fake one = fake(recorder_, u"Attachment");
  const AttachmentState& about = state->attachments[index];
  one->set(u"FileName", about.fileName)
      .set(u"DisplayName", about.displayName.empty() ? about.fileName : about.displayName)
      .set(u"Type", about.type)
      .set(u"Size", static_cast<std::int32_t>(about.bytes.size()))
      .on(u"SaveAsFile",
          [bytes = about.bytes](const Call& call) { return writeFile(call[0].text(), bytes), Variant{}; })
      .on(u"Delete", [state, index](const Call&) {
        state->attachments.erase(state->attachments.begin() + static_cast<std::ptrdiff_t>(index));
        return Variant{};
      });
  return one;
}

Fake OutlookWorld::makeSelection() {
  const Fake selection = fake(recorder_, u"Selection");
  selection->on(u"Count", [this](const Call&) { return count(selected_.size()); })
      .on(u"Item", [this](const Call& call) { return variant(selected_[place(call, selected_.size())]); });
  return selection;
}

Fake OutlookWorld::inspector(const Item& item) {
  const Fake window = fake(recorder_, u"Inspector");
  window->set(u"CurrentItem", variant(item.object));
  return window;
}

void OutlookWorld::select(std::vector<const Item*> items) {
  selected_.clear();
  for (const Item* item : items) selected_.push_back(item->object);
}

bool OutlookWorld::respond(const Item& item, DISPID event) {
  VARIANT_BOOL cancel = VARIANT_FALSE;
  VARIANT arguments[2]{};
  arguments[0].vt = VT_BOOL | VT_BYREF;
  arguments[0].pboolVal = &cancel;
  arguments[1].vt = VT_DISPATCH;
  item.object->raise(itemEventsId, event, {arguments[0], arguments[1]});
  return cancel != VARIANT_FALSE;
}

bool OutlookWorld::cancelable(const Item& item, DISPID event) {
  VARIANT_BOOL cancel = VARIANT_FALSE;
  VARIANT argument{};
  argument.vt = VT_BOOL | VT_BYREF;
  argument.pboolVal = &cancel;
  item.object->raise(itemEventsId, event, {argument});
  return cancel != VARIANT_FALSE;
}

void OutlookWorld::selectionChanges() { explorer->raise(explorerEventsId, 0xF007, {}); }

}  // namespace quillfile::windows
