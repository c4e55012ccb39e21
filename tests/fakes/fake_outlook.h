// The mail client's object model, as fakes: folders, explorers with a selection, inspectors, the application.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "core/platform/outlook.h"
#include "tests/fakes/fake_item.h"

namespace quillfile {

class FakeFolder : public Folder {
 public:
  FakeFolder(Recorder& record, Text displayName, Text pathInStore)
      : path(std::move(pathInStore)), name_(std::move(displayName)), record_(record) {}

  Text path;  // what the engine answers for folderPath(); may be empty
  std::vector<std::shared_ptr<FakeItem>> items;

  // What the ids are, without asking the fake.
  Text id() const { return fill(u"{}-id", name_); }
  Text store() const { return u"store-1"; }

  Text name() override { return record_.asked(u"Folder.name"), name_; }
  Text entryId() override { return record_.asked(u"Folder.entryId"), id(); }
  Text storeId() override { return record_.asked(u"Folder.storeId"), store(); }
  std::int32_t itemCount() override {
    return record_.asked(u"Folder.itemCount"), static_cast<std::int32_t>(items.size());
  }
  Ref<Item> item(std::int32_t index) override {
    record_.asked(u"Folder.item");
    return items.at(static_cast<std::size_t>(index - 1));
  }

 private:
  Text name_;
  Recorder& record_;
};

class FakeSelection : public Selection {
 public:
  FakeSelection(Recorder& record, std::vector<Ref<Item>> items) : record_(record), items_(std::move(items)) {}
  std::int32_t count() override {
    return record_.asked(u"Selection.count"), static_cast<std::int32_t>(items_.size());
  }
  Ref<Item> item(std::int32_t index) override {
    record_.asked(u"Selection.item");
    return items_.at(static_cast<std::size_t>(index - 1));
  }

 private:
  Recorder& record_;
  std::vector<Ref<Item>> items_;
};

class FakeExplorer : public Explorer {
 public:
  FakeExplorer(Recorder& record, std::shared_ptr<FakeFolder> shown)
      : folder(std::move(shown)), record_(record) {}

  std::shared_ptr<FakeFolder> folder;
  std::optional<std::vector<Ref<Item>>> selected =
      std::vector<Ref<Item>>{};  // none: the selection is Nothing
  Listeners<ExplorerEvents> listeners;

  // The user selects: listeners are told.
  void select(std::vector<Ref<Item>> items) {
    selected = std::move(items);
    listeners.raise([](ExplorerEvents& listener) { listener.onSelectionChange(); });
  }

  Ref<Folder> currentFolder() override { return record_.asked(u"Explorer.currentFolder"), folder; }
  Ref<Selection> selection() override {
    record_.asked(u"Explorer.selection");
    return selected ? std::make_shared<FakeSelection>(record_, *selected) : nullptr;
  }
  Subscription listen(ExplorerEvents& listener) override {
    return record_.asked(u"Explorer.listen"), listeners.add(listener);
  }

 private:
  Recorder& record_;
};

class FakeInspector : public Inspector {
 public:
  FakeInspector(Recorder& record, Ref<Item> shown) : shown_(std::move(shown)), record_(record) {}
  Ref<Item> currentItem() override { return record_.asked(u"Inspector.currentItem"), shown_; }

 private:
  Ref<Item> shown_;
  Recorder& record_;
};

class FakeNameSpace : public NameSpace {
 public:
  explicit FakeNameSpace(Recorder& record) : record_(record) {}
  std::map<DefaultFolder, std::shared_ptr<FakeFolder>> folders;

  Ref<Folder> defaultFolder(DefaultFolder which) override {
    record_.asked(u"NameSpace.defaultFolder");
    const auto found = folders.find(which);
    if (found == folders.end()) throw Failure{-2147221233, u"The folder could not be found"};
    return found->second;
  }

 private:
  Recorder& record_;
};

class FakeApplication : public Application {
 public:
  explicit FakeApplication(Recorder& record)
      : session(std::make_shared<FakeNameSpace>(record)), record_(record) {}

  Text versionText = u"16.0.0.1234";
  std::shared_ptr<FakeNameSpace> session;
  std::shared_ptr<FakeExplorer> explorer;

  Text version() override { return record_.asked(u"Application.version"), versionText; }
  Ref<NameSpace> nameSpace() override { return record_.asked(u"Application.nameSpace"), session; }
  Ref<Explorer> activeExplorer() override { return record_.asked(u"Application.activeExplorer"), explorer; }

 private:
  Recorder& record_;
};

}  // namespace quillfile
