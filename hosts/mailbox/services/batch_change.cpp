#include "hosts/mailbox/services/batch_change.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "core/module/procedure.h"
#include "hosts/mailbox/services/failure.h"
#include "hosts/mailbox/services/file_content.h"
#include "hosts/mailbox/services/names.h"
#include "hosts/mailbox/store/maildir_name.h"
#include "hosts/mailbox/store/temporary_name.h"

namespace quillfile::mailbox {
namespace {

constexpr int followTries = 100;

Descriptor openDirectory(const std::string& path) {
  return Descriptor{::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)};
}

bool holds(const SavedFile& file, const Content& content) {
  if (file.state == SavedFile::State::waiting) return holdsContent(file.file.get(), content, file.path);
  if (file.state == SavedFile::State::abandoned) return false;
  const Descriptor opened{::open(file.path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW)};
  return opened && holdsContent(opened.get(), content, file.path);
}

// The new message has the old one's permissions and modification time.
void copyStatus(const MessageFile& from, int to, const std::string& path) {
  struct stat status {};
  if (::fstat(from.descriptor(), &status) != 0) throw fromErrno(errno, "look at the message", path);
  if (::fchmod(to, status.st_mode & 0777) != 0) throw fromErrno(errno, "set the permissions of", path);
  const timespec times[2] = {status.st_mtim, status.st_mtim};
  if (::futimens(to, times) != 0) throw fromErrno(errno, "set the time of", path);
}

}  // namespace

MaildirHandles::MaildirHandles(const MailFolder& folder)
    : cur(openDirectory(folder.directory() + "/cur")),
      fresh(openDirectory(folder.directory() + "/new")),
      tmp(openDirectory(folder.directory() + "/tmp")) {}

BatchChange::BatchChange(MessageChange change, std::shared_ptr<MaildirHandles> source,
                         std::shared_ptr<MaildirHandles> target)
    : change_(std::move(change)), sourceHandles_(std::move(source)), targetHandles_(std::move(target)) {
  report_.folder = change_.folder;
  report_.unique = change_.unique;
  const auto& newFolder = change_.moveTo ? change_.moveTo : change_.folder;
  const bool named = change_.content || change_.moveTo;
  report_.newUnique = named ? ownUniqueName(newFolder->path()) : change_.unique;
  if (!change_.erase) report_.newFolder = newFolder;
  rest();
}

// The change waits for its group: until its next step the old message need not be in memory.
void BatchChange::rest() const {
  if (change_.source) change_.source->forget(change_.source->bytes());
}

BatchChange::~BatchChange() {
  if (!finished_ && !replaced_) takeBack();
}

// Runs one step; whatever it throws is doubt.
template <class Body>
void BatchChange::step(Body&& body) {
  if (finished_) return;
  guarded([&](Step&) { return body(), true; },
          [&](const Failure& failure, const Step&) { return doubt(failure.description), false; });
}

void BatchChange::end(ChangeOutcome outcome) {
  report_.outcome = outcome;
  if (outcome != ChangeOutcome::changed) {
    report_.newFolder = report_.folder;
    report_.newUnique = report_.unique;
  }
  finished_ = report_;
  change_ = {};
  message_.reset();
}

void BatchChange::doubt(const Text& reason) {
  takeBack();
  report_.reason = reason;
  end(ChangeOutcome::untouched);
}

// The new message goes, the old one is still there: the order of these two does not matter.
void BatchChange::takeBack() {
  if (!linked_.empty()) ::unlink((target().directory() + "/cur/" + linked_).c_str());
  if (!temporary_.empty()) ::unlink(temporary_.c_str());
  linked_.clear();
  temporary_.clear();
}

std::vector<std::shared_ptr<SavedFile>> BatchChange::compareFiles() {
  std::vector<std::shared_ptr<SavedFile>> wrong;
  if (finished_) return wrong;
  for (const RemovedAttachment& attachment : change_.removed) {
    bool same = false;
    ignoringErrors([&] { same = holds(*attachment.file, attachment.decoded); });
    if (!same) wrong.push_back(attachment.file);
  }
  if (!wrong.empty())
    doubt(failure("The saved file " + wrong[0]->asked + " does not hold what the message holds").description);
  rest();
  return wrong;
}

void BatchChange::requireFiles() const {
  const auto require = [](const SavedFile& file) {
    if (file.state != SavedFile::State::committed)
      throw failure("The file " + file.asked + " could not be saved");
    if (file.path != file.asked)
      throw failure("Another program took the name " + file.asked + " meanwhile; the file was saved as " +
                    file.path);
  };
  for (const RemovedAttachment& attachment : change_.removed) require(*attachment.file);
  for (const auto& file : change_.needs) require(*file);
}

void BatchChange::writeMessage() {
  if (message_) return;
  step([&] {
    requireFiles();
    if (!change_.content) return;
    const auto replaced = replacedMessage(change_.unique, change_.source->inode());
    const std::string path =
        target().directory() + "/tmp/" + temporaryMessageName(report_.newUnique, replaced);
    message_ = Descriptor{::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0600)};
    if (!message_) throw fromErrno(errno, "write the new message", path);
    temporary_ = path;
    ::flock(message_.get(), LOCK_EX | LOCK_NB);  // tells a start of another Quillfile that this one lives
    writeContent(message_.get(), change_.content, path);
    copyStatus(*change_.source, message_.get(), path);
  });
  rest();
}

void BatchChange::checkMessage() {
  step([&] {
    if (!message_) return;
    if (!holdsContent(message_.get(), change_.content, temporary_))
      throw failure("The new message does not read back as it was written");
    if (change_.check) {
      const auto readBack = MessageFile::open(temporary_);
      if (!readBack || !change_.check(*readBack))
        throw failure("The new message is not the old one without what was saved");
    }
  });
  rest();
}

void BatchChange::linkMessage() {
  step([&] {
    requireFiles();
    if (!change_.content) return changeWithoutRewriting();
    if (!change_.source->isAsOpened())
      throw failure("Another program has changed the message's file meanwhile");
    const auto old = change_.folder->find(change_.unique);
    if (!old) return takeBack(), end(ChangeOutcome::vanished);
    old_ = *old;
    linkAs(changedFlags(parseMaildirName(old->fileName).flags, change_.setFlags, change_.clearFlags));
  });
}

void BatchChange::linkAs(std::string_view flags) {
  const std::string name = maildirFileName(report_.newUnique, flags);
  const std::string path = target().directory() + "/cur/" + name;
  if (::link(temporary_.c_str(), path.c_str()) != 0)
    throw fromErrno(errno, "put in place the new message", path);
  linked_ = name;
  target().noteLocation(report_.newUnique, {.fileName = name});
}

void BatchChange::changeWithoutRewriting() {
  const MailFolder& folder = *change_.folder;
  bool there = true;
  if (change_.erase) {
    there = folder.erase(change_.unique);
  } else {
    if (!change_.setFlags.empty() || !change_.clearFlags.empty())
      there = folder.changeFlags(change_.unique, change_.setFlags, change_.clearFlags);
    if (there && change_.moveTo) {
      const auto moved = folder.moveTo(*change_.moveTo, change_.unique, report_.newUnique);
      there = moved.has_value();
      if (moved) report_.newUnique = *moved;
    }
  }
  replaced_ = true;
  if (!there) end(ChangeOutcome::vanished);
}

// Unlinking by the exact name makes sure that the flags in it were followed.
void BatchChange::unlinkOld() {
  if (replaced_) return finish();
  step([&] {
    for (int i = 0; i < followTries; ++i) {
      const std::string path = change_.folder->filePath(old_);
      if (::unlink(path.c_str()) == 0) {
        replaced_ = true;
        return;
      }
      if (errno != ENOENT) throw fromErrno(errno, "delete the old message", path);
      const auto now = change_.folder->find(change_.unique);
      if (!now) return takeBack(), end(ChangeOutcome::vanished);
      follow(*now);
    }
    throw fromErrno(EBUSY, "delete the old message", change_.folder->filePath(old_));
  });
}

// Another program has renamed the old message: the new one gets the same flags.
void BatchChange::follow(const Location& old) {
  const auto current = target().find(report_.newUnique);
  if (!current) throw failure("The new message was taken away by another program");
  linked_ = current->fileName;
  old_ = old;
  const std::string wanted =
      changedFlags(parseMaildirName(old.fileName).flags, change_.setFlags, change_.clearFlags);
  const std::string name = maildirFileName(report_.newUnique, wanted);
  if (name == linked_) return;
  const std::string from = target().filePath(*current), to = target().directory() + "/cur/" + name;
  if (const int error = renameWithoutReplacing({AT_FDCWD, from}, {AT_FDCWD, to}); error != 0)
    throw fromErrno(error, "mark the new message", from);
  linked_ = name;
  target().noteLocation(report_.newUnique, {.fileName = name});
}

void BatchChange::finish() {
  if (finished_) return;
  if (!temporary_.empty()) ::unlink(temporary_.c_str());
  end(ChangeOutcome::changed);
}

void BatchChange::wantMessage(Flush& flush) const {
  if (finished_ || !message_) return;
  flush.add(message_.get());
  if (targetHandles_->tmp) flush.add(targetHandles_->tmp.get());
}

void BatchChange::heedMessage(const Flush& flush) {
  step([&] {
    if (!message_) return;
    for (const int descriptor : {message_.get(), targetHandles_->tmp.get()})
      if (descriptor >= 0 && flush.error(descriptor) != 0)
        throw fromErrno(flush.error(descriptor), "flush the new message", temporary_);
  });
}

void BatchChange::wantDirectories(Flush& flush) const {
  if (finished_) return;
  for (const auto& handles : {sourceHandles_, targetHandles_})
    for (const Descriptor* directory : {&handles->cur, &handles->fresh})
      if (*directory) flush.add(directory->get());
}

void BatchChange::heedDirectories(const Flush& flush) {
  if (replaced_) {
    // The change is made, and a power cut may at worst bring back a duplicate: its mark in tmp/ stays for
    // that.
    if (targetHandles_->cur && flush.error(targetHandles_->cur.get()) != 0) temporary_.clear();
    return;
  }
  step([&] {
    const int descriptor = targetHandles_->cur.get();
    if (descriptor >= 0 && flush.error(descriptor) != 0)
      throw fromErrno(flush.error(descriptor), "flush the folder of",
                      target().directory() + "/cur/" + linked_);
  });
}

}  // namespace quillfile::mailbox
