#include "hosts/mailbox/store/mail_store.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>

#include "hosts/mailbox/services/failure.h"
#include "hosts/mailbox/services/names.h"
#include "hosts/mailbox/store/folder_name.h"
#include "hosts/mailbox/store/item_id.h"
#include "hosts/mailbox/store/special_use.h"
#include "hosts/mailbox/store/store_tree.h"

namespace quillfile::mailbox {
namespace {

constexpr FolderRole specialRoles[] = {FolderRole::sent, FolderRole::drafts, FolderRole::deleted,
                                       FolderRole::outbox};

bool isInboxName(std::string_view path) {
  constexpr std::string_view inbox = "inbox";
  return path.size() == inbox.size() &&
         std::equal(path.begin(), path.end(), inbox.begin(),
                    [](char a, char b) { return (a >= 'A' && a <= 'Z' ? a + 32 : a) == b; });
}

void makeDirectory(const std::string& path) {
  if (::mkdir(path.c_str(), 0700) != 0 && errno != EEXIST) throw fromErrno(errno, "create the folder", path);
}

// tmp/ last: while cur/ or new/ is missing, the folder does not count as one.
void makeMaildir(const std::string& directory) {
  const std::string parent = directory.substr(0, directory.rfind('/'));
  std::error_code error;
  std::filesystem::create_directories(parent, error);
  if (error) throw fromErrno(error.value(), "create the folder", parent);
  makeDirectory(directory);
  for (const char* part : {"/cur", "/new", "/tmp"}) makeDirectory(directory + part);
  flushDirectory(directory);
  flushDirectory(parent);
}

bool usableFolderPath(std::string_view path) {
  for (std::size_t begin = 0; begin <= path.size();) {
    const auto end = std::min(path.find('/', begin), path.size());
    const std::string_view name = path.substr(begin, end - begin);
    if (name.empty() || name == "cur" || name == "new" || name == "tmp") return false;
    begin = end + 1;
  }
  return true;
}

std::string resolved(const std::string& directory) {
  const std::unique_ptr<char, void (*)(void*)> path{::realpath(directory.c_str(), nullptr), ::free};
  if (!path) throw fromErrno(errno, "open the mail store", directory);
  return path.get();
}

}  // namespace

MailStore::MailStore(std::string directory, RoleChoices choices)
    : directory_(std::move(directory)), id_(shownPath(directory_)), choices_(std::move(choices)) {}

std::shared_ptr<MailStore> MailStore::open(const std::string& directory, RoleChoices choices) {
  std::shared_ptr<MailStore> store{new MailStore(resolved(directory), std::move(choices))};
  store->refresh();
  if (store->folders_.empty())
    throw failure("Could not open the mail store " + directory + ": it holds no Maildir folder");
  return store;
}

std::shared_ptr<MailStore> MailStore::create(const std::string& directory) {
  std::error_code error;
  std::filesystem::create_directories(directory, error);
  if (error) throw fromErrno(error.value(), "create the mail store", directory);
  const std::string path = resolved(directory);
  if (findFolders(path).folders.empty()) makeMaildir(path);
  return open(path);
}

void MailStore::refresh() {
  StoreTree tree = findFolders(directory_);
  layout_ = tree.layout;
  std::vector<std::shared_ptr<MailFolder>> found;
  for (const FoundFolder& place : tree.folders) {
    const auto known = std::find_if(folders_.begin(), folders_.end(), [&](const auto& folder) {
      return folder->directory() == place.directory && folder->path() == place.path;
    });
    found.push_back(known != folders_.end() ? *known
                                            : std::make_shared<MailFolder>(place.directory, place.path, id_));
  }
  std::sort(found.begin(), found.end(), [](const auto& a, const auto& b) {
    const bool first = a->path() == "Inbox", second = b->path() == "Inbox";
    return first != second ? first : a->path() < b->path();
  });
  folders_ = std::move(found);
  assignRoles();
}

// A choice of the user's first; else the folder that names the role best.
void MailStore::assignRoles() {
  for (const auto& folder : folders_)
    folder->setRole(folder->path() == "Inbox" ? FolderRole::inbox : FolderRole::none);
  for (const FolderRole role : specialRoles) {
    const auto choice = choices_.find(role);
    if (choice != choices_.end()) {
      if (const auto chosen = folder(choice->second)) chosen->setRole(role);
      continue;
    }
    const auto better = [role](const auto& a, const auto& b) {
      return namesRole(a->path(), role) < namesRole(b->path(), role);
    };
    const auto best = std::max_element(folders_.begin(), folders_.end(), better);
    if (best != folders_.end() && namesRole((*best)->path(), role) > 0) (*best)->setRole(role);
  }
}

std::shared_ptr<MailFolder> MailStore::folder(std::string_view path) const {
  for (const auto& folder : folders_)
    if (folder->path() == path || (folder->role() == FolderRole::inbox && isInboxName(path))) return folder;
  return nullptr;
}

std::shared_ptr<MailFolder> MailStore::find(FolderRole role) const {
  for (const auto& folder : folders_)
    if (folder->role() == role) return folder;
  return nullptr;
}

std::shared_ptr<MailFolder> MailStore::need(FolderRole role) {
  if (auto found = find(role)) return found;
  const auto choice = choices_.find(role);
  return createFolder(choice != choices_.end() ? std::string_view{choice->second} : commonName(role));
}

std::shared_ptr<MailFolder> MailStore::createFolder(std::string_view path) {
  if (auto there = folder(path)) return there;
  const bool inbox = isInboxName(path);
  if (!inbox && !usableFolderPath(path))
    throw failure("Could not create the folder " + std::string{path} + ": that is no folder name");
  makeMaildir(directoryFor(directory_, layout_, inbox ? "Inbox" : path));
  refresh();
  if (auto made = folder(path)) return made;
  throw failure("Could not create the folder " + std::string{path} + ": its name cannot be kept");
}

std::optional<ItemAddress> MailStore::address(std::string_view itemId) const {
  const auto slash = itemId.rfind('/');
  if (slash == std::string_view::npos || slash + 1 == itemId.size()) return std::nullopt;
  auto in = folder(itemId.substr(0, slash));
  if (!in) return std::nullopt;
  return ItemAddress{.folder = std::move(in), .unique = uniqueFromPrintable(itemId.substr(slash + 1))};
}

}  // namespace quillfile::mailbox
