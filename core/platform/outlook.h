// The mail client's object model, as far as the module uses it. Every call may throw Failure.
// Indexes start at 1. An empty Ref is "Nothing".
#pragma once

#include "core/platform/attachment.h"
#include "core/platform/item.h"
#include "core/platform/reference.h"

namespace quillfile {

class Folder {
 public:
  virtual ~Folder() = default;
  virtual Text name() = 0;     // the display name, one component
  virtual Text entryId() = 0;  // opaque, compared exactly
  virtual Text storeId() = 0;
  virtual std::int32_t itemCount() = 0;
  virtual Ref<Item> item(std::int32_t index) = 0;
};

// The numbers by which the mail client knows its special folders.
enum class DefaultFolder : std::int32_t {
  deleted_items = 3,
  outbox = 4,
  sent_items = 5,
  inbox = 6,
  drafts = 16
};

class NameSpace {
 public:
  virtual ~NameSpace() = default;
  virtual Ref<Folder> defaultFolder(DefaultFolder which) = 0;  // never Nothing: a missing one is a Failure
};

class Selection {
 public:
  virtual ~Selection() = default;
  virtual std::int32_t count() = 0;
  virtual Ref<Item> item(std::int32_t index) = 0;
};

// What an explorer tells whoever listens.
class ExplorerEvents {
 public:
  virtual ~ExplorerEvents() = default;
  virtual void onSelectionChange() = 0;
};

class Explorer {
 public:
  virtual ~Explorer() = default;
  virtual Ref<Folder> currentFolder() = 0;
  virtual Ref<Selection> selection() = 0;  // Nothing while the view is being switched
  // Delivers events to `listener` until the subscription ends; the listener must outlive it.
  virtual Subscription listen(ExplorerEvents& listener) = 0;
};

class Inspector {
 public:
  virtual ~Inspector() = default;
  virtual Ref<Item> currentItem() = 0;
};

class Application {
 public:
  virtual ~Application() = default;
  virtual Text version() = 0;              // "16.0.0.1234": only its first two characters are looked at
  virtual Ref<NameSpace> nameSpace() = 0;  // the one called "MAPI"
  virtual Ref<Explorer> activeExplorer() = 0;
};

}  // namespace quillfile
