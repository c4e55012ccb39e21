// MailStore: the folders below one directory. Two layouts, recognised by what is there:
//   Maildir++    the directory is itself a Maildir, the Inbox; folders are ".Sent", ".Projects.2026" beside
//   cur/ nested       as sync programs write it: "INBOX", "Projects/2026", each a directory with cur/, new/
//   and tmp/
// Opening and listing never create anything.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "hosts/mailbox/store/mail_folder.h"

namespace quillfile::mailbox {

enum class StoreLayout { maildir_plus_plus, nested };

// Where a role's folder is when it has no common name: role -> shown path.
using RoleChoices = std::map<FolderRole, std::string>;

// An item's id taken apart.
struct ItemAddress {
  std::shared_ptr<MailFolder> folder;
  std::string unique;
};

class MailStore {
 public:
  // Throws Failure, with a sentence that says so, when `directory` is not there or is no mail store.
  static std::shared_ptr<MailStore> open(const std::string& directory, RoleChoices choices = {});
  // Makes `directory` (with its parents) an empty Maildir++ store when there is none yet, and opens it.
  static std::shared_ptr<MailStore> create(const std::string& directory);

  const std::string& directory() const { return directory_; }
  StoreLayout layout() const { return layout_; }
  const std::string& id() const { return id_; }  // the folders' storeId()

  // Every folder: the Inbox first, then by shown path. Folders made or removed by other programs since show
  // up after refresh().
  const std::vector<std::shared_ptr<MailFolder>>& folders() const { return folders_; }
  void refresh();

  // By shown path ("Inbox" in any letter case), or by entry id; null when there is none.
  std::shared_ptr<MailFolder> folder(std::string_view path) const;
  // The folder of a role; null when there is none.
  std::shared_ptr<MailFolder> find(FolderRole role) const;
  // The same, made on the spot when it is missing. Throws Failure when it cannot be made.
  std::shared_ptr<MailFolder> need(FolderRole role);
  // Makes a folder, or gives the one that is there. Throws Failure.
  std::shared_ptr<MailFolder> createFolder(std::string_view path);

  // An item id taken apart; none when it is no id of this store. Whether the message is there is
  // MailFolder::find's.
  std::optional<ItemAddress> address(std::string_view itemId) const;

 private:
  MailStore(std::string directory, RoleChoices choices);
  void assignRoles();

  std::string directory_;
  std::string id_;
  RoleChoices choices_;
  StoreLayout layout_ = StoreLayout::maildir_plus_plus;
  std::vector<std::shared_ptr<MailFolder>> folders_;
};

}  // namespace quillfile::mailbox
