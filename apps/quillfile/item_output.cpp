#include "apps/quillfile/item_output.h"

#include "hosts/mailbox/engine/progress.h"

namespace quillfile::app {

Json itemJson(mailbox::MailboxItem& item, std::size_t number) {
  Json attachments = Json::array();
  const auto all = item.attachments();
  for (std::int32_t i = 1; i <= all->count(); ++i) {
    const auto attachment = all->item(i);
    attachments.push_back({{"index", i},
                           {"file_name", toUtf8(attachment->fileName())},
                           {"display_name", toUtf8(attachment->displayName())},
                           {"type", attachment->type()},
                           {"size", attachment->size()}});
  }
  const auto sender = item.sender();
  return {{"number", number},
          {"id", toUtf8(item.entryId())},
          {"type", toUtf8(item.typeName())},
          {"subject", toUtf8(item.subject())},
          {"sender_name", toUtf8(sender.name)},
          {"sender_address", toUtf8(sender.address)},
          {"received", toUtf8(item.receivedWithOffset())},
          {"unread", item.unRead()},
          {"size", item.size()},
          {"format", toUtf8(item.bodyFormat())},
          {"attachments", attachments}};
}

std::string attachmentsText(mailbox::MailboxItem& item) {
  const auto all = item.attachments();
  if (all->count() == 0) return "";
  std::int64_t bytes = 0;
  for (std::int32_t i = 1; i <= all->count(); ++i) bytes += all->item(i)->size();
  return std::to_string(all->count()) + " (" + mailbox::sizeText(bytes) + ")";
}

}  // namespace quillfile::app
