// HostUser: the ports UserInterface and Dialogs of this host: message boxes become lines, questions and forms
// prompts, the busy cursor the progress display, which makes way for every prompt.
#pragma once

#include "core/platform/user_interface.h"
#include "hosts/mailbox/engine/progress.h"
#include "hosts/mailbox/engine/prompts.h"
#include "hosts/mailbox/engine/run_report.h"

namespace quillfile::mailbox {

class HostUser : public UserInterface, public Dialogs {
 public:
  HostUser(Prompts& prompts, Progress& progress, RunReport& report)
      : prompts_(prompts), progress_(progress), report_(report) {}

  // How many items the next hourglass is about.
  void expectItems(std::int64_t items) { items_ = items; }

  // A box with nothing but OK is kept in the report; a warning in one is an error there too.
  Answer messageBox(TextView text, TextView title, Buttons buttons) override;
  void setPointer(Pointer pointer) override;
  std::int32_t show(const DeletePrompt& prompt) override;
  std::optional<Text> show(const SaveAsRequest& request) override;
  void processPendingEvents() override {}  // events wait until this one is handled

 private:
  Prompts& prompts_;
  Progress& progress_;
  RunReport& report_;
  std::int64_t items_ = 0;
};

}  // namespace quillfile::mailbox
