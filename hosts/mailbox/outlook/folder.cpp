#include "hosts/mailbox/outlook/folder.h"

#include "hosts/mailbox/outlook/client.h"
#include "hosts/mailbox/services/failure.h"

namespace quillfile::mailbox {

Text MailboxFolder::name() { return fromUtf8(folder_->name()); }
Text MailboxFolder::entryId() { return fromUtf8(folder_->entryId()); }
Text MailboxFolder::storeId() { return fromUtf8(folder_->storeId()); }

void MailboxFolder::read() {
  const auto client = client_.lock();
  if (!client) throw failure("The mail client has been closed");
  client->settle(*folder_);
  listing_ = folder_->list();
  unsaved_.clear();
  if (folder_->role() != FolderRole::drafts) return;
  for (const auto& item : client->newItems())
    if (!item->entryId().empty()) unsaved_.push_back(item);
}

std::int32_t MailboxFolder::itemCount() {
  read();
  return static_cast<std::int32_t>(listing_->size() + unsaved_.size());
}

Ref<Item> MailboxFolder::item(std::int32_t index) {
  if (!listing_) read();
  const auto client = client_.lock();
  const auto at = static_cast<std::size_t>(index) - 1;
  if (!client || index < 1 || at >= listing_->size() + unsaved_.size())
    throw failure("There is no item number " + std::to_string(index) + " in the folder " + folder_->path());
  if (at >= listing_->size()) return unsaved_[at - listing_->size()];
  return client->item(folder_, std::string{(*listing_)[at].unique});
}

}  // namespace quillfile::mailbox
