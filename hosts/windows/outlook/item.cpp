#include "hosts/windows/outlook/item.h"

#include "hosts/windows/outlook/event_sink.h"

namespace quillfile::windows {

namespace {

constexpr IID itemEvents{0x0006302B, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

// Each event's number, and what is told to the listener. Open (F003) is not among them.
struct EventRow {
  DISPID event;
  void (*tell)(ItemEvents& listener, bool& cancel);
};

constexpr EventRow events[] = {
    {0xF002, [](ItemEvents& listener, bool& cancel) { listener.onWrite(cancel); }},
    {0xF004, [](ItemEvents& listener, bool& cancel) { listener.onClose(cancel); }},
    {0xF005, [](ItemEvents& listener, bool& cancel) { listener.onSend(cancel); }},
    {0xF466, [](ItemEvents& listener, bool& cancel) { listener.onRespond(Response::reply, cancel); }},
    {0xF467, [](ItemEvents& listener, bool& cancel) { listener.onRespond(Response::reply_all, cancel); }},
    {0xF468, [](ItemEvents& listener, bool& cancel) { listener.onRespond(Response::forward, cancel); }},
};

const char16_t* methodOf(Response response) {
  switch (response) {
    case Response::forward:
      return u"Forward";
    case Response::reply:
      return u"Reply";
    default:
      return u"ReplyAll";
  }
}

}  // namespace

void OutlookAttachments::add(const NewAttachment& attachment) {
  const auto type =
      attachment.type ? Variant{static_cast<std::int32_t>(*attachment.type)} : Variant::missing();
  const auto position =
      attachment.position ? Variant{static_cast<std::int32_t>(*attachment.position)} : Variant::missing();
  object().run(u"Add", attachment.source, type, position, attachment.displayName);
}

Ref<Item> OutlookItem::respond(Response response) {
  return adapt<OutlookItem>(object().call(methodOf(response)).object());
}

Subscription OutlookItem::listen(ItemEvents& listener) {
  return connect(object(), itemEvents, [&listener](DISPID event, const EventArguments& arguments) {
    for (const auto& row : events) {
      if (row.event == event) arguments.withCancel([&](bool& cancel) { row.tell(listener, cancel); });
    }
  });
}

}  // namespace quillfile::windows
