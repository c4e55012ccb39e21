// BatchChange: one message's change on its way through a batch, step by step. Between two steps the batch
// flushes what the step before has asked for. A step that ends in doubt leaves the message as it was, and
// says why.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "hosts/mailbox/services/batch.h"
#include "hosts/mailbox/services/flush.h"

namespace quillfile::mailbox {

// The directories of one mail folder, open for flushing.
struct MaildirHandles {
  explicit MaildirHandles(const MailFolder& folder);
  Descriptor cur, fresh, tmp;  // fresh: new/
};

class BatchChange {
 public:
  BatchChange(MessageChange change, std::shared_ptr<MaildirHandles> source,
              std::shared_ptr<MaildirHandles> target);
  ~BatchChange();
  BatchChange(const BatchChange&) = delete;
  BatchChange& operator=(const BatchChange&) = delete;

  const std::string& newUnique() const { return report_.newUnique; }
  // Set once there is nothing more to do.
  const std::optional<ChangeReport>& finished() const { return finished_; }

  // Before its files are named: reads them back and compares. Gives those that do not hold what they should.
  std::vector<std::shared_ptr<SavedFile>> compareFiles();
  // Their names stand: writes the new message into tmp/. Does nothing where that is done.
  void writeMessage();
  // The new message is durable: reads it back and compares.
  void checkMessage();
  // Files and new message are durable: links it into cur/; or makes the change that needs no new message.
  void linkMessage();
  // The link is durable: unlinks the old message, following what other programs did to it. A change that
  // needed no new message is finished here.
  void unlinkOld();
  // That is durable too.
  void finish();

  // What must be durable before the next step, and what it means when one of it is not.
  void wantMessage(Flush& flush) const;
  void wantDirectories(Flush& flush) const;
  void heedMessage(const Flush& flush);
  void heedDirectories(const Flush& flush);

 private:
  template <class Body>
  void step(Body&& body);
  void doubt(const Text& reason);
  void end(ChangeOutcome outcome);
  void requireFiles() const;
  void rest() const;
  void changeWithoutRewriting();
  void linkAs(std::string_view flags);
  void follow(const Location& old);
  void takeBack();
  const MailFolder& target() const { return change_.moveTo ? *change_.moveTo : *change_.folder; }

  MessageChange change_;
  ChangeReport report_;
  std::optional<ChangeReport> finished_;
  std::shared_ptr<MaildirHandles> sourceHandles_, targetHandles_;
  Descriptor message_;     // the new message in tmp/
  std::string temporary_;  // its path there; empty when there is none
  std::string linked_;     // the new message's file name in cur/; empty while it is not linked
  Location old_;           // where the old message was last seen
  bool replaced_ = false;  // the old one is gone: from here on there is no way back, and none is needed
};

}  // namespace quillfile::mailbox
