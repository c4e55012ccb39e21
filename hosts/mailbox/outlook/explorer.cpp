#include "hosts/mailbox/outlook/explorer.h"

#include "hosts/mailbox/outlook/client.h"
#include "hosts/mailbox/services/failure.h"

namespace quillfile::mailbox {

MailboxSelection::MailboxSelection(Items items)
    : items_(std::move(items)),
      ahead_(items_.size(), [this](std::size_t index) { return items_[index]->expectedPath(); }) {}

Ref<Item> MailboxSelection::item(std::int32_t index) {
  if (index < 1 || index > count())
    throw failure("There is no selected item number " + std::to_string(index));
  const auto& item = items_[static_cast<std::size_t>(index) - 1];
  item->clientOf().turnTo(*item);
  item->adopt(ahead_.take(static_cast<std::size_t>(index) - 1));
  return item;
}

void MailboxExplorer::showFolder(std::shared_ptr<MailboxFolder> folder) {
  folder_ = std::move(folder);
  selection_ = std::make_shared<MailboxSelection>(Items{});
}

void MailboxExplorer::select(Items items) {
  selection_ = std::make_shared<MailboxSelection>(std::move(items));
  listeners_.deliver([](ExplorerEvents& listener) { listener.onSelectionChange(); });
}

bool MailboxInspector::close() { return item_->userCloses(); }

}  // namespace quillfile::mailbox
