#include "core/tracking/responses.h"

#include "tests/core/links/link_texts.h"
#include "tests/core/tracking/tracking_world.h"
#include "tests/fakes/failure_sweep.h"

namespace quillfile {
namespace {

class ResponsesTest : public testing::TestWithParam<PathRules> {
 protected:
  FakePlatform world{GetParam()};
  TrackingUnderTest room{world};
  Responses& responses = room.responses;
  LinkTexts text{GetParam()};

  void SetUp() override {
    room.open();
    world.log.isWanted = false;
  }
};

INSTANTIATE_TEST_SUITE_P(Rules, ResponsesTest, bothRules(), rulesName);

TEST_P(ResponsesTest, AForwardGetsItsFilesIsStoredInDraftsAndOpenedFromThere) {
  world.files.add(text.path(u"a.pdf"));
  room.openItem({.subject = u"A", .body = text.plainNote(u"a.pdf")});
  EXPECT_TRUE(responses.ForwardItem(1, u"MailItem"));
  expectTranscript(
      world.record.lines(),
      {
          u"A: Forward",
          u"Forward of A: save",
          fill(u"Forward of A: add {} as 'a.pdf', type 1, position anywhere", text.path(u"a.pdf")),
          u"Forward of A: Body = ",
          u"Forward of A: save by the wrapper",
          u"Forward of A: save by the wrapper",
          u"Forward of A: save",
          u"Forward of A: display",
      });
}

TEST_P(ResponsesTest, AForwardFromTheExplorerTakesTheSelectionFromItsLastItemToItsFirst) {
  std::vector<Ref<Item>> selected;
  for (const TextView name : {u"A", u"B", u"C"}) selected.push_back(world.addItem({.subject = Text{name}}));
  world.explorer->select(selected);
  EXPECT_TRUE(responses.ForwardItem(0, u"MailItem"));
  std::vector<Text> expected;
  for (const TextView name : {u"C", u"B", u"A"})
    for (const TextView line :
         {u"{}: Forward", u"Forward of {}: save", u"Forward of {}: save", u"Forward of {}: display"})
      expected.push_back(fill(line, name));
  expectTranscript(world.record.lines(), expected);
}

TEST_P(ResponsesTest, InASelectionEachItemGoesByItsOwnTypeAndAnAppointmentIsSkipped) {
  world.explorer->select({world.addItem({.subject = u"Post", .type = u"PostItem"}),
                          world.addItem({.subject = u"Appointment", .type = u"AppointmentItem"}),
                          world.addItem({.subject = u"Mail"})});
  world.record.clear();
  EXPECT_TRUE(responses.ReplyItem(0, u"MailItem"));
  expectTranscript(world.record.lines(), {
                                             u"Mail: Reply",
                                             u"Reply of Mail: save",
                                             u"Reply of Mail: display",
                                             u"Post: Reply",
                                             u"Reply of Post: save",
                                             u"Reply of Post: display",
                                         });
}

TEST_P(ResponsesTest, AReplyLosesItsNotesAndAReplyToAllDoesToo) {
  room.openItem({.subject = u"A", .type = u"MeetingItem", .body = u"Hi " + text.plainNote(u"a.pdf")});
  EXPECT_TRUE(responses.ReplyItem(1, u"MeetingItem"));
  EXPECT_TRUE(responses.ReplyAllItem(1, u"MeetingItem"));
  expectTranscript(world.record.lines(), {
                                             u"A: Reply",
                                             u"Reply of A: save",
                                             u"Reply of A: Body = Hi ",
                                             u"Reply of A: save by the wrapper",
                                             u"Reply of A: display",
                                             u"A: ReplyAll",
                                             u"ReplyAll of A: save",
                                             u"ReplyAll of A: Body = Hi ",
                                             u"ReplyAll of A: save by the wrapper",
                                             u"ReplyAll of A: display",
                                         });
}

TEST_P(ResponsesTest, AReplyWithoutNotesIsOpenedUnchanged) {
  room.openItem({.subject = u"A", .body = u"Hi"});
  EXPECT_TRUE(responses.ReplyItem(1, u"MailItem"));
  expectTranscript(world.record.lines(), {u"A: Reply", u"Reply of A: save", u"Reply of A: display"});
}

TEST_P(ResponsesTest, AnUnknownTypeOrSlotAnswersNothing) {
  for (const auto& [type, slot] : {std::pair{TextView{u"TaskItem"}, 1}, std::pair{TextView{u"MailItem"}, 11},
                                   std::pair{TextView{u"MailItem"}, -1}}) {
    EXPECT_FALSE(responses.ForwardItem(slot, type));
    EXPECT_TRUE(responses.ReplyItem(slot, type));
    EXPECT_TRUE(responses.ReplyAllItem(slot, type));
  }
  expectTranscript(world.record.lines(), {});
}

TEST_P(ResponsesTest, AForwardThatIsNotFoundInDraftsAnswersFalse) {
  auto item = room.openItem({.subject = u"A"});
  item->responsesHome = nullptr;
  EXPECT_FALSE(responses.ForwardItem(1, u"MailItem"));
}

TEST_P(ResponsesTest, ADraftIsFoundByItsExactIdAndOpenedOrDeleted) {
  auto draft = world.addItem({.subject = u"D"}, DefaultFolder::drafts);
  EXPECT_FALSE(responses.DisplayFromDrafts(u"d-id"));
  EXPECT_TRUE(responses.DisplayFromDrafts(u"D-id"));
  EXPECT_TRUE(responses.DeleteFromDrafts(u"D-id"));
  EXPECT_FALSE(responses.DeleteFromDrafts(u"D-id"));
  expectTranscript(world.record.lines(), {u"D: display", u"D: delete"});
}

TEST_P(ResponsesTest, AnEmptySlotIsAnErrorThatOnlyReplyReportsItself) {
  EXPECT_FALSE(responses.ReplyItem(3, u"MailItem"));
  EXPECT_THROW(responses.ReplyAllItem(3, u"MailItem"), Failure);
  EXPECT_THROW(responses.ForwardItem(3, u"MailItem"), Failure);
  expectTranscript(world.record.lines(),
                   {u"error 0 Quillfile.ReplyItem: Error occurred.  Reason: Object variable not set"});
}

// The three operations over one watched item, with each call failing in turn.
std::vector<Text> sweep(const PathRules& rules, bool (Responses::*answer)(std::int32_t, TextView)) {
  const auto arrange = [](FakePlatform& world) {
    world.addItem({.subject = u"A"});
    world.log.isWanted = false;
  };
  return sweepFailures(rules, arrange, [&](FakePlatform& world) -> Text {
    TrackingUnderTest made{world};
    made.tracking.slots().find(u"MailItem", 1)->set(world.folder(DefaultFolder::inbox)->items.front());
    return (made.responses.*answer)(1, u"MailItem") ? u"True" : u"False";
  });
}

Text inLinks(TextView call, TextView command, int step) {
  return fill(u"{}: True; error 0 Quillfile.{}: Error occurred at line {}.  Reason: {} failed", call, command,
              step, call);
}
Text leaves(TextView call) { return fill(u"{}: throws {} failed", call, call); }

TEST_P(ResponsesTest, EachFailingCallOfAForwardLeavesItOrIsReportedBelowIt) {
  const auto inDrafts = [](TextView call) {
    return fill(u"{}: False; error 0 Quillfile.DisplayFromDrafts: Error occurred.  Reason: {} failed", call,
                call);
  };
  constexpr TextView command = u"ReplaceLinksWithAttachments";
  expectTranscript(sweep(GetParam(), &Responses::ForwardItem),
                   {
                       leaves(u"Item.listen"),
                       leaves(u"Item.respond"),
                       inLinks(u"MailHelper.bodyFormat", command, 1),
                       inLinks(u"Item.attachments", command, 2),
                       inLinks(u"Attachments.count", command, 2),
                       u"Item.save: True",
                       inLinks(u"MailHelper.wrap", command, 4),
                       inLinks(u"SafeItem.body", command, 4),
                       inLinks(u"Application.version", command, 5),
                       leaves(u"Item.save"),
                       leaves(u"Item.entryId"),
                       inDrafts(u"Application.nameSpace"),
                       inDrafts(u"NameSpace.defaultFolder"),
                       inDrafts(u"Folder.itemCount"),
                       inDrafts(u"Folder.item"),
                       inDrafts(u"Item.entryId"),
                       inDrafts(u"Item.display"),
                   });
}

TEST_P(ResponsesTest, EachFailingCallOfAReplyIsReportedAndOfAReplyToAllLeavesIt) {
  const auto transcript = [&](const std::function<Text(TextView)>& ended) {
    constexpr TextView command = u"JustEraseLinks";
    return std::vector<Text>{
        leaves(u"Item.listen"),
        ended(u"Item.respond"),
        inLinks(u"MailHelper.bodyFormat", command, 1),
        inLinks(u"MailHelper.wrap", command, 2),
        u"Item.save: True",
        inLinks(u"SafeItem.body", command, 3),
        inLinks(u"Application.version", command, 4),
        ended(u"Item.display"),
    };
  };
  expectTranscript(sweep(GetParam(), &Responses::ReplyItem), transcript([](TextView call) {
                     return fill(
                         u"{}: False; error 0 Quillfile.ReplyItem: Error occurred.  Reason: {} failed", call,
                         call);
                   }));
  expectTranscript(sweep(GetParam(), &Responses::ReplyAllItem), transcript(leaves));
}

}  // namespace
}  // namespace quillfile
