// The explorer, its selection, and inspectors: the windows of a mail client, without the windows.
#pragma once

#include <memory>
#include <vector>

#include "core/platform/outlook.h"
#include "hosts/mailbox/outlook/folder.h"
#include "hosts/mailbox/outlook/item.h"
#include "hosts/mailbox/outlook/listeners.h"
#include "hosts/mailbox/outlook/reading_ahead.h"

namespace quillfile::mailbox {

using Items = std::vector<std::shared_ptr<MailboxItem>>;

// Items are opened only when they are asked for something, so a selection of a whole folder is cheap. Whoever
// walks over a selection is done with an item when the next one is asked for: that keeps few of them in
// memory. The messages that come next are read meanwhile.
class MailboxSelection final : public Selection {
 public:
  explicit MailboxSelection(Items items);
  std::int32_t count() override { return static_cast<std::int32_t>(items_.size()); }
  Ref<Item> item(std::int32_t index) override;

 private:
  Items items_;
  ReadingAhead ahead_;
};

class MailboxExplorer final : public Explorer {
 public:
  Ref<Folder> currentFolder() override { return folder_; }
  Ref<Selection> selection() override { return selection_; }
  Subscription listen(ExplorerEvents& listener) override { return listeners_.add(listener); }

  // Shows a folder, with nothing selected. Does not tell anybody.
  void showFolder(std::shared_ptr<MailboxFolder> folder);
  // Selects these items, in this order, and tells SelectionChange.
  void select(Items items);

 private:
  std::shared_ptr<MailboxFolder> folder_;
  std::shared_ptr<MailboxSelection> selection_ = std::make_shared<MailboxSelection>(Items{});
  Listeners<ExplorerEvents> listeners_;
};

class MailboxInspector final : public Inspector {
 public:
  explicit MailboxInspector(std::shared_ptr<MailboxItem> item) : item_(std::move(item)) {}
  Ref<Item> currentItem() override { return item_; }
  // The user closes the window: the item's Close event. False when a listener stopped it.
  bool close();

 private:
  std::shared_ptr<MailboxItem> item_;
};

}  // namespace quillfile::mailbox
