#include "hosts/mailbox/store/mail_folder.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "hosts/mailbox/mime/decode.h"
#include "hosts/mailbox/services/failure.h"
#include "hosts/mailbox/services/file_content.h"
#include "hosts/mailbox/services/names.h"
#include "hosts/mailbox/store/item_id.h"
#include "hosts/mailbox/store/maildir_name.h"
#include "hosts/mailbox/store/temporary_name.h"

namespace quillfile::mailbox {
namespace {

// Tries until a message stands still: each try that fails means that another program has just renamed it.
constexpr int renameTries = 100;

[[noreturn]] void neverStill(std::string_view what, const std::string& path) {
  throw fromErrno(EBUSY, what, path);
}

}  // namespace

std::string_view roleName(FolderRole role) {
  constexpr std::string_view names[] = {"", "inbox", "sent", "drafts", "deleted", "outbox"};
  return names[static_cast<std::size_t>(role)];
}

MailFolder::MailFolder(std::string directory, std::string path, std::string storeId, FolderRole role)
    : directory_(std::move(directory)), path_(std::move(path)), storeId_(std::move(storeId)), role_(role) {}

std::string MailFolder::name() const { return path_.substr(path_.rfind('/') + 1); }

std::string MailFolder::itemId(std::string_view unique) const {
  return path_ + "/" + printableUnique(unique);
}

std::string MailFolder::filePath(const Location& location) const {
  return directory_ + (location.isNew ? "/new/" : "/cur/") + location.fileName;
}

// A reading may miss a message that is renamed while it lasts, and what it found may have another name by the
// time of the look. So a message is gone when two readings in a row have not found it, and never because of a
// look.
std::optional<Location> MailFolder::find(std::string_view unique) const {
  const auto isThere = [&](const Location& location) {
    struct stat status {};
    const std::string path = filePath(location);
    if (::lstat(path.c_str(), &status) == 0) return true;
    if (errno != ENOENT) throw fromErrno(errno, "look at the message", path);
    return false;
  };
  const auto noted = notedLocations_.find(std::string{unique});
  if (noted != notedLocations_.end() && isThere(noted->second)) return noted->second;
  int missed = 0;
  for (int i = 0; i < renameTries; ++i) {
    const bool readNow = i > 0 || !remembered_;
    if (readNow) remembered_ = std::make_shared<const Listing>(list());
    if (const auto entry = remembered_->find(unique)) {
      Location location{.fileName = std::string{entry->fileName}, .isNew = entry->isNew};
      if (isThere(location)) return location;
      missed = 0;
    } else if (readNow && ++missed == 2) {
      return std::nullopt;
    }
  }
  neverStill("find the message", itemId(unique));
}

std::optional<Location> MailFolder::expected(std::string_view unique) const {
  const auto noted = notedLocations_.find(std::string{unique});
  if (noted != notedLocations_.end()) return noted->second;
  if (!remembered_) remembered_ = std::make_shared<const Listing>(list());
  const auto entry = remembered_->find(unique);
  if (!entry) return std::nullopt;
  return Location{.fileName = std::string{entry->fileName}, .isNew = entry->isNew};
}

void MailFolder::noteLocation(std::string_view unique, Location location) const {
  constexpr std::size_t most = 1024;
  if (notedLocations_.size() >= most) notedLocations_.clear();
  notedLocations_.insert_or_assign(std::string{unique}, std::move(location));
}

void MailFolder::forgetLocations() const {
  remembered_.reset();
  notedLocations_.clear();
}

std::shared_ptr<MessageFile> MailFolder::open(std::string_view unique) const {
  for (int i = 0; i < renameTries; ++i) {
    const auto location = find(unique);
    if (!location) return nullptr;
    if (auto message = MessageFile::open(filePath(*location))) return message;
  }
  neverStill("open the message", itemId(unique));
}

bool MailFolder::changeFlags(std::string_view unique, std::string_view set, std::string_view clear) const {
  for (int i = 0; i < renameTries; ++i) {
    const auto location = find(unique);
    if (!location) return false;
    const std::string_view flags = parseMaildirName(location->fileName).flags;
    const std::string wanted = changedFlags(flags, set, clear);
    const Location marked{.fileName = maildirFileName(unique, wanted)};
    const std::string from = filePath(*location);
    if (from == filePath(marked) || (location->isNew && wanted.empty())) return true;
    const int error = renameWithoutReplacing({AT_FDCWD, from}, {AT_FDCWD, filePath(marked)});
    if (error == 0) return noteLocation(unique, marked), true;
    if (error != ENOENT) throw fromErrno(error, "mark the message", from);
  }
  neverStill("mark the message", itemId(unique));
}

std::optional<std::string> MailFolder::moveTo(const MailFolder& target, std::string_view unique,
                                              std::string newUnique) const {
  const std::string forCopy = newUnique.empty() ? freshUniqueName() : newUnique;
  if (newUnique.empty()) newUnique = unique;
  for (int i = 0; i < renameTries; ++i) {
    const auto location = find(unique);
    if (!location) return std::nullopt;
    const std::string from = filePath(*location);
    const std::string_view flags = parseMaildirName(location->fileName).flags;
    const std::string name = location->isNew ? newUnique : maildirFileName(newUnique, flags);
    const Location there{.fileName = name, .isNew = location->isNew};
    const int error = renameWithoutReplacing({AT_FDCWD, from}, {AT_FDCWD, target.filePath(there)});
    if (error == 0) return target.noteLocation(newUnique, there), newUnique;
    if (error == EXDEV) {
      const auto message = MessageFile::open(from);
      if (!message) continue;
      newUnique = target.create(
          [message](const Sink& sink) {
            mime::decode(mime::Encoding::identity, message->bytes(), sink, message->behind());
          },
          flags, forCopy);
      if (::unlink(from.c_str()) == 0) return newUnique;
      throw fromErrno(errno, "delete the message that was copied", from);
    }
    if (error == EEXIST) {
      newUnique = freshUniqueName();
    } else if (error != ENOENT) {
      throw fromErrno(error, "move the message", from);
    }
  }
  neverStill("move the message", itemId(unique));
}

bool MailFolder::erase(std::string_view unique) const {
  for (int i = 0; i < renameTries; ++i) {
    const auto location = find(unique);
    if (!location) return false;
    const std::string path = filePath(*location);
    if (::unlink(path.c_str()) == 0) return true;
    if (errno != ENOENT) throw fromErrno(errno, "delete the message", path);
  }
  neverStill("delete the message", itemId(unique));
}

std::string MailFolder::create(const Content& content, std::string_view flags, std::string unique) const {
  const std::string temporary = directory_ + "/tmp/" + temporaryMessageName(unique);
  const Descriptor file{::open(temporary.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600)};
  if (!file) throw fromErrno(errno, "create the message", temporary);
  ::flock(file.get(), LOCK_EX | LOCK_NB);
  try {
    writeContent(file.get(), content, temporary);
    if (::fsync(file.get()) != 0) throw fromErrno(errno, "flush the message", temporary);
    if (!holdsContent(file.get(), content, temporary))
      throw failure("The new message does not read back as it was written: " + temporary);
    const std::string path = filePath({.fileName = maildirFileName(unique, flags)});
    if (const int error = renameWithoutReplacing({AT_FDCWD, temporary}, {AT_FDCWD, path}); error != 0)
      throw fromErrno(error, "create the message", path);
    flushDirectory(directory_ + "/cur");
    noteLocation(unique, {.fileName = maildirFileName(unique, flags)});
  } catch (...) {
    ::unlink(temporary.c_str());
    throw;
  }
  return unique;
}

}  // namespace quillfile::mailbox
