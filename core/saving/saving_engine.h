// The saving engine as its callers see it: one entry per item, and the counter of a run.
#pragma once

#include <cstdint>

#include "core/platform/item.h"

namespace quillfile {

// What is done to an item after its attachments were saved; any other number does nothing.
enum class AfterSave : std::int32_t { mark_read = 0, keep_unread = 1, remove_item = 2 };

// What is done to a saved file's read-only state; any other number does nothing.
enum class ReadWrite : std::int32_t { leave = 0, read_only = 1, writable = 2 };

// The nine arguments of CheckForAttachments, in their order.
struct SaveRequest {
  Ref<Item> item;
  bool skipCriteria = false;  // save-all-attachments
  AfterSave afterSave{};      // post-processing
  bool errorPrompt = false;
  bool addLink = false;
  bool remove = false;
  ReadWrite readWrite{};
  Text savePath = {};  // ends with the separator
  bool isSent = false;
};

// One module-wide counter of the attachments that the saving engine has finished with. The commands reset it.
struct RunCounter {
  std::int32_t value = 0;
};

class SavingEngine {
 public:
  virtual ~SavingEngine() = default;
  // Saves one item's e-mail and attachments as the settings say. Never throws; false when it stopped early.
  virtual bool CheckForAttachments(const SaveRequest& request) = 0;
};

}  // namespace quillfile
