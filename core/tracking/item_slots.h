// ItemSlots: every listened-to item. For each type the explorer's current item and ten watched slots, which
// are filled from slot 1 upward as inspectors open.
#pragma once

#include <vector>

#include "core/platform/engine.h"
#include "core/tracking/watched_item.h"

namespace quillfile {

class ItemSlots {
 public:
  ItemSlots(EngineServices& services, ItemActions& actions);

  // The reference of a type and a slot number, 0 to 10; null when there is none such.
  WatchedItem* find(TextView typeName, std::int32_t slot);
  // The watched slot of that name; null when there is none. Letter case counts.
  WatchedItem* find(TextView slotName);

  // Puts the inspector's item into the lowest free slot of its type. True when it has a type that is tracked,
  // also when all ten slots are taken and the item goes unwatched.
  bool MapUnderylingItem(const Ref<Inspector>& inspector);  // sic
  bool MapMailItem(const Ref<Inspector>& inspector) { return map(itemTypes[0], inspector); }
  bool MapPostItem(const Ref<Inspector>& inspector) { return map(itemTypes[1], inspector); }
  bool MapMeetingItem(const Ref<Inspector>& inspector) { return map(itemTypes[2], inspector); }
  bool MapReportItem(const Ref<Inspector>& inspector) { return map(itemTypes[3], inspector); }

  void ClearExplorerItems();
  void ReleaseAllItemSlots();

 private:
  bool map(const ItemType& type, const Ref<Inspector>& inspector);
  WatchedItem& at(const ItemType& type, std::int32_t slot);

  EngineServices& services_;
  std::vector<WatchedItem>
      items_;  // by type, then by slot number from 0; never resized, listeners stay in place
};

}  // namespace quillfile
