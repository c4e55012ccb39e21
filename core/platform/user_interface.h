// The user: message boxes, the two forms, the busy cursor and waiting events.
#pragma once

#include <cstdint>
#include <optional>

#include "core/text/text.h"

namespace quillfile {

enum class Buttons { ok, yes_no_cancel };
enum class Answer { ok, yes, no, cancel };
enum class Pointer : std::int32_t { standard = 0, hourglass = 11 };

class UserInterface {
 public:
  virtual ~UserInterface() = default;
  virtual Answer messageBox(TextView text, TextView title, Buttons buttons) = 0;
  virtual void setPointer(Pointer pointer) = 0;
  virtual void processPendingEvents() = 0;
};

// frmYesNoPrompt, ready to be shown.
struct DeletePrompt {
  TextView form = u"frmYesNoPrompt";
  Text path;  // the file that the question is about
  Text caption, message, yes, yesToAll, no, noToAll;
};

// What the Save-As dialog is opened with.
struct SaveAsRequest {
  Text fileName;          // a name, or a whole path
  Text initialFolder;     // empty: that of fileName
  Text defaultExtension;  // without the point; empty: none
  Text title;
  Text filter;
  std::int32_t flags = 0;  // 2: ask before overwriting
};

class Dialogs {
 public:
  virtual ~Dialogs() = default;
  // Shows the form modally, in the foreground: 1 No, 2 No to All, 3 Yes, 4 Yes to All, 0 closed without an
  // answer.
  virtual std::int32_t show(const DeletePrompt& prompt) = 0;
  // The full path chosen; none when the user cancels.
  virtual std::optional<Text> show(const SaveAsRequest& request) = 0;
};

}  // namespace quillfile
