#include "core/tracking/watched_item.h"

namespace quillfile {

// One row for each event; the explorer's current item has no handler for those of an open item.
struct WatchedItem::Handler {
  ItemEvent event;
  TextView action;  // the dispatcher's word
  bool ofSlotsOnly;
  void (WatchedItem::*run)(TextView action, bool& cancel);
};

const WatchedItem::Handler WatchedItem::handlers[] = {
    {ItemEvent::forward, u"Forward", false, &WatchedItem::respond},
    {ItemEvent::reply, u"Reply", false, &WatchedItem::respond},
    {ItemEvent::reply_all, u"ReplyToAll", false, &WatchedItem::respond},
    {ItemEvent::send, {}, true, &WatchedItem::send},
    {ItemEvent::write, {}, true, &WatchedItem::write},
    {ItemEvent::close, {}, true, &WatchedItem::close},
};

Text WatchedItem::name() const {
  return slot_ == explorerSlot ? Text{type_.explorerItem} : fill(u"{}{}", type_.slotStem, slot_);
}

void WatchedItem::set(const Ref<Item>& item) {
  reset();
  auto subscription = held(item).listen(*this);
  item_ = item;
  subscription_ = std::move(subscription);
}

void WatchedItem::reset() {
  subscription_.reset();
  item_.reset();
}

void WatchedItem::onRespond(Response response, bool& cancel) {
  switch (response) {
    case Response::forward:
      return handle(ItemEvent::forward, cancel);
    case Response::reply:
      return handle(ItemEvent::reply, cancel);
    case Response::reply_all:
      return handle(ItemEvent::reply_all, cancel);
  }
}

void WatchedItem::handle(ItemEvent event, bool& cancel) {
  const auto kept = item_;  // a handler may empty its own slot
  for (const auto& handler : handlers)
    if (handler.event == event && (slot_ != explorerSlot || !handler.ofSlotsOnly))
      (this->*handler.run)(handler.action, cancel);
}

void WatchedItem::respond(TextView action, bool& cancel) {
  bool answer = false;
  actions_.ProcessClick(type_.name, slot_, action, answer);
  cancel = answer;
}

void WatchedItem::send(TextView, bool&) { reset(); }

void WatchedItem::write(TextView, bool&) {
  if (!held(item_).entryId().empty())
    actions_.AddToUserSavedList(held(item_).entryId());
  else
    actions_.AddToPendingList(name());
}

void WatchedItem::close(TextView, bool& cancel) {
  cancel = true;
  const auto answer = actions_.CloseItem(item_);
  if (answer != 1) reset();
  cancel = answer != 0;
}

}  // namespace quillfile
