// What is handed down to SaveAttachment, and what it answers.
#pragma once

#include <cstdint>

#include "core/saving/saving_engine.h"

namespace quillfile {

// What the callers decide about each attachment, handed down unchanged.
struct SavingContext {
  bool errorPrompt = false;  // errors are reported whatever it says
  bool addLink = false;
  bool remove = false;
  ReadWrite readWrite{};
  bool deleteSaved = false;  // the saved file of a sent attachment is not to be kept
};

// How SaveAttachment ended.
enum class SaveResult : std::int32_t {
  stop = 0,  // no further attachment of the item is tried
  saved = 1,
  skipped = 2,    // wrong type, excluded, the module's own icon, or "No" at the read-only question
  cancelled = 3,  // in the Save-As form
};

}  // namespace quillfile
