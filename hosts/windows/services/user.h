// DesktopUser: message boxes, the mouse pointer, and events that wait.
#pragma once

#include "core/platform/user_interface.h"

namespace quillfile::windows {

class DesktopUser final : public UserInterface {
 public:
  Answer messageBox(TextView text, TextView title, Buttons buttons) override;
  void setPointer(Pointer pointer) override;
  void processPendingEvents() override;
};

}  // namespace quillfile::windows
