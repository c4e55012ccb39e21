// MailFolder: one Maildir folder. It makes the simple changes (flags, move, delete, create) at once and
// crash-safe; a change that must wait for saved files goes through Batch.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "hosts/mailbox/services/content.h"
#include "hosts/mailbox/store/listing.h"
#include "hosts/mailbox/store/maildir_name.h"
#include "hosts/mailbox/store/message_file.h"

namespace quillfile::mailbox {

enum class FolderRole { none, inbox, sent, drafts, deleted, outbox };
// "inbox", "sent", "drafts", "deleted", "outbox"; empty for none.
std::string_view roleName(FolderRole role);

// Where a message is now.
struct Location {
  std::string fileName;
  bool isNew = false;
};

class MailFolder {
 public:
  MailFolder(std::string directory, std::string path, std::string storeId,
             FolderRole role = FolderRole::none);

  const std::string& directory() const { return directory_; }  // on disk, without a separator at its end
  const std::string& path() const { return path_; }            // shown, UTF-8: "Inbox", "Projects/2026"
  std::string name() const;                                    // the last component of path()
  // Opaque; stable while the folder keeps its name. Printable UTF-8.
  const std::string& entryId() const { return path_; }
  const std::string& storeId() const { return storeId_; }
  FolderRole role() const { return role_; }
  void setRole(FolderRole role) { role_ = role; }  // the store's to say

  // The id of a message of this folder: opaque, printable, stable while it stays in the folder under its
  // unique name, whatever its flags.  "Inbox/1700000000.M1P2.host"
  std::string itemId(std::string_view unique) const;

  // The folder as it is now. Throws Failure when it cannot be read.
  Listing list() const { return Listing::read(directory_); }

  // Where the message is now; none when it is gone. One system call while nobody has renamed it since the
  // folder was last looked at, one reading of the folder otherwise, two to be sure that it is gone. Throws
  // Failure.
  std::optional<Location> find(std::string_view unique) const;
  // Where it was when last seen, without a look at it. Throws Failure.
  std::optional<Location> expected(std::string_view unique) const;
  // What a caller has just learned about where a message is (a watch, an own rename) saves find() the
  // reading.
  void noteLocation(std::string_view unique, Location location) const;
  // Forgets all that; what a reading of a large folder keeps is worth giving back before a long rest.
  void forgetLocations() const;
  std::string filePath(const Location& location) const;
  // Opens it wherever it is now; null when it is gone. Throws Failure.
  std::shared_ptr<MessageFile> open(std::string_view unique) const;

  // Sets and clears flags (letters; a message in new/ moves to cur/ when one is set), keeping all that other
  // programs set. False when the message is gone. Throws Failure.
  bool changeFlags(std::string_view unique, std::string_view set, std::string_view clear) const;
  bool setFlag(std::string_view unique, char flag, bool set) const {
    return changeFlags(unique, {&flag, set ? 1u : 0u}, {&flag, set ? 0u : 1u});
  }
  // Moves the message, its flags kept, and gives its unique name there: `newUnique`, the same where that is
  // empty, another when it is taken. None when it is gone. Throws Failure.
  std::optional<std::string> moveTo(const MailFolder& target, std::string_view unique,
                                    std::string newUnique = {}) const;
  // Deletes the message for good. False when it was gone already. Throws Failure.
  bool erase(std::string_view unique) const;
  // Writes a new message into cur/ (written and flushed in tmp/ first) and gives its unique name. `flags` as
  // in the file name: a draft has "D". Throws Failure, and then nothing was created.
  std::string create(const Content& content, std::string_view flags) const {
    return create(content, flags, freshUniqueName());
  }
  std::string create(const Content& content, std::string_view flags, std::string unique) const;

 private:
  std::string directory_;
  std::string path_;
  std::string storeId_;
  FolderRole role_;
  mutable std::shared_ptr<const Listing> remembered_;                 // where messages were when last read
  mutable std::unordered_map<std::string, Location> notedLocations_;  // learned since; few
};

}  // namespace quillfile::mailbox
