// Groups move one step at each flush, and one flush serves all groups: while the files of the newest are
// flushed, so are the new messages of the one before it and the folders of the one before that. The flush
// runs on a second thread, which then also does what reads and writes most: comparing, naming, new messages.
// What it touches is the groups' own, and nobody else's until it has ended. What needs a decision, tells
// somebody, or makes a message another one happens on the caller's thread.
#include "hosts/mailbox/services/batch.h"

#include <sys/resource.h>
#include <time.h>

#include <algorithm>
#include <set>
#include <utility>

#include "hosts/mailbox/services/batch_change.h"
#include "hosts/mailbox/services/beside.h"
#include "hosts/mailbox/services/failure.h"

namespace quillfile::mailbox {
namespace {

constexpr std::int64_t longestHold = 2;  // seconds that other processes are kept out of a save folder

std::int64_t steadySeconds() {
  timespec now{};
  ::clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
  return now.tv_sec;
}

// Up to four groups have files open at once: the limits must fit what this process may open.
BatchLimits fitting(BatchLimits limits) {
  constexpr rlim_t enough = 1024;
  rlimit open{};
  if (::getrlimit(RLIMIT_NOFILE, &open) != 0 || open.rlim_cur >= enough) return limits;
  const auto scaled = [&](std::size_t limit) {
    return std::max<std::size_t>(1, limit * open.rlim_cur / enough);
  };
  limits.messages = scaled(limits.messages);
  limits.files = scaled(limits.files);
  return limits;
}

}  // namespace

struct Batch::Group {
  GatheredFiles files;
  std::vector<std::unique_ptr<BatchChange>> changes;
  int steps = 0;  // made so far

  void want(Flush& flush) const;
  void begin() const;                 // on the caller's thread, before the flush
  void carryOut(const Flush& flush);  // on the flush's thread
  void step(const Flush& flush, SavedFiles& saved, BatchReports& reports);
  bool done() const { return steps >= 2 && changes.empty(); }

 private:
  void compareAndName(const Flush& flush);
  void nameFiles(const Flush& flush, SavedFiles& saved, BatchReports& reports);
  void reportFiles(const Flush& flush, BatchReports& reports) const;
  void reportChanges(BatchReports& reports);

  std::set<const SavedFile*> wrong_;  // do not hold what they should
};

void Batch::Group::want(Flush& flush) const {
  if (steps == 0)
    for (const auto& file : files.files)
      if (file->state == SavedFile::State::waiting) flush.add(file->file.get());
  if (steps == 1) {
    for (const auto& file : files.files)
      if (file->state == SavedFile::State::committed) flush.add(file->folder->descriptor());
    for (const Descriptor& parent : files.newParents) flush.add(parent.get());
  }
  for (const auto& change : changes) {
    if (steps == 1) change->wantMessage(flush);
    if (steps >= 2) change->wantDirectories(flush);
  }
}

void Batch::Group::begin() const {
  if (steps == 0)
    for (const auto& file : files.files) SavedFiles::beginNaming(*file);
}

void Batch::Group::carryOut(const Flush& flush) {
  if (steps == 0) compareAndName(flush);
  if (steps == 1)
    for (const auto& change : changes) change->heedMessage(flush), change->checkMessage();
}

// Every comparison comes before the first name: a file that is not what it should be never gets one. New
// messages are written here only where no name is left to be decided about.
void Batch::Group::compareAndName(const Flush& flush) {
  for (const auto& change : changes)
    for (const auto& file : change->compareFiles()) wrong_.insert(file.get());
  bool all = true;
  for (const auto& file : files.files) {
    if (file->state != SavedFile::State::waiting) continue;
    if (flush.error(file->file.get()) == 0 && !wrong_.contains(file.get())) SavedFiles::nameWhereFree(*file);
    if (file->state == SavedFile::State::committed)
      file->file.reset();
    else
      all = false;
  }
  if (!all) return;
  for (const auto& change : changes) change->writeMessage();
}

void Batch::Group::step(const Flush& flush, SavedFiles& saved, BatchReports& reports) {
  ++steps;
  if (steps == 1) nameFiles(flush, saved, reports);
  if (steps == 2) reportFiles(flush, reports);
  for (const auto& change : changes) {
    if (steps == 1) change->writeMessage();
    if (steps == 2) change->linkMessage();
    if (steps == 3) change->heedDirectories(flush), change->unlinkOld();
    if (steps == 4) change->heedDirectories(flush), change->finish();
  }
  reportChanges(reports);
}

void Batch::Group::nameFiles(const Flush& flush, SavedFiles& saved, BatchReports& reports) {
  const auto fail = [&](SavedFile& file, const Text& reason) {
    saved.abandon(file);
    reports.onSaveFailed(file, reason);
  };
  for (const auto& file : files.files) {
    SavedFiles::endNaming(*file);
    if (file->state != SavedFile::State::waiting) continue;
    if (const int error = flush.error(file->file.get()); error != 0)
      fail(*file, fromErrno(error, "flush", file->path).description);
    else if (wrong_.contains(file.get()))
      fail(*file, u"The saved file does not read back as it was written");
  }
  for (const auto& file : files.files) {
    if (file->state == SavedFile::State::abandoned) continue;
    if (const Text reason = saved.giveName(*file); !reason.empty()) reports.onSaveFailed(*file, reason);
  }
  for (const auto& file : files.files) file->file.reset();
  for (const std::string& path : files.removals) {
    const Text reason = saved.carryOut(path);
    SavedFile removal;
    removal.path = removal.asked = path;
    if (!reason.empty()) reports.onSaveFailed(removal, reason);
  }
  saved.releaseIdleFolders();
}

void Batch::Group::reportFiles(const Flush& flush, BatchReports& reports) const {
  int parents = 0;
  for (const Descriptor& parent : files.newParents)
    parents = parents != 0 ? parents : flush.error(parent.get());
  for (const auto& file : files.files) {
    if (file->state != SavedFile::State::committed) continue;
    const int error = parents != 0 ? parents : flush.error(file->folder->descriptor());
    if (error == 0) {
      reports.onSaved(*file);
    } else {
      file->state = SavedFile::State::abandoned;
      reports.onSaveFailed(*file, fromErrno(error, "flush the folder of", file->path).description);
    }
  }
}

void Batch::Group::reportChanges(BatchReports& reports) {
  for (const auto& change : changes)
    if (change->finished()) reports.onChanged(*change->finished());
  std::erase_if(changes, [](const auto& change) { return change->finished().has_value(); });
}

Batch::Batch(BatchReports& reports, BatchLimits limits)
    : reports_(reports),
      limits_(fitting(limits)),
      files_([this] { commit(); },
             [this] {
               if (flushed_.valid()) flushed_.wait();
             }) {}

Batch::~Batch() {
  if (flushed_.valid()) flushed_.wait();
  for (const auto& group : groups_)
    for (const auto& file : group->files.files) files_.abandon(*file);
  for (const auto& file : files_.take().files) files_.abandon(*file);
}

std::shared_ptr<MaildirHandles> Batch::handlesOf(const MailFolder& folder) {
  auto& handles = handles_[folder.directory()];
  if (!handles) handles = std::make_shared<MaildirHandles>(folder);
  return handles;
}

std::string Batch::change(MessageChange change) {
  if (change.source && change.content) changeBytes_ += change.source->size();
  const auto source = handlesOf(*change.folder);
  const auto target = change.moveTo ? handlesOf(*change.moveTo) : source;
  changes_.push_back(std::make_unique<BatchChange>(std::move(change), source, target));
  return changes_.back()->newUnique();
}

bool Batch::full() const {
  return changes_.size() >= limits_.messages || files_.fileCount() >= limits_.files ||
         files_.bytes() + changeBytes_ >= limits_.bytes;
}

void Batch::eventEnded() {
  files_.releaseUnusedNames();
  if (heldSince_ == 0) heldSince_ = steadySeconds();
  if (steadySeconds() - heldSince_ >= longestHold) return commit();
  if (!full()) return;
  finishFlush();
  gather();
  startFlush(true);
}

void Batch::commit() {
  finishFlush();
  gather();
  while (!groups_.empty()) {
    startFlush(false);
    finishFlush();
  }
  files_.releaseIdleFolders();
  handles_.clear();
  heldSince_ = 0;
}

void Batch::gather() {
  changeBytes_ = 0;
  if (files_.empty() && changes_.empty()) return;
  auto group = std::make_unique<Group>();
  group->files = files_.take();
  group->changes = std::exchange(changes_, {});
  groups_.push_back(std::move(group));
}

void Batch::startFlush(bool isAsync) {
  if (groups_.empty()) return;
  flush_ = std::make_unique<Flush>();
  for (const auto& group : groups_) group->want(*flush_), group->begin();
  flushed_ = beside(isAsync && !flush_->empty(), [this] {
    flush_->run();
    for (const auto& group : groups_) group->carryOut(*flush_);
  });
}

void Batch::finishFlush() {
  if (!flushed_.valid()) return;
  flushed_.get();
  for (const auto& group : groups_) group->step(*flush_, files_, reports_);
  std::erase_if(groups_, [](const auto& group) { return group->done(); });
  flush_.reset();
}

}  // namespace quillfile::mailbox
