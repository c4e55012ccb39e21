#include "hosts/mailbox/engine/watch.h"

#include <fcntl.h>
#include <malloc.h>
#include <poll.h>
#include <signal.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>

#include "core/module/procedure.h"
#include "hosts/mailbox/services/failure.h"
#include "hosts/mailbox/store/maildir_name.h"
#include "hosts/mailbox/store/store_tree.h"

namespace quillfile::mailbox {
namespace {

constexpr int mostTries = 3;
constexpr std::chrono::seconds whileBusy{1};  // another program has the message
constexpr std::chrono::seconds afterFailure[] = {std::chrono::seconds{5}, std::chrono::seconds{30}};
constexpr std::int64_t second = 1'000'000'000;  // nanoseconds
constexpr std::int64_t coarsest = 2 * second;   // the coarsest that file systems keep times

// False while a program has the file open for writing, as a copy into the folder does. A lease is granted
// only where nobody has; where there are no leases the file counts as complete.
bool isComplete(int file) {
  if (::fcntl(file, F_SETLEASE, F_RDLCK) != 0) return errno != EAGAIN;
  ::fcntl(file, F_SETLEASE, F_UNLCK);
  return true;
}

}  // namespace

Watch::Watch(Session& session, Seen& seen, WatchSetup setup)
    : session_(session), seen_(seen), setup_(std::move(setup)), watched_(session.watchedFolders()) {
  ::signal(SIGIO, SIG_IGN);  // a lease that another program waits for says so, and it is over by then
}

bool Watch::Stamp::isOld() const {
  timespec now{};
  ::clock_gettime(CLOCK_REALTIME, &now);
  const std::int64_t old = now.tv_sec * second + now.tv_nsec - coarsest;
  return modified[0] < old && modified[1] < old;
}

Watch::Stamp Watch::stampOf(const MailFolder& folder) {
  Stamp stamp;
  for (const int i : {0, 1}) {
    struct stat status {};
    if (::stat((folder.directory() + (i == 0 ? "/new" : "/cur")).c_str(), &status) != 0) continue;
    stamp.modified[i] = status.st_mtim.tv_sec * second + status.st_mtim.tv_nsec;
    stamp.inode[i] = status.st_ino;
  }
  return stamp;
}

std::vector<WatchedFolder> Watch::folders() {
  std::vector<WatchedFolder> folders;
  MailStore& store = session_.store();
  for (const std::string& id : watched_) {
    const auto folder = store.folder(id);
    folders.push_back(
        {.path = folder ? folder->path() : id,
         .directory = folder ? folder->directory() : directoryFor(store.directory(), store.layout(), id)});
  }
  return folders;
}

// A value that cannot be used is reported once, and the folders stay those of before: somebody is at work on
// the settings, and a watch outlives that.
void Watch::readSettings() {
  try {
    watched_ = session_.watchedFolders(true);
    complaint_.clear();
  } catch (const UnusableSetting& unusable) {
    if (std::exchange(complaint_, unusable.description) == unusable.description) return;
    session_.reportError(unusable.description, u"Quillfile.Watch");
    setup_.handled();
  }
}

void Watch::listen() {
  if (setup_.poll.count() > 0) return;
  MailStore& store = session_.store();
  store.refresh();
  std::vector<WatchedFolder> heard;
  do {  // a folder made after the tree was read and before it is listened to would be in neither
    heard = folders();
    watcher_.watch(store.directory(), heard, session_.settings().path());
    store.refresh();
  } while (folders() != heard);
}

// What was saved from by hand is handled.
void Watch::takeNotes() {
  for (const std::string& id : session_.toldByOthers()) {
    const auto address = session_.store().address(id);
    if (address && seen_.knows(address->folder->path())) seen_.add(address->folder->path(), address->unique);
  }
}

void Watch::lookAtAll() {
  takeNotes();
  for (const WatchedFolder& folder : folders()) look(folder.path);
  ::malloc_trim(0);  // a reading of a large folder takes more than the rest of the time
}

// A folder that cannot be read is reported, and tried again when it changes.
void Watch::look(const std::string& path) {
  const auto folder = session_.store().folder(path);
  if (!folder) return seen_.learn(path);  // whatever is in it once it is made has arrived
  const Stamp before = stampOf(*folder);
  const auto known = looked_.find(path);
  if (known != looked_.end() && known->second == before) return;
  guarded([&](Step&) { return list(*folder, before), true; },
          [&](const Failure& failure, const Step&) {
            session_.reportError(failure.description, u"Quillfile.Watch");
            return setup_.handled(), false;
          });
}

void Watch::list(const MailFolder& folder, const Stamp& before) {
  const bool first = !seen_.knows(folder.path());
  const Listing listing = folder.list();
  std::vector<std::uint64_t> hashes;
  hashes.reserve(listing.size());
  for (std::size_t i = 0; i < listing.size(); ++i) {
    const Entry entry = listing[i];
    hashes.push_back(seenHash(entry.unique));
    if (!first) add(folder, entry.unique, {.fileName = std::string{entry.fileName}, .isNew = entry.isNew});
  }
  std::sort(hashes.begin(), hashes.end());
  if (first) seen_.addAll(folder.path(), hashes);
  // A name can be missed while it is being changed; only a folder that stood still was seen whole.
  looked_.erase(folder.path());
  if (!before.isOld() || stampOf(folder) != before) return;
  looked_[folder.path()] = before;
  seen_.keepOnly(folder.path(), hashes);
}

bool Watch::add(const MailFolder& folder, std::string_view unique, Location location) {
  if (isOwnIn(folder.path(), unique) || seen_.contains(folder.path(), unique)) return false;
  Arrival arrival{.folder = folder.path(), .unique = std::string{unique}};
  folder.noteLocation(unique, std::move(location));
  if (!queued_.insert(arrival).second) return false;
  queue_.push_back(std::move(arrival));
  return true;
}

void Watch::hear() {
  FolderWatcher::News news = watcher_.read();
  if (news.file) {
    const auto before = watched_;
    readSettings();
    news.folders = news.folders || before != watched_;
  }
  for (const auto& [path, location] : news.appeared) {
    if (const auto folder = session_.store().folder(path))
      add(*folder, parseMaildirName(location.fileName).unique, location);
  }
  if (!news.folders) return;
  looked_.clear();
  listen();
  lookAtAll();
}

void Watch::later(const Arrival& arrival, std::chrono::seconds delay) {
  later_.emplace_back(Clock::now() + delay, arrival);
}

// Whether no other program is busy with the message; `gone` when it is no longer there.
bool Watch::isFree(const MailFolder& folder, const std::string& unique, bool& gone) {
  bool isFree = true;
  ignoringErrors([&] {  // one that cannot be opened is the module's to report
    const auto message = folder.open(unique);
    gone = !message;
    isFree = message && isComplete(message->descriptor()) && message->lock();
  });
  return isFree;
}

void Watch::handleNext() {
  const Arrival arrival = std::move(queue_.front());
  queue_.pop_front();
  queued_.erase(arrival);
  handle(arrival);
}

void Watch::handle(const Arrival& arrival) {
  takeNotes();
  const auto folder = session_.store().folder(arrival.folder);
  if (!folder || seen_.contains(arrival.folder, arrival.unique)) return;
  bool gone = false;
  if (!isFree(*folder, arrival.unique, gone)) {
    if (!gone) later(arrival, whileBusy);
    return;
  }
  const int tries = seen_.beginTry(arrival.folder, arrival.unique);
  if (tries <= mostTries) session_.arrived(folder, arrival.unique);
  const RunReport& report = session_.report();
  const bool failed = tries > mostTries || (!report.errors.empty() && report.nothingDone());
  if (failed && tries < mostTries) {
    later(arrival, afterFailure[tries - 1]);
  } else {
    if (failed) setAside(*folder, arrival.unique);
    seen_.add(arrival.folder, arrival.unique);
  }
  setup_.handled();
}

void Watch::setAside(const MailFolder& folder, const std::string& unique) {
  session_.reportError(
      fill(u"The message {} is left alone from now on: it could not be handled in three tries",
           fromUtf8(folder.itemId(unique))),
      u"Quillfile.Watch");
}

void Watch::catchUp() {
  lookAtAll();
  while (!queue_.empty() && !setup_.stopping()) handleNext();
  seen_.flush();
}

void Watch::begin() {
  listen();
  lookAtAll();
  seen_.flush();  // a first look that is forgotten would be made again, and take for seen what has come since
}

void Watch::run() {
  while (!setup_.stopping()) {
    hear();
    if (queue_.empty()) {
      rest();
    } else {
      handleNext();
    }
  }
  seen_.flush();
}

// Nothing is to be done until something is heard, or the time of something that was put off has come.
void Watch::rest() {
  seen_.flush();
  for (const WatchedFolder& watched : folders())
    if (const auto folder = session_.store().folder(watched.path)) folder->forgetLocations();
  const auto now = Clock::now();
  auto until = setup_.poll.count() > 0 ? now + setup_.poll : Clock::time_point::max();
  for (const auto& [due, arrival] : later_) until = std::min(until, due);
  const auto wait = std::chrono::duration_cast<std::chrono::milliseconds>(until - now).count() + 1;
  pollfd descriptors[] = {{.fd = setup_.stopDescriptor, .events = POLLIN, .revents = 0},
                          {.fd = watcher_.descriptor(), .events = POLLIN, .revents = 0}};
  const bool forever = until == Clock::time_point::max();
  ::poll(descriptors, 2, forever ? -1 : static_cast<int>(std::max<std::int64_t>(0, wait)));
  for (auto& [due, arrival] : std::exchange(later_, {})) {
    if (due > Clock::now()) {
      later_.emplace_back(due, arrival);
    } else if (queued_.insert(arrival).second) {
      queue_.push_back(arrival);
    }
  }
  if (setup_.poll.count() == 0) return;
  readSettings();
  session_.store().refresh();
  lookAtAll();
}

}  // namespace quillfile::mailbox
