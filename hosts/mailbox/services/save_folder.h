// SaveFolder: one folder that files are saved into, and the names in it: those on disk, as last listed, and
// those that are spoken for. The listing is checked against the folder's own change time.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "hosts/mailbox/services/descriptor.h"

namespace quillfile::mailbox {

class SaveFolder {
 public:
  // Opens the folder; throws Failure when it is not there.
  explicit SaveFolder(std::string path);

  const std::string& path() const { return path_; }
  int descriptor() const { return directory_.get(); }
  std::uint64_t device() const { return device_; }

  // `base` + `extension`, or with the first free "-1", "-2" … between them. The name is spoken for.
  std::string takeFreeName(const std::string& base, const std::string& extension);
  void take(const std::string& name) { spokenFor_.insert(name); }
  bool spokenFor(const std::string& name) const { return spokenFor_.contains(name); }
  void release(const std::string& name);

  // flock on the folder, so that two Quillfile processes do not choose names in it at once. tryLock() is true
  // where the file system has no locks.
  bool tryLock();
  void lock();
  void unlock();

  // Own changes do not make the listing stale: call after each.
  void noteOwnChange(const std::string& name, bool exists);

 private:
  void refresh();
  bool taken(const std::string& name);

  std::string path_;
  Descriptor directory_;
  std::uint64_t device_ = 0;
  bool locked_ = false;
  bool listed_ = false;
  std::int64_t changed_ = -1;  // the folder's change time when listed, nanoseconds
  std::unordered_set<std::string> names_;
  std::unordered_set<std::string> spokenFor_;
  std::unordered_map<std::string, std::int64_t> nextNumber_;  // by base + "/" + extension
};

}  // namespace quillfile::mailbox
