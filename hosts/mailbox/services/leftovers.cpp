#include "hosts/mailbox/services/leftovers.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <memory>
#include <string>
#include <vector>

#include "core/module/procedure.h"
#include "hosts/mailbox/services/descriptor.h"
#include "hosts/mailbox/services/names.h"
#include "hosts/mailbox/store/temporary_name.h"

namespace quillfile::mailbox {
namespace {

struct CloseDirectory {
  void operator()(DIR* directory) const { ::closedir(directory); }
};

std::vector<std::string> ownNames(const std::string& path) {
  std::vector<std::string> names;
  const std::unique_ptr<DIR, CloseDirectory> directory{::opendir(path.c_str())};
  while (const dirent* entry = directory ? ::readdir(directory.get()) : nullptr)
    if (parseTemporaryMessageName(entry->d_name)) names.emplace_back(entry->d_name);
  return names;
}

// The old message, wherever in the store it is; empty when it is gone.
std::string pathOfReplaced(const MailStore& store, const Replaced& replaced) {
  for (const auto& folder : store.folders()) {
    const Listing listing = folder->list();
    for (std::size_t i = 0; i < listing.size(); ++i) {
      const Entry entry = listing[i];
      if (replacedMessage(entry.unique, replaced.inode) != replaced) continue;
      std::string path = folder->filePath({std::string{entry.fileName}, entry.isNew});
      struct stat status {};
      if (::lstat(path.c_str(), &status) == 0 && status.st_ino == replaced.inode) return path;
    }
  }
  return {};
}

// The new message is in place when its file has another link than the one in tmp/, under its unique name.
bool inPlace(const MailFolder& folder, const std::string& unique, const struct stat& temporary) {
  if (temporary.st_nlink < 2) return false;
  const auto message = folder.open(unique);
  return message && message->inode() == temporary.st_ino && message->device() == temporary.st_dev;
}

void clear(const MailStore& store, const MailFolder& folder, const std::string& name, Leftovers& cleared) {
  const std::string path = folder.directory() + "/tmp/" + name;
  const auto message = *parseTemporaryMessageName(name);
  const Descriptor file{::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK)};
  struct stat status {};
  if (!file || ::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) return;
  if (::flock(file.get(), LOCK_EX | LOCK_NB) != 0) return;  // its maker is at work
  if (message.replaced && inPlace(folder, message.unique, status)) {
    if (const std::string old = pathOfReplaced(store, *message.replaced); !old.empty()) {
      if (::fsync(file.get()) != 0) return;
      flushDirectory(folder.directory() + "/cur");
      if (::unlink(old.c_str()) != 0) return;
      flushDirectory(old.substr(0, old.rfind('/')));
      ++cleared.duplicates;
    }
  }
  if (::unlink(path.c_str()) == 0) ++cleared.temporaries;
}

}  // namespace

Leftovers clearLeftovers(const MailStore& store) {
  Leftovers cleared;
  for (const auto& folder : store.folders())
    for (const std::string& name : ownNames(folder->directory() + "/tmp"))
      ignoringErrors([&] { clear(store, *folder, name, cleared); });
  return cleared;
}

}  // namespace quillfile::mailbox
