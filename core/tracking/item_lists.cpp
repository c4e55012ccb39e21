#include "core/tracking/item_lists.h"

#include <algorithm>

#include "core/module/procedure.h"

namespace quillfile {
namespace {

std::vector<Text>& existing(std::optional<std::vector<Text>>& list) {
  if (!list) throw Failure{91, u"Object variable not set"};
  return *list;
}

bool holds(const std::vector<Text>& list, TextView entry) {
  return std::find(list.begin(), list.end(), entry) != list.end();
}

}  // namespace

void ItemLists::create() {
  pending_.emplace();
  userSaved_.emplace();
}

void ItemLists::release() {
  userSaved_.reset();
  pending_.reset();
}

bool ItemLists::AddToPendingList(TextView slotName) {
  constexpr Procedure about{.name = u".AddToPendingList", .wording = wording::reason};
  return procedure(
      services_, about,
      [&](Step&) -> bool {
        if (!IsOnPendingList(slotName)) existing(pending_).emplace_back(slotName);
        return true;
      },
      true);
}

bool ItemLists::IsOnPendingList(TextView slotName) { return pending_ && holds(*pending_, slotName); }

bool ItemLists::AddToUserSavedList(TextView entryId) {
  if (!IsOnUserSavedList(entryId)) existing(userSaved_).emplace_back(entryId);
  return false;
}

bool ItemLists::IsOnUserSavedList(TextView entryId) {
  constexpr Procedure about{.name = u".IsOnUserSavedList", .wording = wording::reason};
  return procedure(services_, about, [&](Step&) -> bool { return holds(existing(userSaved_), entryId); });
}

void ItemLists::PurgePendingList() {
  constexpr Wording wording{u"Error occurred at line {}. Reason: {}", true};
  procedure(services_, {.name = u".PurgePendingList", .wording = wording}, [&](Step& at) {
    at(1);
    if (!pending_) {
      pending_.emplace();
      return;
    }
    at(2);
    for (const auto& name : *pending_)
      if (const auto* slot = slots_.find(name)) AddToUserSavedList(held(slot->item()).entryId());
    at(3);
    pending_.emplace();
  });
}

std::int32_t ItemLists::CloseItem(const Ref<Item>&) { return 0; }

}  // namespace quillfile
