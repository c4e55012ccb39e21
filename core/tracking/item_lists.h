// ItemLists: what the user saved by hand while it was open. The user-saved list holds EntryIDs, the pending
// list the names of slots whose item had none yet. Neither exists before an explorer opens.
#pragma once

#include <optional>
#include <vector>

#include "core/tracking/item_slots.h"

namespace quillfile {

class ItemLists {
 public:
  ItemLists(EngineServices& services, ItemSlots& slots) : services_(services), slots_(slots) {}

  void create();  // both, new and empty
  void release();

  bool AddToPendingList(TextView slotName);  // True, also after an error
  bool IsOnPendingList(TextView slotName);
  bool AddToUserSavedList(TextView entryId);  // always False. Throws Failure when there is no list
  bool IsOnUserSavedList(TextView entryId);
  // Moves the pending items, by the EntryID of what their slots hold now, to the user-saved list.
  void PurgePendingList();
  // The decision when an item closes: always 0, the close goes ahead.
  std::int32_t CloseItem(const Ref<Item>& item);

 private:
  using List = std::optional<std::vector<Text>>;

  EngineServices& services_;
  ItemSlots& slots_;
  List pending_;
  List userSaved_;
};

}  // namespace quillfile
