// The rooms that CQuillfile routes to, as it sees them.
#pragma once

#include "core/commands/commands.h"
#include "core/platform/outlook.h"

namespace quillfile {

// Item tracking: the explorer's selection, the item slots and the two lists.
class Tracking {
 public:
  virtual ~Tracking() = default;
  // Listens to an explorer instead of the one before; to none when it is Nothing. May throw Failure.
  virtual void setExplorer(const Ref<Explorer>& explorer) = 0;
  virtual void MapUnderylingItem(const Ref<Inspector>& inspector) = 0;  // sic
  virtual void createLists() = 0;                                       // both lists new and empty
  virtual void releaseLists() = 0;
  virtual void ClearExplorerItems() = 0;
  virtual void ReleaseAllItemSlots() = 0;
};

// Deleted items: the offer to delete the saved files that a deleted item links to.
class DeletedItems {
 public:
  virtual ~DeletedItems() = default;
  virtual void resetPrompt() = 0;  // the next deleted item is the first of a deletion
  virtual void HandleDeletedItemsFolderAdd(const Ref<Item>& item) = 0;
};

struct Rooms {
  Commands& commands;
  Tracking& tracking;
  DeletedItems& deletedItems;
};

}  // namespace quillfile
