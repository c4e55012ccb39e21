// ComOutlook: the fakes of the mail client, of the core's own tests, behind real automation objects.
#pragma once

#include <memory>

#include "tests/fakes/fake_platform.h"
#include "tests/windows/fakes/scripted.h"

namespace quillfile::windows {

inline constexpr IID itemEventsId{0x0006302B, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID explorerEventsId{0x0006300F, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

// What the fakes have saved must be on the disk too, where the module looks for it.
void writeToDisk(FakePlatform& world, const Text& path);

class ComOutlook {
 public:
  ComOutlook(FakePlatform& world, CallCounter& calls) : world_(world), calls_(calls) {}
  ~ComOutlook();
  ComOutlook(const ComOutlook&) = delete;
  ComOutlook& operator=(const ComOutlook&) = delete;

  // The automation object of a fake; the same one each time. Nothing for Nothing.
  Variant application(const std::shared_ptr<FakeApplication>& application);
  Variant folder(const Ref<Folder>& folder);
  Variant explorer(const Ref<Explorer>& explorer);
  Variant inspector(const Ref<Inspector>& inspector);
  Variant item(const Ref<Item>& item);
  Variant attachments(const Ref<Attachments>& attachments);
  Variant addressEntry(const Ref<AddressEntry>& entry);

  // The fake behind an automation object; Nothing for a stranger.
  Ref<Folder> folderOf(IDispatch* object) const { return found<Folder>(object); }
  Ref<Explorer> explorerOf(IDispatch* object) const { return found<Explorer>(object); }
  Ref<Item> itemOf(IDispatch* object) const { return found<Item>(object); }
  Ref<AddressEntry> addressEntryOf(IDispatch* object) const { return found<AddressEntry>(object); }

 private:
  struct Known {
    std::shared_ptr<void> fake;
    Fake object;
    std::shared_ptr<void> events;  // what carries the fake's events to the object's sinks
    Subscription delivery;
  };
  template <class Port>
  Ref<Port> found(IDispatch* object) const {
    for (const auto& [key, known] : known_) {
      if (static_cast<IDispatch*>(known.object.get()) == object)
        return std::static_pointer_cast<Port>(known.fake);
    }
    return {};
  }
  // The object made for a fake before, or a new one that `fillIn` gives its members.
  template <class Port, class FillIn>
  Variant known(const Ref<Port>& port, TextView type, FillIn&& fillIn);
  Variant nameSpace(const Ref<NameSpace>& nameSpace);
  Variant selection(const Ref<Selection>& selection);
  Variant attachment(const Ref<Attachment>& attachment);
  void fillIn(Scripted& object, const std::shared_ptr<FakeItem>& item);
  void fillInWithoutLibrary(Scripted& object, const std::shared_ptr<FakeItem>& item);

  FakePlatform& world_;
  CallCounter& calls_;
  std::map<const void*, Known> known_;
};

}  // namespace quillfile::windows
