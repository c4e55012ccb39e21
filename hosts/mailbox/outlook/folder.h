// MailboxFolder: a mail folder as the module sees it. Its items are those of the last count, in list order
// (oldest first), so that a walk by index sees one state of the folder.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "core/platform/outlook.h"
#include "hosts/mailbox/store/mail_folder.h"

namespace quillfile::mailbox {

class MailClient;
class MailboxItem;

class MailboxFolder final : public Folder {
 public:
  MailboxFolder(std::weak_ptr<MailClient> client, std::shared_ptr<MailFolder> folder)
      : client_(std::move(client)), folder_(std::move(folder)) {}

  Text name() override;
  Text entryId() override;
  Text storeId() override;
  std::int32_t itemCount() override;  // reads the folder anew; drafts that are not on disk yet come last
  Ref<Item> item(std::int32_t index) override;

  const std::shared_ptr<MailFolder>& folder() const { return folder_; }

 private:
  void read();

  std::weak_ptr<MailClient> client_;
  std::shared_ptr<MailFolder> folder_;
  std::optional<Listing> listing_;
  std::vector<std::shared_ptr<MailboxItem>> unsaved_;
};

}  // namespace quillfile::mailbox
