// WatchedItem: one listened-to reference to an item, and the handlers of the item's events.
#pragma once

#include "core/platform/item.h"
#include "core/tracking/item_types.h"

namespace quillfile {

// What the handlers call.
class ItemActions {
 public:
  virtual ~ItemActions() = default;
  // `cancel` becomes true when the module answers in place of the mail client.
  virtual void ProcessClick(TextView typeName, std::int32_t slot, TextView action, bool& cancel) = 0;
  virtual bool AddToUserSavedList(TextView entryId) = 0;
  virtual bool AddToPendingList(TextView slotName) = 0;
  // 0: the slot is freed and the close goes ahead; 1: neither; anything else: freed, and the close is
  // stopped.
  virtual std::int32_t CloseItem(const Ref<Item>& item) = 0;
};

// The events of an item, in the order of their table.
enum class ItemEvent { forward, reply, reply_all, send, write, close };

class WatchedItem final : public ItemEvents {
 public:
  WatchedItem(ItemActions& actions, const ItemType& type, std::int32_t slot)
      : actions_(actions), type_(type), slot_(slot) {}

  const Ref<Item>& item() const { return item_; }  // Nothing: empty
  Text name() const;                               // "m_olMailItem3", "m_olExplorerMailItem"

  // Attaches to the item and detaches from the one before; to Nothing by reset(). A handler may do either.
  void set(const Ref<Item>& item);
  void reset();

  void onRespond(Response response, bool& cancel) override;
  void onSend(bool& cancel) override { handle(ItemEvent::send, cancel); }
  void onWrite(bool& cancel) override { handle(ItemEvent::write, cancel); }
  void onClose(bool& cancel) override { handle(ItemEvent::close, cancel); }

 private:
  struct Handler;
  static const Handler handlers[];

  void handle(ItemEvent event, bool& cancel);
  void respond(TextView action, bool& cancel);
  void send(TextView action, bool& cancel);
  void write(TextView action, bool& cancel);
  void close(TextView action, bool& cancel);

  ItemActions& actions_;
  const ItemType& type_;
  std::int32_t slot_;
  Ref<Item> item_;
  Subscription subscription_;
};

}  // namespace quillfile
