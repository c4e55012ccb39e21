#include "core/tracking/item_slots.h"

#include "core/module/procedure.h"

namespace quillfile {

ItemSlots::ItemSlots(EngineServices& services, ItemActions& actions) : services_(services) {
  items_.reserve(itemTypes.size() * (slotsPerType + 1));
  for (const auto& type : itemTypes)
    for (auto slot = explorerSlot; slot <= slotsPerType; ++slot) items_.emplace_back(actions, type, slot);
}

WatchedItem& ItemSlots::at(const ItemType& type, std::int32_t slot) {
  const auto row = static_cast<std::size_t>(&type - itemTypes.data());
  return items_[row * (slotsPerType + 1) + static_cast<std::size_t>(slot)];
}

WatchedItem* ItemSlots::find(TextView typeName, std::int32_t slot) {
  for (const auto& type : itemTypes)
    if (type.name == typeName && slot >= explorerSlot && slot <= slotsPerType) return &at(type, slot);
  return nullptr;
}

WatchedItem* ItemSlots::find(TextView slotName) {
  for (const auto& type : itemTypes)
    for (auto slot = explorerSlot + 1; slot <= slotsPerType; ++slot)
      if (at(type, slot).name() == slotName) return &at(type, slot);
  return nullptr;
}

bool ItemSlots::MapUnderylingItem(const Ref<Inspector>& inspector) {  // sic
  constexpr Procedure about{.name = u".MapUnderylingItem", .wording = wording::reason};
  return procedure(services_, about, [&](Step&) -> bool {
    const Text typeName = held(held(inspector).currentItem()).typeName();
    for (const auto& type : itemTypes)
      if (type.name == typeName) return map(type, inspector);
    return false;
  });
}

bool ItemSlots::map(const ItemType& type, const Ref<Inspector>& inspector) {
  const Procedure about{.name = type.mapProcedure, .wording = wording::reason};
  return procedure(services_, about, [&](Step&) -> bool {
    for (auto slot = explorerSlot + 1; slot <= slotsPerType; ++slot) {
      if (at(type, slot).item()) continue;
      at(type, slot).set(held(inspector).currentItem());
      break;
    }
    return true;
  });
}

void ItemSlots::ClearExplorerItems() {
  for (const auto& type : itemTypes) at(type, explorerSlot).reset();
}

void ItemSlots::ReleaseAllItemSlots() {
  for (const auto& type : itemTypes)
    for (auto slot = explorerSlot + 1; slot <= slotsPerType; ++slot)
      ignoringErrors([&] { at(type, slot).reset(); });
}

}  // namespace quillfile
