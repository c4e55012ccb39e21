#include "hosts/mailbox/services/save_folder.h"

#include <dirent.h>
#include <fcntl.h>
#include <limits.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <charconv>
#include <memory>

#include "hosts/mailbox/services/failure.h"
#include "hosts/mailbox/services/names.h"

namespace quillfile::mailbox {
namespace {

constexpr std::string_view temporaryPrefix = ".quillfile-";
constexpr std::string_view temporarySuffix = ".part";

struct CloseDirectory {
  void operator()(DIR* directory) const { ::closedir(directory); }
};

// Calls `use` with each name in the folder, however many there are.
template <class Use>
void forEachName(int directory, const std::string& path, Use use) {
  const int own = ::openat(directory, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  const std::unique_ptr<DIR, CloseDirectory> stream{own < 0 ? nullptr : ::fdopendir(own)};
  if (!stream) throw fromErrno(errno, "read the folder", path);
  while (const dirent* entry = ::readdir(stream.get())) use(entry->d_name);
}

std::int64_t changeTime(const struct stat& status) {
  return std::int64_t{status.st_mtim.tv_sec} * 1'000'000'000 + status.st_mtim.tv_nsec;
}

bool makerLives(std::string_view temporary) {
  int process = 0;
  temporary.remove_prefix(temporaryPrefix.size());
  std::from_chars(temporary.data(), temporary.data() + temporary.size(), process);
  return process > 0 && process != ::getpid() && (::kill(process, 0) == 0 || errno == EPERM);
}

// The longest beginning of `name` within `size` bytes that does not end in half a character.
std::string cutUtf8(const std::string& name, std::size_t size) {
  if (name.size() <= size) return name;
  while (size > 0 && (static_cast<unsigned char>(name[size]) & 0xC0) == 0x80) --size;
  return name.substr(0, size);
}

}  // namespace

std::string temporaryName() {
  static std::atomic<std::uint32_t> counter{0};
  return std::string{temporaryPrefix} + std::to_string(::getpid()) + "-" + std::to_string(++counter) +
         std::string{temporarySuffix};
}

bool isTemporaryName(std::string_view name) {
  return name.starts_with(temporaryPrefix) && name.ends_with(temporarySuffix);
}

SaveFolder::SaveFolder(std::string path)
    : path_(std::move(path)),
      directory_(::open(path_.empty() ? "/" : path_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)),
      nameless_(directory_ && keepsNameless(directory_.get())) {
  if (!directory_) throw fromErrno(errno, "open the folder", path_);
}

bool SaveFolder::stillThere() const {
  struct stat named {
  }, open{};
  return ::stat(path_.empty() ? "/" : path_.c_str(), &named) == 0 && ::fstat(descriptor(), &open) == 0 &&
         named.st_ino == open.st_ino && named.st_dev == open.st_dev;
}

void SaveFolder::refresh() {
  struct stat status {};
  if (::fstat(descriptor(), &status) != 0) throw fromErrno(errno, "look at the folder", path_);
  if (listed_ && (naming_ > 0 || changeTime(status) == changed_)) return;
  names_.clear();
  nextNumber_.clear();
  forEachName(descriptor(), path_, [&](const char* name) { names_.insert(name); });
  changed_ = changeTime(status);
  listed_ = true;
}

bool SaveFolder::isFree(const std::string& name) const {
  struct stat status {};
  return ::fstatat(descriptor(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0;
}

bool SaveFolder::taken(const std::string& name) {
  if (names_.contains(name) || spokenFor_.contains(name)) return true;
  if (isFree(name)) return false;
  names_.insert(name);
  return true;
}

std::string SaveFolder::takeFreeName(const std::string& base, const std::string& extension) {
  const auto numbered = [&](std::int64_t number) {
    const std::string ending = (number > 0 ? "-" + std::to_string(number) : "") + extension;
    if (ending.size() >= NAME_MAX) throw fromErrno(ENAMETOOLONG, "name a file in", path_);
    return cutUtf8(base, NAME_MAX - ending.size()) + ending;
  };
  std::string name = numbered(0);
  if (!taken(name)) return take(name), name;
  refresh();
  const std::string key = base + "/" + extension;
  const auto known = nextNumber_.find(key);
  std::int64_t next = known == nextNumber_.end() ? 0 : known->second;
  while (taken(name = numbered(next))) ++next;
  take(name);
  nextNumber_.insert_or_assign(key, next + 1);
  return name;
}

Descriptor SaveFolder::create(std::string& temporary) {
  temporary.clear();
  if (nameless_) {
    Descriptor file{::openat(descriptor(), ".", O_RDWR | O_TMPFILE | O_CLOEXEC, 0666)};
    if (file) return file;
    nameless_ = errno != EOPNOTSUPP && errno != EISDIR && errno != EINVAL;
    if (nameless_) throw fromErrno(errno, "create a file in", path_);
  }
  temporary = temporaryName();
  Descriptor file{
      ::openat(descriptor(), temporary.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0666)};
  if (!file) throw fromErrno(errno, "create a file in", path_);
  noteOwnChange();
  return file;
}

bool SaveFolder::tryLock() {
  if (locked_) return true;
  if (::flock(descriptor(), LOCK_EX | LOCK_NB) != 0) return errno != EWOULDBLOCK;
  locked_ = true;
  sweep();
  return true;
}

void SaveFolder::unlock() {
  if (locked_) ::flock(descriptor(), LOCK_UN);
  locked_ = false;
}

// While this process holds the lock, temporary files that it has not made belong to nobody: unless their
// maker went on without the lock, and lives.
void SaveFolder::sweep() {
  if (!idle()) return;
  forEachName(descriptor(), path_, [&](const char* name) {
    if (isTemporaryName(name) && !makerLives(name)) ::unlinkat(descriptor(), name, 0);
  });
}

void SaveFolder::noteOwnChange(const std::string& appeared) {
  if (!listed_) return;
  if (!appeared.empty()) names_.insert(appeared);
  struct stat status {};
  if (::fstat(descriptor(), &status) == 0) changed_ = changeTime(status);
}

}  // namespace quillfile::mailbox
