#include "hosts/windows/outlook/application.h"

#include "hosts/windows/outlook/event_sink.h"
#include "hosts/windows/outlook/item.h"

namespace quillfile::windows {

namespace {

constexpr IID explorerEvents{0x0006300F, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
constexpr DISPID selectionChange = 0xF007;

}  // namespace

const Object& OutlookFolder::items() {
  if (!items_) items_ = object().get(u"Items").object();
  return items_;
}

Ref<Item> OutlookFolder::item(std::int32_t index) {
  return adapt<OutlookItem>(items().call(u"Item", index).object());
}

Ref<Folder> OutlookNameSpace::defaultFolder(DefaultFolder which) {
  return adapt<OutlookFolder>(object().call(u"GetDefaultFolder", static_cast<std::int32_t>(which)).object());
}

Ref<Item> OutlookSelection::item(std::int32_t index) {
  return adapt<OutlookItem>(object().call(u"Item", index).object());
}

Subscription OutlookExplorer::listen(ExplorerEvents& listener) {
  return connect(object(), explorerEvents, [&listener](DISPID event, const EventArguments&) {
    if (event == selectionChange) listener.onSelectionChange();
  });
}

Ref<Item> OutlookInspector::currentItem() {
  return adapt<OutlookItem>(object().get(u"CurrentItem").object());
}

}  // namespace quillfile::windows
