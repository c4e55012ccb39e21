// FolderWatcher: hears from the system (inotify) what appears in new/ and cur/ of some mail folders, and that
// one of them was made, removed or replaced. It reads no folder itself, and costs nothing while nothing
// happens.
#pragma once

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "hosts/mailbox/services/descriptor.h"
#include "hosts/mailbox/store/mail_folder.h"

namespace quillfile::mailbox {

struct WatchedFolder {
  std::string path;       // shown
  std::string directory;  // on disk; need not be there
  friend bool operator==(const WatchedFolder&, const WatchedFolder&) = default;
};

class FolderWatcher {
 public:
  // A name that appeared; by the time it is looked at it may be gone again.
  struct Appeared {
    std::string folder;  // shown path
    Location location;
  };
  struct News {
    std::vector<Appeared> appeared;
    bool folders = false;  // more happened than can be told: watch() anew, then read every folder
    bool file = false;     // the file that is watched too was changed
  };

  // Listens from now on, and forgets what it listened to before. `store` is the directory that all folders
  // lie in; `file` is a file that people edit, or a link to one; empty for none. Throws Failure when the
  // system has no room for more watches.
  void watch(const std::string& store, const std::vector<WatchedFolder>& folders, const std::string& file);

  // What was heard since last asked; never waits. Throws Failure.
  News read();
  // Readable when there is something to read.
  int descriptor() const { return inotify_.get(); }

 private:
  struct Place {
    std::string folder;            // in new/ or cur/ of this one
    bool isNew = false;            // in new/
    std::set<std::string> inside;  // directories in here that matter
    std::string file;              // the file in here that matters
  };
  Place* add(const std::string& path, std::uint32_t events);
  void hear(int watch, std::uint32_t events, const std::string& name, News& news);

  Descriptor inotify_;
  std::map<int, std::vector<Place>> places_;  // two paths can lead to one directory
};

}  // namespace quillfile::mailbox
