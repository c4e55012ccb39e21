#include "hosts/mailbox/engine/folder_watcher.h"

#include <sys/inotify.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

#include "hosts/mailbox/services/failure.h"

namespace quillfile::mailbox {
namespace {

// A message appears by a rename or a link; one that is copied into place is complete when it is closed.
constexpr std::uint32_t messageEvents = IN_MOVED_TO | IN_CREATE | IN_CLOSE_WRITE;
constexpr std::uint32_t directoryEvents = IN_MOVED_TO | IN_MOVED_FROM | IN_CREATE | IN_DELETE;
constexpr std::uint32_t fileEvents = IN_MOVED_TO | IN_CLOSE_WRITE;
constexpr std::uint32_t itselfEvents = IN_DELETE_SELF | IN_MOVE_SELF;

std::string folderOf(const std::string& path) { return path.substr(0, path.rfind('/')); }
std::string nameOf(const std::string& path) { return path.substr(path.rfind('/') + 1); }

}  // namespace

// Null when the directory is not there; the one above tells when it is made.
FolderWatcher::Place* FolderWatcher::add(const std::string& path, std::uint32_t events) {
  const int watch =
      ::inotify_add_watch(inotify_.get(), path.c_str(), events | itselfEvents | IN_ONLYDIR | IN_MASK_ADD);
  if (watch >= 0) return &places_[watch].emplace_back();
  if (errno == ENOENT || errno == ENOTDIR) return nullptr;
  if (errno == ENOSPC)
    throw failure("The system has no room for another watch on " + path +
                  " (fs.inotify.max_user_watches); --poll SECONDS does without");
  throw fromErrno(errno, "watch", path);
}

void FolderWatcher::watch(const std::string& store, const std::vector<WatchedFolder>& folders,
                          const std::string& file) {
  places_.clear();
  inotify_ = Descriptor{::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)};
  if (!inotify_) throw fromErrno(errno, "watch", store);
  // From the top down: whatever is made below a directory after it is watched is told.
  const auto above = [&](const std::string& directory, const std::string& inside) {
    if (Place* place = add(directory, directoryEvents)) place->inside.insert(inside);
  };
  for (const WatchedFolder& folder : folders) {
    for (auto end = store.size(); end != std::string::npos && end < folder.directory.size();) {
      const auto next = folder.directory.find('/', end + 1);
      above(folder.directory.substr(0, end), folder.directory.substr(end + 1, next - end - 1));
      end = next;
    }
    for (const bool isNew : {true, false}) {
      const char* const name = isNew ? "new" : "cur";
      above(folder.directory, name);
      if (Place* place = add(folder.directory + "/" + name, messageEvents)) {
        place->folder = folder.path;
        place->isNew = isNew;
      }
    }
  }
  if (file.empty()) return;
  std::error_code error;
  const auto real = std::filesystem::canonical(file, error).string();  // what a link leads to is what changes
  for (const std::string& path : std::set<std::string>{file, error ? file : real})
    if (Place* place = add(folderOf(path), fileEvents)) place->file = nameOf(path);
}

void FolderWatcher::hear(int watch, std::uint32_t events, const std::string& name, News& news) {
  if ((events & (IN_Q_OVERFLOW | IN_IGNORED | IN_UNMOUNT | itselfEvents)) != 0) {
    news.folders = true;
    return;
  }
  const auto found = places_.find(watch);
  if (found == places_.end()) return;
  for (const Place& place : found->second) {
    if ((events & IN_ISDIR) != 0) {
      news.folders = news.folders || place.inside.contains(name);
    } else if (!place.folder.empty() && !name.empty() && name.front() != '.') {
      if ((events & messageEvents) != 0)
        news.appeared.push_back(
            {.folder = place.folder, .location = {.fileName = name, .isNew = place.isNew}});
    } else if (!place.file.empty() && name == place.file) {
      news.file = true;
    }
  }
}

FolderWatcher::News FolderWatcher::read() {
  News news;
  alignas(inotify_event) char buffer[16384];
  for (;;) {
    const auto size = inotify_ ? ::read(inotify_.get(), buffer, sizeof buffer) : 0;
    if (size < 0 && errno == EINTR) continue;
    if (size < 0 && errno != EAGAIN) throw fromErrno(errno, "watch", "the mail folders");
    if (size <= 0) return news;
    for (const char* at = buffer; at < buffer + size;) {
      const auto* const event = reinterpret_cast<const inotify_event*>(at);
      at += sizeof *event + event->len;
      hear(event->wd, event->mask, event->len != 0 ? event->name : "", news);
    }
  }
}

}  // namespace quillfile::mailbox
