#include "core/tracking/watched_item.h"

#include "tests/core/tracking/tracking_world.h"

namespace quillfile {
namespace {

struct Handled {
  TextView name;
  TextView action;
  bool ofSlotsOnly;
  bool (*raise)(FakeItem& item, bool cancel);
};

constexpr Handled events[] = {
    {u"Forward", u"Forward", false, [](FakeItem& i, bool c) { return i.raiseRespond(Response::forward, c); }},
    {u"Reply", u"Reply", false, [](FakeItem& i, bool c) { return i.raiseRespond(Response::reply, c); }},
    {u"ReplyAll", u"ReplyToAll", false,
     [](FakeItem& i, bool c) { return i.raiseRespond(Response::reply_all, c); }},
    {u"Send", u"", true, [](FakeItem& i, bool c) { return i.raiseSend(c); }},
    {u"Write", u"", true, [](FakeItem& i, bool c) { return i.raiseWrite(c); }},
    {u"Close", u"", true, [](FakeItem& i, bool c) { return i.raiseClose(c); }},
};

// Every call that a handler makes, and the answers that it gets.
class RecordingActions : public ItemActions {
 public:
  explicit RecordingActions(Recorder& record) : record_(record) {}
  bool cancels = false;
  std::int32_t closeAnswer = 0;
  bool closeFails = false;

  void ProcessClick(TextView typeName, std::int32_t slot, TextView action, bool& cancel) override {
    record_.did(fill(u"ProcessClick({}, {}, {})", typeName, slot, action));
    cancel = cancels;
  }
  bool AddToUserSavedList(TextView entryId) override {
    record_.did(fill(u"AddToUserSavedList({})", entryId));
    return false;
  }
  bool AddToPendingList(TextView slotName) override {
    record_.did(fill(u"AddToPendingList({})", slotName));
    return true;
  }
  std::int32_t CloseItem(const Ref<Item>& item) override {
    record_.did(item ? u"CloseItem(item)" : u"CloseItem(Nothing)");
    if (closeFails) throw Failure{5, u"CloseItem failed"};
    return closeAnswer;
  }

 private:
  Recorder& record_;
};

class WatchedItemTest : public testing::Test {
 protected:
  FakePlatform world;
  RecordingActions actions{world.record};
  ItemSlots slots{world.services, actions};

  std::shared_ptr<FakeItem> put(TextView type, std::int32_t slot, bool saved = true) {
    auto item = world.addItem({.subject = u"Item", .type = Text{type}, .saved = saved});
    slots.find(type, slot)->set(item);
    world.record.clear();
    return item;
  }
};

TEST_F(WatchedItemTest, EachOfThe252HandlersKnowsItsTypeSlotActionAndNameAndWhatBecomesOfCancel) {
  int handlers = 0;
  for (const auto& type : itemTypes)
    for (std::int32_t slot = 0; slot <= 10; ++slot)
      for (const auto& event : events)
        for (const bool answer : {false, true})
          for (const bool cancel : {false, true}) {
            actions.cancels = answer;
            auto item = put(type.name, slot, false);
            auto& watched = *slots.find(type.name, slot);
            const bool responds = !event.ofSlotsOnly, handled = responds || slot > 0;

            const bool after = event.raise(*item, cancel);

            const bool frees = slot > 0 && (event.name == u"Send" || event.name == u"Close");
            EXPECT_EQ(watched.item() == nullptr, frees) << toUtf8(event.name);
            EXPECT_EQ(item->listeners.count(), frees ? 0u : 1u);
            const bool expectedCancel = responds                             ? answer
                                        : slot > 0 && event.name == u"Close" ? false
                                                                             : cancel;
            EXPECT_EQ(after, expectedCancel) << toUtf8(event.name);
            std::vector<Text> calls;
            if (responds) calls = {fill(u"ProcessClick({}, {}, {})", type.name, slot, event.action)};
            if (slot > 0 && event.name == u"Write")
              calls = {fill(u"AddToPendingList(m_ol{}{})", type.name, slot)};
            if (slot > 0 && event.name == u"Close") calls = {u"CloseItem(item)"};
            expectTranscript(world.record.lines(), calls);
            watched.reset();
            if (handled && !answer && !cancel) ++handlers;
          }
  EXPECT_EQ(handlers, 252);
}

TEST_F(WatchedItemTest, ReplyAllOnTheSeventhPostItemGoesToTheDispatcherAsReplyToAll) {
  put(u"PostItem", 7)->raiseRespond(Response::reply_all);
  expectTranscript(world.record.lines(), {u"ProcessClick(PostItem, 7, ReplyToAll)"});
}

TEST_F(WatchedItemTest, ForwardOnTheExplorersMeetingItemGoesToTheDispatcherWithSlotZero) {
  put(u"MeetingItem", 0)->raiseRespond(Response::forward);
  expectTranscript(world.record.lines(), {u"ProcessClick(MeetingItem, 0, Forward)"});
}

TEST_F(WatchedItemTest, AnItemThatHasAnEntryIdIsRememberedByItWhenItIsWritten) {
  auto item = put(u"MailItem", 4, false);
  item->raiseWrite();
  item->data.entryId = u"item-id";
  item->raiseWrite();
  expectTranscript(world.record.lines(),
                   {u"AddToPendingList(m_olMailItem4)", u"AddToUserSavedList(item-id)"});
}

TEST_F(WatchedItemTest, AClosesAnswerDecidesAboutTheSlotAndTheCloseEachByItself) {
  struct Case {
    std::int32_t answer;
    bool keepsSlot, cancels;
  };
  for (const auto& [answer, keepsSlot, cancels] :
       {Case{0, false, false}, Case{1, true, true}, Case{2, false, true}, Case{-1, false, true}}) {
    actions.closeAnswer = answer;
    auto item = put(u"ReportItem", 10);
    EXPECT_EQ(item->raiseClose(), cancels);
    EXPECT_EQ(slots.find(u"ReportItem", 10)->item() != nullptr, keepsSlot);
    slots.find(u"ReportItem", 10)->reset();
  }
}

TEST_F(WatchedItemTest, AnErrorInAHandlerLeavesCancelAsItCameButForCloseWhichStaysStopped) {
  auto item = put(u"MailItem", 1);
  bool cancel = false;
  world.record.failOn(u"Item.entryId");
  EXPECT_THROW(slots.find(u"MailItem", 1)->onWrite(cancel), Failure);
  EXPECT_FALSE(cancel);
  actions.closeFails = true;
  EXPECT_THROW(slots.find(u"MailItem", 1)->onClose(cancel), Failure);
  EXPECT_TRUE(cancel);
  EXPECT_EQ(slots.find(u"MailItem", 1)->item(), item);
}

TEST_F(WatchedItemTest, ASentItemsSlotIsFreeAtOnceAndALaterCloseFindsItEmpty) {
  auto item = put(u"MailItem", 2);
  auto& watched = *slots.find(u"MailItem", 2);
  EXPECT_FALSE(item->raiseSend());
  EXPECT_EQ(watched.item(), nullptr);
  EXPECT_FALSE(item->raiseClose());
  bool cancel = false;
  watched.onClose(cancel);  // as a mail client that is late with it
  EXPECT_FALSE(cancel);
  expectTranscript(world.record.lines(), {u"CloseItem(Nothing)"});
}

TEST_F(WatchedItemTest, AnItemThatIsSetAnewIsListenedToOnce) {
  auto item = put(u"MailItem", 0);
  slots.find(u"MailItem", 0)->set(item);
  EXPECT_EQ(item->listeners.count(), 1u);
  item->raiseRespond(Response::reply);
  expectTranscript(world.record.lines(), {u"ProcessClick(MailItem, 0, Reply)"});
}

TEST_F(WatchedItemTest, AnItemThatCannotBeListenedToLeavesTheReferenceEmpty) {
  auto item = put(u"MailItem", 0);
  world.record.failOn(u"Item.listen");
  EXPECT_THROW(slots.find(u"MailItem", 0)->set(item), Failure);
  EXPECT_EQ(slots.find(u"MailItem", 0)->item(), nullptr);
  EXPECT_EQ(item->listeners.count(), 0u);
}

}  // namespace
}  // namespace quillfile
