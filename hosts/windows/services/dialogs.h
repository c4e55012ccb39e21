// DesktopDialogs: the delete prompt and the Save-As dialog.
#pragma once

#include "core/platform/user_interface.h"

namespace quillfile::windows {

class DesktopDialogs final : public Dialogs {
 public:
  std::int32_t show(const DeletePrompt& prompt) override;           // delete_prompt.cpp
  std::optional<Text> show(const SaveAsRequest& request) override;  // save_as.cpp
};

}  // namespace quillfile::windows
