// SavedFiles: files on their way to disk. A saved file is written whole to a file without a name, or with a
// hidden temporary one, in the folder of its target, and from then on answers under its final path although
// that name appears only when its batch commits. Names that are spoken for are remembered here, so that "the
// first free number" never costs a probe for each number.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "core/text/text.h"
#include "hosts/mailbox/services/content.h"
#include "hosts/mailbox/services/descriptor.h"
#include "hosts/mailbox/services/save_folder.h"

namespace quillfile::mailbox {

// One saved file. Shared between the batch and whoever saved it.
struct SavedFile {
  enum class State {
    waiting,    // complete, but not under `path` yet
    committed,  // complete under `path`
    abandoned,  // nothing is left of it: replaced or deleted within the batch, or its commit failed
  };
  std::string path;       // the final path. At commit it may become the next free one; `asked` then differs
  std::string asked;      // the path it was saved to
  std::int64_t size = 0;  // bytes
  State state = State::waiting;
  std::string item;        // for reports: the id of the item that it comes from
  std::string attachment;  // for reports: the attachment's file name; empty for a saved e-mail

  // The batch's own.
  std::shared_ptr<SaveFolder> folder;
  std::string temporary;  // name within the folder; empty while it has none, and once it has its final one
  Descriptor file;        // open until its batch has looked at it for the last time
  bool replaces = false;  // it may take the place of a file that is there: the user or a setting said so
  bool underWay = false;  // a second thread is naming it: everyone else leaves it alone

  std::string name() const { return path.substr(path.rfind('/') + 1); }
};

// What was gathered since the last time it was taken, for one round of flushes.
struct GatheredFiles {
  std::vector<std::shared_ptr<SavedFile>> files;
  std::vector<std::string> removals;   // paths on disk that are to go
  std::vector<Descriptor> newParents;  // folders in which a folder was made

  bool empty() const { return files.empty() && removals.empty() && newParents.empty(); }
};

class SavedFiles {
 public:
  // `settle` commits and releases everything that is waiting; called when another process is using a folder,
  // or when a file is asked about that is being named. `await` only waits until nothing is being named.
  SavedFiles(std::function<void()> settle, std::function<void()> await)
      : settle_(std::move(settle)), await_(std::move(await)) {}

  // Writes `content` to a new file in the folder of `path` and gives the file that now answers under `path`.
  // A file that already is at `path` is replaced at commit, unless firstFreePath(), claim() or listed()
  // called the name free: then it is another program's, come meanwhile. A read-only one is not: Failure. A
  // waiting file of the same path is abandoned. Throws Failure, and then nothing is left.
  std::shared_ptr<SavedFile> save(const std::string& path, const Content& content);

  // What FileSystem::firstFreePath answers; the name is spoken for from here on. Whatever is on disk under a
  // name takes it, a folder or a link too. Cuts `base` where name and number would be longer than a name may
  // be.
  std::string firstFreePath(const std::string& folder, const std::string& base, const std::string& extension);

  // Speaks for the name of `path` until the event is over. False, and nothing is done, when anything is under
  // it: waiting, on disk or about to be removed. Throws Failure when its folder cannot be used.
  bool claim(const std::string& path);

  // The waiting file that answers under `path`; null when there is none. One that is being named is settled
  // first, and then waits no longer.
  std::shared_ptr<SavedFile> waiting(const std::string& path);
  // Where the bytes of what answers under `path` are on disk: a waiting file gets its name first, which may
  // be another.
  std::string onDisk(const std::string& path);
  // True when `path` names a file, waiting or on disk, that is no directory.
  bool listed(const std::string& path);
  // Deletes the file at `path`. One that is on disk stops answering at once, and goes at commit: when another
  // is saved to its path meanwhile it is replaced in one step. Throws Failure when it is not there or is
  // read-only.
  void remove(const std::string& path);
  // Whether `path` is a folder; one in which files are waiting is, without a look at the disk.
  bool isFolder(const std::string& path) const;
  // Makes a folder and its missing parents, durable when the batch commits. False when it cannot be made.
  bool makeFolder(const std::string& path);

  // The event is over: names that firstFreePath() and claim() gave out and nobody saved to are free again.
  void releaseUnusedNames();

  // For Batch. What was gathered; the files go on answering until each is named or abandoned.
  GatheredFiles take();
  std::size_t fileCount() const { return gathered_.files.size(); }
  std::int64_t bytes() const { return bytes_; }
  bool empty() const { return gathered_.empty(); }
  // From the first call until the second, a second thread may call nameWhereFree() for the file.
  static void beginNaming(SavedFile& file);
  static void endNaming(SavedFile& file);
  // Gives the file its final name where that is free and nothing is to be replaced: it is committed then.
  static void nameWhereFree(SavedFile& file);
  // The file has its final name, or gets it here: the next free one when another program took that. Empty, or
  // why it has none; then nothing is left of it.
  Text giveName(SavedFile& file);
  // Takes away what is waiting under that path.
  void abandon(SavedFile& file);
  // Carries out a removal that remove() has promised. Empty, or why it failed.
  Text carryOut(const std::string& removal);
  // Lets other processes at the folders in which nothing is waiting.
  void releaseIdleFolders();

 private:
  std::shared_ptr<SaveFolder> folderOf(const std::string& directory);
  void lock(SaveFolder& folder);
  bool mayReplace(SaveFolder& folder, const std::string& path, const std::string& name);

  // The waiting file that answers under `path`, once no other thread is at work on it; null when there is
  // none.
  std::shared_ptr<SavedFile> awaited(const std::string& path);
  bool giveUp(SavedFile& file);

  std::function<void()> settle_, await_;
  std::map<std::string, std::shared_ptr<SaveFolder>, std::less<>> folders_;
  std::unordered_map<std::string, std::shared_ptr<SavedFile>> waiting_;  // by path
  std::unordered_set<std::string> removed_;  // paths on disk, but gone for the caller
  std::unordered_set<std::string> free_;     // paths at which the caller was told that nothing is
  std::vector<std::pair<std::shared_ptr<SaveFolder>, std::string>> given_;  // paths given out in this event
  GatheredFiles gathered_;
  std::int64_t bytes_ = 0;
};

}  // namespace quillfile::mailbox
