#include "hosts/mailbox/engine/host_user.h"

namespace quillfile::mailbox {

Answer HostUser::messageBox(TextView text, TextView title, Buttons buttons) {
  if (buttons == Buttons::yes_no_cancel) {
    progress_.pause();
    return prompts_.ask(text);
  }
  report_.message = toUtf8(text);
  if (startsWith(text, u"Warning: ")) report_.error(text, 0, title);
  return Answer::ok;
}

std::int32_t HostUser::show(const DeletePrompt& prompt) {
  progress_.pause();
  return prompts_.show(prompt);
}

std::optional<Text> HostUser::show(const SaveAsRequest& request) {
  progress_.pause();
  return prompts_.show(request);
}

void HostUser::setPointer(Pointer pointer) {
  if (pointer == Pointer::hourglass) {
    progress_.start(items_);
  } else {
    progress_.stop();
  }
}

}  // namespace quillfile::mailbox
