// Prompts: message boxes, the delete prompt and the Save-As form of this host. On a terminal they are
// questions; elsewhere the answer is the one given beforehand, else the careful one.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "core/platform/user_interface.h"
#include "hosts/mailbox/engine/terminal.h"

namespace quillfile::mailbox {

// What --answer takes.
enum class PresetAnswer { yes, yes_to_all, no, no_to_all, cancel };
std::optional<PresetAnswer> presetAnswer(std::string_view word);  // "yes-to-all"; none for any other word

// Tells whether the file at a path is there already, waiting files included.
using IsTaken = std::function<bool(const std::string& path)>;

class Prompts : public Dialogs {
 public:
  Prompts(Terminal& terminal, std::optional<PresetAnswer> preset, IsTaken isTaken)
      : terminal_(terminal), preset_(preset), isTaken_(std::move(isTaken)) {}

  // A Yes/No/Cancel question. The careful answer is No: this one is left alone and the others go on.
  Answer ask(TextView question);
  // The careful answer is No.
  std::int32_t show(const DeletePrompt& prompt) override;
  // The careful answer is Cancel. A preset Yes takes the proposed name; where a file of that name is there,
  // the first free number after it, since nobody is there to say that it may be overwritten.
  std::optional<Text> show(const SaveAsRequest& request) override;

 private:
  std::optional<Text> askForPath(const std::string& proposed, const std::string& extension);

  Terminal& terminal_;
  std::optional<PresetAnswer> preset_;
  IsTaken isTaken_;
};

}  // namespace quillfile::mailbox
