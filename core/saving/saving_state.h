// SavingState: what the saving engine remembers between its calls. CQuillfile owns the one instance.
#pragma once

#include "core/saving/saving_engine.h"
#include "core/text/text.h"

namespace quillfile {

struct SavingState {
  // Notes for an item whose HTML body is still empty; they become its body once its attachments are done.
  Text pendingHtmlLinks;
  // The save path while an item with more than one attachment is being saved, else empty.
  Text multiAttachmentPath;
  RunCounter counter;
};

}  // namespace quillfile
