// Selection, slots and lists: what is watched, and what is remembered of it.
#include "core/tracking/item_tracking.h"

#include "tests/core/tracking/tracking_world.h"
#include "tests/fakes/failure_sweep.h"

namespace quillfile {
namespace {

class ItemTrackingTest : public testing::Test {
 protected:
  FakePlatform world;
  TrackingUnderTest room{world};
  ItemTracking& tracking = room.tracking;

  void SetUp() override { room.open(); }
};

TEST_F(ItemTrackingTest, OfSeveralSelectedItemsTheFirstIsTheExplorersCurrentOne) {
  auto first = world.addItem({.subject = u"A"}), second = world.addItem({.subject = u"B"});
  world.explorer->select({first, second});
  EXPECT_EQ(room.held(u"MailItem", 0), first);
  EXPECT_EQ(second->listeners.count(), 0u);
  expectTranscript(world.record.lines(), {u"trace olExplorer.SelectionChange: Selection changed",
                                          u"trace olExplorer.SelectionChange: Selection count: 2"});
}

TEST_F(ItemTrackingTest, AnEmptySelectionIsOnlyTraced) {
  world.explorer->select({});
  expectTranscript(world.record.lines(), {u"trace olExplorer.SelectionChange: Selection changed"});
}

TEST_F(ItemTrackingTest, ASelectionThatCannotBeHadIsIgnoredWithoutAWord) {
  world.explorer->selected.reset();
  world.explorer->listeners.raise([](ExplorerEvents& listener) { listener.onSelectionChange(); });
  world.record.failOn(u"Explorer.selection");
  world.explorer->select({});
  expectTranscript(world.record.lines(), {u"Explorer.selection fails"});
}

TEST_F(ItemTrackingTest, InTheOutboxTheExplorersItemsStayAsTheyWere) {
  auto before = world.addItem({.subject = u"A"});
  world.explorer->select({before});
  world.explorer->folder = world.folder(DefaultFolder::outbox);
  world.explorer->select({world.addItem({.subject = u"B"})});
  EXPECT_EQ(room.held(u"MailItem", 0), before);
}

TEST_F(ItemTrackingTest, EachTypeKeepsItsLastCurrentItem) {
  auto post = world.addItem({.subject = u"P", .type = u"PostItem"});
  auto mail = world.addItem({.subject = u"M"});
  world.explorer->select({post});
  world.explorer->select({mail});
  world.explorer->select({world.addItem({.subject = u"T", .type = u"TaskItem"})});
  EXPECT_EQ(room.held(u"PostItem", 0), post);
  EXPECT_EQ(room.held(u"MailItem", 0), mail);
  tracking.ClearExplorerItems();
  EXPECT_EQ(room.held(u"PostItem", 0), nullptr);
  EXPECT_EQ(mail->listeners.count(), 0u);
}

TEST_F(ItemTrackingTest, AnExplorerThatIsReplacedIsNoLongerListenedTo) {
  auto other = std::make_shared<FakeExplorer>(world.record, world.folder(DefaultFolder::inbox));
  tracking.setExplorer(nullptr);
  tracking.setExplorer(other);
  EXPECT_EQ(world.explorer->listeners.count(), 0u);
  EXPECT_EQ(other->listeners.count(), 1u);
  tracking.setExplorer(nullptr);
  EXPECT_EQ(other->listeners.count(), 0u);
}

TEST_F(ItemTrackingTest, EachFailingCallOfASelectionIsReportedWithItsHint) {
  const auto runs = sweepFailures(
      PathRules::posix(), [](FakePlatform& fake) { fake.addItem({.subject = u"A"}); },
      [](FakePlatform& fake) -> Text {
        TrackingUnderTest made{fake};
        made.tracking.setExplorer(fake.explorer);
        fake.explorer->select({fake.folder(DefaultFolder::inbox)->items.front()});
        return made.held(u"MailItem", 0) ? u"mapped" : u"not mapped";
      });
  const auto hinted = [](TextView call) {
    return fill(
        u"{}: not mapped; error 0 Quillfile.ExplorerMapUnderlyingItem: Error occurred.  Reason: {} failed.  "
        u"Check to see if Exchange Cached Mode and Shared Mailboxes are being used at the same time.",
        call, call);
  };
  expectTranscript(runs,
                   {
                       u"Explorer.listen: throws Explorer.listen failed",
                       u"Explorer.selection: not mapped",
                       u"Selection.count: not mapped; error 0 Quillfile.SelectionChange(1): Error occurred. "
                       u"Reason: Selection.count failed",
                       hinted(u"Application.activeExplorer"),
                       hinted(u"Explorer.currentFolder"),
                       hinted(u"Folder.entryId"),
                       hinted(u"Selection.count"),
                       hinted(u"Selection.item"),
                       hinted(u"Item.typeName"),
                       hinted(u"Item.listen"),
                   });
}

TEST_F(ItemTrackingTest, TheEleventhOpenItemOfATypeGoesUnwatchedAndAFreedSlotIsTakenNext) {
  std::vector<std::shared_ptr<FakeItem>> open;
  for (int i = 1; i <= 10; ++i) open.push_back(room.openItem({.subject = decimal(i)}));
  for (int i = 1; i <= 10; ++i) EXPECT_EQ(room.held(u"MailItem", i), open[static_cast<std::size_t>(i - 1)]);
  auto eleventh = world.addItem({.subject = u"11"});
  EXPECT_TRUE(tracking.slots().MapUnderylingItem(world.openInspector(eleventh)));
  EXPECT_EQ(eleventh->listeners.count(), 0u);
  EXPECT_FALSE(open[2]->raiseClose());
  EXPECT_EQ(room.held(u"MailItem", 3), nullptr);
  auto twelfth = room.openItem({.subject = u"12"});
  EXPECT_EQ(room.held(u"MailItem", 3), twelfth);
  expectTranscript(world.record.lines(), {});
}

TEST_F(ItemTrackingTest, EachTypeHasItsOwnTenSlots) {
  for (const auto& type : itemTypes) {
    auto item = room.openItem({.subject = u"A", .type = Text{type.name}});
    EXPECT_EQ(room.held(type.name, 1), item);
  }
  tracking.ReleaseAllItemSlots();
  for (const auto& type : itemTypes) EXPECT_EQ(room.held(type.name, 1), nullptr);
}

TEST_F(ItemTrackingTest, TheSameItemMaySitInTwoSlotsAndBeTheExplorersCurrentOne) {
  auto item = room.openItem({.subject = u"A"});
  tracking.MapUnderylingItem(world.openInspector(item));
  world.explorer->select({item});
  EXPECT_EQ(item->listeners.count(), 3u);
  EXPECT_FALSE(item->raiseSend());
  EXPECT_EQ(item->listeners.count(), 1u);
}

TEST_F(ItemTrackingTest, AnAppointmentIsNotWatched) {
  auto item = world.addItem({.subject = u"A", .type = u"AppointmentItem"});
  EXPECT_FALSE(tracking.slots().MapUnderylingItem(world.openInspector(item)));
  EXPECT_EQ(item->listeners.count(), 0u);
  expectTranscript(world.record.lines(), {});
}

TEST_F(ItemTrackingTest, EachFailingCallOfAnInspectorIsReportedByTheProcedureThatMadeIt) {
  const auto runs = sweepFailures(
      PathRules::posix(), [](FakePlatform& fake) { fake.addItem({.subject = u"A", .type = u"PostItem"}); },
      [](FakePlatform& fake) -> Text {
        TrackingUnderTest made{fake};
        const auto inspector = fake.openInspector(fake.folder(DefaultFolder::inbox)->items.front());
        return made.tracking.slots().MapUnderylingItem(inspector) ? u"True" : u"False";
      });
  const auto ended = [](TextView call, TextView procedure) {
    return fill(u"{}: False; error 0 Quillfile.{}: Error occurred.  Reason: {} failed", call, procedure,
                call);
  };
  expectTranscript(runs, {
                             ended(u"Inspector.currentItem", u"MapUnderylingItem"),
                             ended(u"Item.typeName", u"MapUnderylingItem"),
                             ended(u"Inspector.currentItem", u"MapPostItem"),
                             ended(u"Item.listen", u"MapPostItem"),
                         });
}

TEST_F(ItemTrackingTest, ANewItemIsPendingByItsSlotUntilItHasAnEntryId) {
  auto item = room.openItem({.subject = u"A", .saved = false});
  item->raiseWrite();
  item->raiseWrite();
  EXPECT_TRUE(tracking.lists().IsOnPendingList(u"m_olMailItem1"));
  EXPECT_FALSE(tracking.lists().IsOnPendingList(u"M_OLMAILITEM1"));
  item->save();
  item->raiseWrite();
  EXPECT_TRUE(tracking.lists().IsOnUserSavedList(u"A-id"));
}

TEST_F(ItemTrackingTest, PurgingMovesTheEntryIdsOfPendingSlotsToTheUserSavedList) {
  auto item = room.openItem({.subject = u"A", .type = u"PostItem", .saved = false});
  item->raiseWrite();
  tracking.lists().AddToPendingList(u"no slot of ours");
  item->save();
  tracking.lists().PurgePendingList();
  EXPECT_TRUE(tracking.lists().IsOnUserSavedList(u"A-id"));
  EXPECT_FALSE(tracking.lists().IsOnPendingList(u"m_olPostItem1"));
  EXPECT_FALSE(tracking.lists().IsOnPendingList(u"no slot of ours"));
}

TEST_F(ItemTrackingTest, WhatIsAddedTwiceIsOnThePendingListOnce) {
  room.openItem({.subject = u"A"});
  EXPECT_TRUE(tracking.lists().AddToPendingList(u"m_olMailItem1"));
  EXPECT_TRUE(tracking.lists().AddToPendingList(u"m_olMailItem1"));
  world.record.failAt(2);  // a second entry would have the slot's EntryID read again
  tracking.lists().PurgePendingList();
  expectTranscript(world.record.lines(), {});
}

TEST_F(ItemTrackingTest, PurgingReportsASlotThatIsEmptyByNow) {
  tracking.lists().AddToPendingList(u"m_olReportItem10");
  tracking.lists().PurgePendingList();
  expectTranscript(world.record.lines(),
                   {u"error 0 Quillfile.PurgePendingList: Error occurred at line 2. Reason: "
                    u"Object variable not set"});
  EXPECT_TRUE(tracking.lists().IsOnPendingList(u"m_olReportItem10"));
}

TEST_F(ItemTrackingTest, BeforeAnExplorerOpensTheListsDoNotExist) {
  tracking.releaseLists();
  auto& lists = tracking.lists();
  EXPECT_FALSE(lists.IsOnPendingList(u"m_olMailItem1"));
  expectTranscript(world.record.lines(), {});
  EXPECT_FALSE(lists.IsOnUserSavedList(u"id"));
  EXPECT_TRUE(lists.AddToPendingList(u"m_olMailItem1"));
  EXPECT_THROW(lists.AddToUserSavedList(u"id"), Failure);
  const Text reason = u"Error occurred.  Reason: Object variable not set";
  expectTranscript(world.record.lines(), {u"error 0 Quillfile.IsOnUserSavedList: " + reason,
                                          u"error 0 Quillfile.AddToPendingList: " + reason,
                                          u"error 0 Quillfile.IsOnUserSavedList: " + reason});
  lists.PurgePendingList();
  EXPECT_TRUE(lists.AddToPendingList(u"m_olMailItem1"));
  EXPECT_TRUE(lists.IsOnPendingList(u"m_olMailItem1"));
}

TEST_F(ItemTrackingTest, EachExplorerThatOpensEmptiesTheLists) {
  EXPECT_TRUE(tracking.lists().AddToPendingList(u"m_olMailItem1"));
  EXPECT_FALSE(tracking.lists().AddToUserSavedList(u"id"));
  tracking.createLists();
  EXPECT_FALSE(tracking.lists().IsOnPendingList(u"m_olMailItem1"));
  EXPECT_FALSE(tracking.lists().IsOnUserSavedList(u"id"));
}

}  // namespace
}  // namespace quillfile
