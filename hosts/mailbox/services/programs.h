// The port Programs: starts a program without a shell. The command line is split into words by quoting rules
// like those of the shell, and a saved path inside quotes never adds a word.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "core/platform/system.h"

namespace quillfile::mailbox {

// The words of a command line: blanks separate; '…' keeps everything; "…" keeps everything but \" and \\;
// outside quotes \ keeps the next character. Every occurrence of `path` counts as plain characters wherever
// it stands: inside quotes it stays within its word, outside them its blanks separate as typed. Throws
// Failure when a quote is never closed.
std::vector<std::string> commandWords(std::string_view commandLine, std::string_view path);

class HostPrograms : public Programs {
 public:
  // `beforeStart` runs before each program: it commits the batch, so that the file is there.
  explicit HostPrograms(std::function<void()> beforeStart) : beforeStart_(std::move(beforeStart)) {}
  void start(TextView commandLine, TextView path) override;
  Text machineName() override;

 private:
  std::function<void()> beforeStart_;
};

}  // namespace quillfile::mailbox
