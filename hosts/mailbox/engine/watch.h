// Watch: tells the module of each message that arrives in a watched folder, once, while it runs and, by what
// it remembers, of what came while it did not. What Quillfile itself put there has not arrived.
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "hosts/mailbox/engine/folder_watcher.h"
#include "hosts/mailbox/engine/seen.h"
#include "hosts/mailbox/engine/session.h"

namespace quillfile::mailbox {

struct WatchSetup {
  std::chrono::seconds poll{0};    // between two looks; 0: the system tells
  int stopDescriptor = -1;         // readable once it is to end
  std::function<bool()> stopping;  // true from then on
  // A message has been handled, or an error met: the session's report says how, and is cleared by this.
  std::function<void()> handled;
};

class Watch {
 public:
  // The session has been started.
  Watch(Session& session, Seen& seen, WatchSetup setup);

  // Handles what has arrived since the last run, oldest first in each folder; what is there at the first look
  // counts as seen. Throws Failure when what was seen cannot be remembered.
  void catchUp();
  // Listens, and looks at every folder once: whatever arrives from here on is handled by run(). Throws
  // Failure.
  void begin();
  // After begin(): catches up, and goes on until it is to stop. Throws Failure.
  void run();

 private:
  using Clock = std::chrono::steady_clock;
  struct Arrival {
    std::string folder, unique;
    // NOLINTNEXTLINE(modernize-use-nullptr): clang-tidy 14 misreads this line
    auto operator<=>(const Arrival&) const = default;
  };
  // What a folder's directories do not share with their earlier selves once something in them has changed.
  struct Stamp {
    std::int64_t modified[2] = {-1, -1};  // new/ and cur/, nanoseconds since 1970; -1: not there
    std::uint64_t inode[2] = {0, 0};
    bool operator==(const Stamp&) const = default;
    bool isOld() const;  // a change from now on cannot leave it the same
  };
  static Stamp stampOf(const MailFolder& folder);

  std::vector<WatchedFolder> folders();
  void readSettings();
  void listen();
  void hear();
  void lookAtAll();
  void look(const std::string& path);
  void list(const MailFolder& folder, const Stamp& before);
  bool add(const MailFolder& folder, std::string_view unique, Location location);
  void handleNext();
  void handle(const Arrival& arrival);
  bool isFree(const MailFolder& folder, const std::string& unique, bool& gone);
  void later(const Arrival& arrival, std::chrono::seconds delay);
  void setAside(const MailFolder& folder, const std::string& unique);
  void rest();
  void takeNotes();

  Session& session_;
  Seen& seen_;
  WatchSetup setup_;
  FolderWatcher watcher_;
  std::set<std::string> watched_;
  Text complaint_;                       // about the settings as they are
  std::map<std::string, Stamp> looked_;  // by path: how a folder was when all of it had been seen
  std::deque<Arrival> queue_;
  std::set<Arrival> queued_;
  std::vector<std::pair<Clock::time_point, Arrival>> later_;
};

}  // namespace quillfile::mailbox
