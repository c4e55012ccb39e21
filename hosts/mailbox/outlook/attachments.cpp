#include "hosts/mailbox/outlook/attachments.h"

#include <algorithm>

#include "hosts/mailbox/outlook/client.h"
#include "hosts/mailbox/outlook/item.h"
#include "hosts/mailbox/services/failure.h"

namespace quillfile::mailbox {
void MailboxAttachment::saveAsFile(TextView path) {
  const auto client = item_->client();
  auto& changes = item_->changes();
  // Two processes never save from one message at once: the second would only add a file of the same content.
  if (const auto& message = item_->opened().message; message && message->file() && !message->file()->lock())
    throw failure("Another program is working on the message");
  auto file = client->setup().batch.files().save(toUtf8(path), source_->content());
  file->item = toUtf8(item_->entryId());
  file->attachment = toUtf8(fileName());
  changes.saved[source_.get()] = std::move(file);
  client->underWay(item_);
}

Removal MailboxAttachment::remove() {
  auto& item = *item_;
  auto& sources = item.ownSources();
  const auto place = std::find(sources.begin(), sources.end(), source_);
  if (place == sources.end()) throw failure("The attachment is no longer part of the item");
  const auto added = std::find_if(item.changes().added.begin(), item.changes().added.end(),
                                  [&](const AddedAttachment& a) { return a.source == source_; });
  if (added != item.changes().added.end()) {
    const auto& gone = item.opened().removedBefore;
    const auto was = added->was ? std::find(gone.begin(), gone.end(), *added->was) : gone.end();
    if (was != gone.end()) item.opened().awaited.emplace(was->path, was - gone.begin());
    item.changes().added.erase(added);
  } else {
    const auto saved = item.changes().saved.find(source_.get());
    const auto file = saved == item.changes().saved.end() ? nullptr : saved->second;
    if (auto reason = item.whyItStays(*source_, file.get()); !reason.empty()) {
      item.decline(reason);
      return Removal::declined;
    }
    item.touch();
    item.changes().memory += item.memoryOf(*source_, file.get());
    item.changes().taken.push_back({source_, file});
  }
  sources.erase(std::find(sources.begin(), sources.end(), source_));
  return Removal::removed;
}

std::int32_t MailboxAttachments::count() { return static_cast<std::int32_t>(item_->sources().size()); }

Ref<Attachment> MailboxAttachments::item(std::int32_t index) {
  const auto& sources = item_->sources();
  if (index < 1 || index > static_cast<std::int32_t>(sources.size()))
    throw failure("There is no attachment number " + std::to_string(index));
  return std::make_shared<MailboxAttachment>(item_, sources[static_cast<std::size_t>(index) - 1]);
}

void MailboxAttachments::add(const NewAttachment& attachment) {
  auto& item = *item_;
  const auto client = item.client();
  auto& sources = item.ownSources();
  const auto path = toUtf8(attachment.source);
  AddedAttachment added{
      fileSource(attachment.source, client->setup().batch.files().onDisk(path), attachment.displayName), {}};
  item.touch();
  const auto known = item.opened().awaited.lower_bound({path, 0});
  if (known != item.opened().awaited.end() && known->first == path) {
    added.was = item.opened().removedBefore[known->second];
    item.opened().awaited.erase(known);
  }
  sources.push_back(added.source);
  item.changes().added.push_back(std::move(added));
}

}  // namespace quillfile::mailbox
