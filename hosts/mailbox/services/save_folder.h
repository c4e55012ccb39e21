// SaveFolder: one folder that files are saved into, and the names in it: those on disk and those that are
// spoken for. A name is looked for on disk before it is given out. Where it is taken the folder is listed, so
// that finding its number costs no look for each; the listing is checked against the folder's change time.
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
  // False when another folder stands under the path by now, or none.
  bool stillThere() const;

  // `base` + `extension`, or with the first free "-1", "-2" … between them. The name is spoken for. `base` is
  // cut where the name would be longer than a name may be.
  std::string takeFreeName(const std::string& base, const std::string& extension);
  // Whether nothing on disk has that name.
  bool isFree(const std::string& name) const;
  void take(const std::string& name) { spokenFor_.insert(name); }
  bool spokenFor(const std::string& name) const { return spokenFor_.contains(name); }
  // The file has its name now: the listing knows it.
  void release(const std::string& name) { spokenFor_.erase(name); }
  // There will be no file of that name: it is free again.
  void giveBack(const std::string& name) {
    if (spokenFor_.erase(name) > 0) nextNumber_.clear();
  }
  bool idle() const { return spokenFor_.empty(); }

  // flock on the folder, so that two Quillfile processes do not choose names in it at once: a courtesy that
  // spares them doubt, since what settles every race is that no rename replaces. Taking it sweeps away the
  // temporary files of a run that was stopped. True when it is held, or the file system has no locks.
  bool tryLock();
  void unlock();
  bool locked() const { return locked_; }

  // A new empty file in the folder, open for reading and writing. It has no name where the file system has
  // such files and keeps them (O_TMPFILE, keepsNameless): then nothing is left of it when it goes before it
  // has one. Elsewhere `temporary` is set to its hidden name. Throws Failure.
  Descriptor create(std::string& temporary);

  // Between the two, files get their names on a second thread; the listing is not checked meanwhile.
  void beginNaming() { ++naming_; }
  void endNaming() { --naming_; }

  // An own change does not make the listing stale: call after each, with the name that has appeared, if any.
  // Costs nothing in a folder that was not listed.
  void noteOwnChange(const std::string& appeared = {});

 private:
  void refresh();
  bool taken(const std::string& name);
  void sweep();

  std::string path_;
  Descriptor directory_;
  bool locked_ = false;
  bool listed_ = false;
  std::size_t naming_ = 0;     // files
  std::int64_t changed_ = -1;  // the folder's change time when listed, nanoseconds
  bool nameless_;              // whether the file system may have files without names
  std::unordered_set<std::string> names_;
  std::unordered_set<std::string> spokenFor_;
  std::unordered_map<std::string, std::int64_t> nextNumber_;  // by base + "/" + extension
};

// The name of a new temporary file, hidden, and whether a name is one.
std::string temporaryName();
bool isTemporaryName(std::string_view name);

}  // namespace quillfile::mailbox
