// Outlook's application, its folders and its windows.
#pragma once

#include "core/platform/outlook.h"
#include "hosts/windows/outlook/adapted.h"

namespace quillfile::windows {

class OutlookFolder final : public Adapted<Folder> {
 public:
  using Adapted::Adapted;
  Text name() override { return object().get(u"Name").text(); }
  Text entryId() override { return object().get(u"EntryID").text(); }
  Text storeId() override { return object().get(u"StoreID").text(); }
  std::int32_t itemCount() override { return items().get(u"Count").number(); }
  Ref<Item> item(std::int32_t index) override;

 private:
  const Object& items();  // one collection for all reads: each call of the folder's Items makes another
  Object items_;
};

class OutlookNameSpace final : public Adapted<NameSpace> {
 public:
  using Adapted::Adapted;
  Ref<Folder> defaultFolder(DefaultFolder which) override;
};

class OutlookSelection final : public Adapted<Selection> {
 public:
  using Adapted::Adapted;
  std::int32_t count() override { return object().get(u"Count").number(); }
  Ref<Item> item(std::int32_t index) override;
};

class OutlookExplorer final : public Adapted<Explorer> {
 public:
  using Adapted::Adapted;
  Ref<Folder> currentFolder() override {
    return adapt<OutlookFolder>(object().get(u"CurrentFolder").object());
  }
  Ref<Selection> selection() override { return adapt<OutlookSelection>(object().get(u"Selection").object()); }
  Subscription listen(ExplorerEvents& listener) override;
};

class OutlookInspector final : public Adapted<Inspector> {
 public:
  using Adapted::Adapted;
  Ref<Item> currentItem() override;
};

class OutlookApplication final : public Adapted<Application> {
 public:
  using Adapted::Adapted;
  Text version() override { return object().get(u"Version").text(); }
  Ref<NameSpace> nameSpace() override {
    return adapt<OutlookNameSpace>(object().call(u"GetNamespace", u"MAPI").object());
  }
  Ref<Explorer> activeExplorer() override {
    return adapt<OutlookExplorer>(object().call(u"ActiveExplorer").object());
  }
};

}  // namespace quillfile::windows
