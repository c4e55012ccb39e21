// RunFlags: the settings as the module of one process sees them. The two keys that only say what this very
// process is doing, "ButtonClicked" and "CVTemporarilyDisabled", are kept in the process while an event is
// handled and reach the file when it is over: a watch never takes another process's manual save for its own,
// and what a run has left behind stands in the file for everybody.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <utility>

#include "core/platform/settings_store.h"

namespace quillfile::mailbox {

class RunFlags : public SettingsStore {
 public:
  explicit RunFlags(SettingsStore& file) : file_(file) {}

  std::optional<Text> read(TextView application, TextView section, TextView key) override;
  void write(TextView application, TextView section, TextView key, TextView value) override;

  // The event is over: writes what differs from the file. Throws Failure; the flags are then given up.
  void settle();

 private:
  struct Held {
    Text application, section, value;
  };
  SettingsStore& file_;
  std::map<Text, Held, std::less<>> held_;  // by key
};

}  // namespace quillfile::mailbox
