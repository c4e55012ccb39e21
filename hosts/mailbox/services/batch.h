// Batch: saved files and changed messages on their way to disk together. The one place that decides about
// flushing.
//
// What is gathered here is on disk, in this order and never another, when commit() returns:
//   saved files complete, without a name or with a hidden one -> flush -> those whose attachment is to go are
//   read back and compared
//   -> named, replacing nothing -> new messages in tmp/ -> flush (folders, their new parents, tmp/) -> the
//   new messages are read back and compared -> linked into cur/ -> flush -> old messages unlinked -> flush
// Many messages share each flush. A message whose files or whose own new bytes are in any doubt stays
// untouched, and is reported; the others go on. Stopping anywhere in between loses nothing.
//
//   item.saveAsFile(path)      ->  auto file = batch.files().save(path, decoded)
//   item's edits               ->  kept in memory by the item
//   the event ends             ->  batch.change({.source = …, .content = spliced, .removed = {{file,
//   decoded}}})
//                                  batch.eventEnded()
//   the command ends           ->  batch.commit()
#pragma once

#include <cstdint>
#include <functional>
#include <future>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/text/text.h"
#include "hosts/mailbox/services/content.h"
#include "hosts/mailbox/services/flush.h"
#include "hosts/mailbox/services/saved_files.h"
#include "hosts/mailbox/store/mail_folder.h"

namespace quillfile::mailbox {

// An attachment that a message is to lose because a saved file holds it.
struct RemovedAttachment {
  std::shared_ptr<SavedFile> file;
  Content decoded;  // what the file must hold; compared with the file as read back after the flush
};

// What one event makes of one message, all of it at once.
struct MessageChange {
  std::shared_ptr<MailFolder> folder{};  // where the message is
  std::string unique{};                  // its unique name there
  std::shared_ptr<MessageFile>
      source{};  // open, and locked by the caller; null for a change that needs no bytes

  Content content{};  // the whole new message; empty: its bytes stay as they are
  std::function<bool(const MessageFile&)> check{};  // may be empty; looks at the new message as read back
  std::vector<RemovedAttachment> removed{};         // what the new message no longer holds
  std::vector<std::shared_ptr<SavedFile>> needs{};  // further files that must be durable before the change
  std::string setFlags{};                           // letters to set, "S" for read
  std::string clearFlags{};                         // letters to clear
  std::shared_ptr<MailFolder> moveTo{};             // null: it stays where it is
  bool erase = false;                               // the message goes for good
};

enum class ChangeOutcome {
  changed,    // done, and durable
  untouched,  // something was in doubt or failed: the message is as it was
  vanished,   // another program deleted it meanwhile: nothing was left in its place
};

struct ChangeReport {
  ChangeOutcome outcome = ChangeOutcome::changed;
  std::shared_ptr<MailFolder> folder;     // where it was
  std::string unique;                     // under which name
  std::shared_ptr<MailFolder> newFolder;  // null when it went for good
  std::string newUnique;                  // the same as unique, unless it was rewritten
  Text reason;                            // one sentence, when untouched
};

// Told what became of everything. Called from within commit(), eventEnded() and change(), on the caller's
// thread.
class BatchReports {
 public:
  virtual ~BatchReports() = default;
  virtual void onSaved(const SavedFile& file) = 0;                           // durable under file.path
  virtual void onSaveFailed(const SavedFile& file, const Text& reason) = 0;  // nothing under file.path
  virtual void onChanged(const ChangeReport& report) = 0;
};

class BatchChange;
struct MaildirHandles;

// When a group of events is flushed. The first limit reached counts.
struct BatchLimits {
  std::size_t messages = 64;
  std::size_t files = 256;
  std::int64_t bytes = 64 << 20;  // of saved files and new messages
};

class Batch {
 public:
  explicit Batch(BatchReports& reports, BatchLimits limits = {});
  ~Batch();  // what was not committed is given up: files without their name go, messages stay as they were
  Batch(const Batch&) = delete;
  Batch& operator=(const Batch&) = delete;

  SavedFiles& files() { return files_; }

  // Takes a change. The answer is the unique name that the message will have: a fresh one, its new
  // folder's own, when `content` or `moveTo` is set, else the one it has. The message itself is as it was
  // until its group has been flushed.
  std::string change(MessageChange change);

  // Nothing of the event just handled is still to come: flushes when enough has been gathered. The flush runs
  // beside the next events; what becomes of them is reported from a later eventEnded() or commit().
  void eventEnded();
  // Makes everything so, and returns when it is. What fails is reported and never thrown.
  void commit();

 private:
  struct Group;
  std::shared_ptr<MaildirHandles> handlesOf(const MailFolder& folder);
  bool full() const;
  void gather();
  void startFlush(bool isAsync);  // else its work waits for finishFlush()
  void finishFlush();

  BatchReports& reports_;
  BatchLimits limits_;
  SavedFiles files_;
  std::vector<std::unique_ptr<BatchChange>> changes_;  // since the last group was closed
  std::int64_t changeBytes_ = 0;
  std::vector<std::unique_ptr<Group>> groups_;  // oldest first, each further than the next
  std::map<std::string, std::shared_ptr<MaildirHandles>> handles_;
  std::unique_ptr<Flush> flush_;  // the one that is running
  std::future<void> flushed_;
  std::int64_t heldSince_ = 0;  // when the oldest of what is held was taken, in seconds of a steady clock
};

}  // namespace quillfile::mailbox
