#include "hosts/mailbox/services/saved_files.h"

#include <fcntl.h>
#include <limits.h>
#include <stdio.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>

#include "hosts/mailbox/services/failure.h"
#include "hosts/mailbox/services/file_content.h"
#include "hosts/mailbox/services/names.h"

namespace quillfile::mailbox {
namespace {

constexpr std::size_t mostFolders = 64;  // kept open with their listings
constexpr int lockTries = 500;           // of 20 ms each; then the folder is used without the lock

// A path without doubled separators, so that one file has one path.
std::string plain(const std::string& path) {
  std::string result;
  result.reserve(path.size());
  for (const char c : path)
    if (c != '/' || result.empty() || result.back() != '/') result += c;
  return result;
}

std::string folderPart(const std::string& path) {
  const auto slash = path.rfind('/');
  return slash == std::string::npos ? "." : path.substr(0, slash);
}

std::string namePart(const std::string& path) { return path.substr(path.rfind('/') + 1); }

std::string withoutSeparator(std::string path) {
  while (!path.empty() && path.back() == '/') path.pop_back();
  return path;
}

bool readOnly(const struct stat& status) { return S_ISREG(status.st_mode) && (status.st_mode & 0222) == 0; }

// Gives the file that name in its folder unless that is taken. 0, or the error.
int nameIfFree(const SavedFile& file, const std::string& name) {
  const Place to{file.folder->descriptor(), name};
  return file.temporary.empty() ? linkNameless(file.file.get(), to)
                                : renameWithoutReplacing({to.directory, file.temporary}, to);
}

// Gives it that name whatever has it. 0, or the error.
int replace(SavedFile& file, const std::string& name) {
  if (file.temporary.empty()) {  // only what has a name can take another's
    const auto temporary = temporaryName();
    if (const int error = nameIfFree(file, temporary); error != 0) return error;
    file.temporary = temporary;
  }
  const int folder = file.folder->descriptor();
  return ::renameat(folder, file.temporary.c_str(), folder, name.c_str()) == 0 ? 0 : errno;
}

void checkName(const std::string& name, const std::string& path) {
  if (name.size() > NAME_MAX) throw fromErrno(ENAMETOOLONG, "save", path);
  if (name.empty() || name == "." || name == "..") throw fromErrno(EISDIR, "save", path);
  if (path.find('\0') != std::string::npos) throw fromErrno(EINVAL, "save", path.c_str());
}

}  // namespace

std::shared_ptr<SaveFolder> SavedFiles::folderOf(const std::string& directory) {
  const auto known = folders_.find(directory);
  if (known != folders_.end()) {
    const bool inUse = !known->second->idle();
    if (inUse || known->second->stillThere()) return known->second;
    folders_.erase(known);
  }
  if (folders_.size() >= mostFolders)
    std::erase_if(folders_, [](const auto& entry) { return entry.second->idle(); });
  return folders_[directory] = std::make_shared<SaveFolder>(directory);
}

// Everything of one's own is let go before waiting for another process: two that wait never hold anything.
void SavedFiles::lock(SaveFolder& folder) {
  if (folder.tryLock()) return;
  settle_();
  for (int i = 0; i < lockTries && !folder.tryLock(); ++i) {
    const timespec pause{.tv_sec = 0, .tv_nsec = 20'000'000};
    ::nanosleep(&pause, nullptr);
  }
}

bool SavedFiles::mayReplace(SaveFolder& folder, const std::string& path, const std::string& name) {
  const bool wasFree = free_.erase(path) > 0;
  if (removed_.contains(path)) return true;
  if (wasFree) return false;
  struct stat status {};
  if (folder.spokenFor(name) ||
      ::fstatat(folder.descriptor(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0)
    return false;
  if (S_ISDIR(status.st_mode)) throw fromErrno(EISDIR, "replace", path);
  if (readOnly(status)) throw fromErrno(EACCES, "replace the read-only file", path);
  return true;
}

std::shared_ptr<SavedFile> SavedFiles::save(const std::string& askedPath, const Content& content) {
  const std::string path = plain(askedPath), name = namePart(path);
  checkName(name, path);
  auto folder = folderOf(folderPart(path));
  lock(*folder);
  auto file = std::make_shared<SavedFile>();
  if (const auto earlier = awaited(path)) {
    file->replaces = giveUp(*earlier) || earlier->replaces;
  } else {
    file->replaces = mayReplace(*folder, path, name);
  }
  file->path = file->asked = path;
  file->folder = folder;
  file->file = folder->create(file->temporary);
  folder->take(name);
  waiting_[path] = file;
  gathered_.files.push_back(file);
  try {
    file->size = writeContent(file->file.get(), content, path);
  } catch (...) {
    abandon(*file);
    throw;
  }
  bytes_ += file->size;
  return file;
}

std::string SavedFiles::firstFreePath(const std::string& folder, const std::string& base,
                                      const std::string& extension) {
  const std::string directory = withoutSeparator(plain(folder));
  const auto known = folderOf(directory);
  lock(*known);
  std::string path = directory + "/" + known->takeFreeName(base, extension);
  given_.emplace_back(known, path);
  return path;
}

bool SavedFiles::claim(const std::string& askedPath) {
  const std::string path = plain(askedPath), name = namePart(path);
  const auto folder = folderOf(folderPart(path));
  lock(*folder);
  const bool known = waiting_.contains(path) || removed_.contains(path);
  if (known || name.empty() || !folder->isFree(name)) return false;
  free_.insert(path);
  folder->take(name);
  given_.emplace_back(folder, path);
  return true;
}

std::shared_ptr<SavedFile> SavedFiles::awaited(const std::string& path) {
  const auto found = waiting_.find(path);
  if (found == waiting_.end()) return nullptr;
  if (found->second->underWay) await_();
  return found->second;
}

// Abandons the file. True when it has its name already: then it stays under it until it is replaced or
// removed, and the message that it came from is left as it is all the same.
bool SavedFiles::giveUp(SavedFile& file) {
  const bool named = file.state == SavedFile::State::committed;
  if (!named) return abandon(file), false;
  file.state = SavedFile::State::abandoned;
  file.temporary.clear();
  file.folder->noteOwnChange(file.name());
  file.folder->release(file.name());
  waiting_.erase(file.path);
  return true;
}

std::string SavedFiles::onDisk(const std::string& askedPath) {
  const auto found = waiting_.find(plain(askedPath));
  if (found == waiting_.end()) return askedPath;
  const auto file = found->second;
  settle_();
  return file->path;
}

std::shared_ptr<SavedFile> SavedFiles::waiting(const std::string& askedPath) {
  const std::string path = plain(askedPath);
  auto found = waiting_.find(path);
  if (found != waiting_.end() && found->second->underWay) settle_(), found = waiting_.find(path);
  return found == waiting_.end() ? nullptr : found->second;
}

bool SavedFiles::listed(const std::string& askedPath) {
  const std::string path = plain(askedPath);
  free_.erase(path);
  if (waiting_.contains(path)) return true;
  if (removed_.contains(path)) return false;
  struct stat status {};
  const bool there = ::lstat(path.c_str(), &status) == 0;
  if (!there) free_.insert(path);
  return there && !S_ISDIR(status.st_mode);
}

void SavedFiles::remove(const std::string& askedPath) {
  const std::string path = plain(askedPath);
  if (const auto file = awaited(path); file && !giveUp(*file)) return;
  struct stat status {};
  if (removed_.contains(path)) throw fromErrno(ENOENT, "delete", path);
  if (::lstat(path.c_str(), &status) != 0) throw fromErrno(errno, "delete", path);
  if (S_ISDIR(status.st_mode)) throw fromErrno(EISDIR, "delete", path);
  if (readOnly(status)) throw fromErrno(EACCES, "delete the read-only file", path);
  if (::access(folderPart(path).c_str(), W_OK | X_OK) != 0) throw fromErrno(errno, "delete", path);
  removed_.insert(path);
  gathered_.removals.push_back(path);
}

bool SavedFiles::isFolder(const std::string& path) const {
  const auto known = path.empty() ? folders_.end() : folders_.find(withoutSeparator(plain(path)));
  if (known != folders_.end() && !known->second->idle()) return true;
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool SavedFiles::makeFolder(const std::string& askedPath) {
  const std::string path = withoutSeparator(plain(askedPath));
  struct stat status {};
  if (path.empty() || (::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode))) return true;
  const std::string parent = folderPart(path);
  if (parent != "." && !parent.empty() && !makeFolder(parent)) return false;
  if (::mkdir(path.c_str(), 0777) != 0)
    return errno == EEXIST && ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
  Descriptor within{::open(parent.empty() ? "/" : parent.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)};
  if (within) gathered_.newParents.push_back(std::move(within));
  return true;
}

GatheredFiles SavedFiles::take() {
  bytes_ = 0;
  return std::exchange(gathered_, {});
}

void SavedFiles::releaseUnusedNames() {
  for (const auto& [folder, path] : std::exchange(given_, {}))
    if (!waiting_.contains(path)) folder->giveBack(namePart(path));
}

void SavedFiles::abandon(SavedFile& file) {
  if (file.state != SavedFile::State::waiting) return;
  file.state = SavedFile::State::abandoned;
  if (!file.temporary.empty()) {
    ::unlinkat(file.folder->descriptor(), file.temporary.c_str(), 0);
    file.folder->noteOwnChange();
  }
  file.temporary.clear();
  file.file.reset();  // while it is open, it takes its room on the disk
  file.folder->giveBack(file.name());
  const auto known = waiting_.find(file.path);
  if (known != waiting_.end() && known->second.get() == &file) waiting_.erase(known);
}

void SavedFiles::beginNaming(SavedFile& file) {
  file.underWay = true;
  file.folder->beginNaming();
}

void SavedFiles::endNaming(SavedFile& file) {
  file.folder->endNaming();
  file.underWay = false;
}

void SavedFiles::nameWhereFree(SavedFile& file) {
  if (!file.replaces && nameIfFree(file, file.name()) == 0) file.state = SavedFile::State::committed;
}

Text SavedFiles::giveName(SavedFile& file) {
  SaveFolder& folder = *file.folder;
  const std::string name = file.name();
  int error = 0;
  std::string given = name;
  if (file.state == SavedFile::State::committed) {
    // by nameWhereFree()
  } else if (file.replaces) {
    error = replace(file, name);
    removed_.erase(file.path);
  } else {
    const auto point = name.rfind('.');
    const std::string base = name.substr(0, point), extension = point == name.npos ? "" : name.substr(point);
    while ((error = nameIfFree(file, given)) == EEXIST) {
      const std::string next = folder.takeFreeName(base, extension);
      if (given != name) folder.release(given);
      given = next;
    }
  }
  if (error != 0) {
    if (given != name) folder.release(given);
    abandon(file);
    return fromErrno(error, "give the saved file its name", file.path).description;
  }
  waiting_.erase(file.path);
  folder.noteOwnChange(given);
  folder.release(name);
  folder.release(given);
  file.temporary.clear();
  file.path = folder.path() + "/" + given;
  file.state = SavedFile::State::committed;
  return {};
}

Text SavedFiles::carryOut(const std::string& removal) {
  if (removed_.erase(removal) == 0) return {};  // a saved file has taken its place
  if (::unlink(removal.c_str()) == 0 || errno == ENOENT) return {};
  return fromErrno(errno, "delete", removal).description;
}

void SavedFiles::releaseIdleFolders() {
  for (auto& [path, folder] : folders_)
    if (folder->idle()) folder->unlock();
}

}  // namespace quillfile::mailbox
