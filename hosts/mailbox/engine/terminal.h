// Terminal: the person at the other end, if there is one.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quillfile::mailbox {

// Questions go to standard error and answers come from standard input, and only where both are terminals:
// standard output belongs to what a command prints.
class Terminal {
 public:
  virtual ~Terminal() = default;
  virtual bool present() = 0;
  virtual void show(std::string_view text) = 0;
  // Waits for one of `keys` (ASCII, letter case ignored), without a return key; none at the end of input, and
  // when the person interrupts (Ctrl-C) a program that goes on after that.
  virtual std::optional<char> readKey(std::string_view keys) = 0;
  virtual std::optional<std::string> readLine() = 0;
};

// Standard input and standard error.
class StandardTerminal : public Terminal {
 public:
  bool present() override;
  void show(std::string_view text) override;
  std::optional<char> readKey(std::string_view keys) override;
  std::optional<std::string> readLine() override;
};

}  // namespace quillfile::mailbox
