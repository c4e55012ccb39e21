#include "hosts/mailbox/engine/host_user.h"

namespace quillfile::mailbox {

Answer HostUser::messageBox(TextView text, TextView title, Buttons buttons) {
  if (buttons == Buttons::yes_no_cancel) {
    progress_.stop();
    return prompts_.ask(text);
  }
  report_.message = toUtf8(text);
  if (startsWith(text, u"Warning: ")) report_.error(text, 0, title);
  return Answer::ok;
}

void HostUser::setPointer(Pointer pointer) {
  if (pointer == Pointer::hourglass) {
    progress_.start(items_);
  } else {
    progress_.stop();
  }
}

}  // namespace quillfile::mailbox
