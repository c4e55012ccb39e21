// MailboxStage: the stage of the mailbox host: a Maildir, a settings file, saved files on the disk, and a
// session over them. What it has no means for (a hotkey, sending) throws Unplayable.
#pragma once

#include <memory>
#include <string>

#include "hosts/mailbox/engine/session.h"
#include "tests/mailbox/support/temporary_folder.h"
#include "tests/scenarios/scenario.h"

namespace quillfile::mailbox {

struct Unplayable {
  const char* what;
};

class MailboxStage final : public Stage {
 public:
  // `root` is an empty folder, which gets "mail", "saved", "settings.ini" and "trace".
  MailboxStage(const TemporaryFolder& root, const Scenario& scenario);
  ~MailboxStage() override;

  Mail add(const ItemData& item, const std::vector<AttachmentData>& attachments,
           DefaultFolder folder) override;
  void file(TextView name, bool readOnly) override;
  void start() override;
  void stop() override;
  void openExplorer() override;
  void closeExplorer() override;
  void message(TextView text) override;
  void arrived(Mail mail, DefaultFolder folder) override;
  void show(DefaultFolder folder) override;
  void select(const std::vector<Mail>& mails) override;
  void selectNothing() override { throw Unplayable{"a view without a selection"}; }
  void button() override;
  void hotkey() override { throw Unplayable{"a hotkey"}; }
  void open(Mail mail) override;
  void does(Mail mail, Doing doing) override;

  // After stop().
  Outcome outcome() const;

 private:
  struct Placed {
    std::shared_ptr<MailFolder> folder;
    std::string unique;
    std::shared_ptr<MailboxItem> item;  // once the session runs
  };
  std::shared_ptr<MailFolder> folderOf(DefaultFolder folder);
  const std::shared_ptr<MailboxItem>& item(Mail mail);
  // The trace since the last time, as lines of the transcript.
  void readTrace();

  const TemporaryFolder& root_;
  SessionSetup setup_;
  std::shared_ptr<MailStore> store_;  // until the session has its own
  std::unique_ptr<Session> session_;
  std::vector<Placed> placed_;
  std::vector<std::shared_ptr<MailboxInspector>> windows_;
  DefaultFolder shown_ = DefaultFolder::inbox;
  std::size_t traceRead_ = 0;
  Outcome outcome_;
};

// The item as a message in bytes, lines ending in LF.
std::string messageOf(const ItemData& item, const std::vector<AttachmentData>& attachments);

}  // namespace quillfile::mailbox
