// SavedFiles: files on their way to disk. A saved file is written whole to a hidden temporary file beside its
// target, and from then on answers under its final path although that name appears only when its batch
// commits. Names that are spoken for are remembered here, so that "the first free number" never costs a probe
// for each number.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

#include "hosts/mailbox/services/content.h"
#include "hosts/mailbox/services/descriptor.h"
#include "hosts/mailbox/services/save_folder.h"

namespace quillfile::mailbox {

// One saved file. Shared between the batch and whoever saved it.
struct SavedFile {
  enum class State {
    waiting,    // complete in its temporary file
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
  std::string temporary;  // name within the folder; empty once it has its final name
  Descriptor file;        // open until it is committed
  bool replaces = false;  // it may take the place of a file that is there: the user or a setting said so
};

class SavedFiles {
 public:
  // Writes `content` to a temporary file beside `path` and gives the file that now answers under `path`. A
  // file that already is at `path` is replaced at commit, unless firstFreePath() gave the name out as free; a
  // read-only one is not: Failure. A waiting file of the same path is abandoned. Throws Failure, and then
  // nothing is left.
  std::shared_ptr<SavedFile> save(const std::string& path, const Content& content);

  // What FileSystem::firstFreePath answers; the name is spoken for from here on. Cuts `base` where name and
  // number would be longer than the file system allows.
  std::string firstFreePath(const std::string& folder, const std::string& base, const std::string& extension);

  // The waiting file that answers under `path`; null when there is none.
  std::shared_ptr<SavedFile> waiting(const std::string& path) const;
  // True when `path` names a file, waiting or on disk, that is no directory.
  bool listed(const std::string& path) const;
  // Deletes the file at `path`. One that is on disk only stops answering, and goes at commit: when another is
  // saved to its path meanwhile it is replaced in one step. Throws Failure when it is not there or is
  // read-only.
  void remove(const std::string& path);

 private:
  friend class Batch;
  std::shared_ptr<SaveFolder> folderOf(const std::string& directory);

  std::map<std::string, std::shared_ptr<SaveFolder>, std::less<>> folders_;
  std::unordered_map<std::string, std::shared_ptr<SavedFile>> waiting_;  // by path
  std::unordered_map<std::string, bool> removed_;  // by path: on disk, but gone for the caller
};

}  // namespace quillfile::mailbox
