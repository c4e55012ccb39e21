#include "core/tracking/responses.h"

namespace quillfile {

void Responses::forEachSource(std::int32_t slot, TextView typeName,
                              const std::function<void(Item&)>& answer) {
  auto* watched = tracking_.slots().find(typeName, slot);
  if (!watched) return;
  if (slot != explorerSlot) {
    const auto item = watched->item();
    answer(held(item));
    return;
  }
  const auto selection = held(tracking_.selection().explorer()).selection();
  for (auto i = held(selection).count(); i >= 1; --i) {
    const auto item = selection->item(i);
    if (tracking_.slots().find(held(item).typeName(), explorerSlot)) answer(*item);
  }
}

bool Responses::ForwardItem(std::int32_t slot, TextView typeName) {
  bool displayed = false;
  forEachSource(slot, typeName, [&](Item& source) {
    auto forward = source.respond(Response::forward);
    auto& draft = held(forward);
    links_.ReplaceLinksWithAttachments(forward);
    draft.save();
    const Text entryId = draft.entryId();
    forward.reset();
    displayed = DisplayFromDrafts(entryId);
  });
  return displayed;
}

void Responses::reply(Response response, std::int32_t slot, TextView typeName) {
  forEachSource(slot, typeName, [&](Item& source) {
    const auto answer = source.respond(response);
    auto& shown = held(answer);
    links_.JustEraseLinks(answer);
    shown.display();
  });
}

bool Responses::ReplyItem(std::int32_t slot, TextView typeName) {
  return procedure(services_, {.name = u".ReplyItem", .wording = wording::reason}, [&](Step&) -> bool {
    reply(Response::reply, slot, typeName);
    return true;
  });
}

bool Responses::ReplyAllItem(std::int32_t slot, TextView typeName) {
  reply(Response::reply_all, slot, typeName);
  return true;
}

bool Responses::withDraft(TextView procedureName, TextView entryId, const std::function<void(Item&)>& act) {
  const Procedure about{.name = procedureName, .wording = wording::reason};
  return procedure(services_, about, [&](Step&) -> bool {
    const auto nameSpace = held(module_.outlookApp).nameSpace();
    const auto drafts = held(nameSpace).defaultFolder(DefaultFolder::drafts);
    for (auto i = held(drafts).itemCount(); i >= 1; --i) {
      const auto item = drafts->item(i);
      if (held(item).entryId() != entryId) continue;
      act(*item);
      return true;
    }
    return false;
  });
}

bool Responses::DisplayFromDrafts(TextView entryId) {
  return withDraft(u".DisplayFromDrafts", entryId, [](Item& item) { item.display(); });
}

bool Responses::DeleteFromDrafts(TextView entryId) {
  return withDraft(u".DeleteFromDrafts", entryId, [](Item& item) { item.remove(); });
}

}  // namespace quillfile
