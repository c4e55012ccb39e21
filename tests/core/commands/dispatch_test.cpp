#include "core/commands/dispatch.h"

#include "tests/core/tracking/tracking_world.h"
#include "tests/fakes/failure_sweep.h"

namespace quillfile {
namespace {

// The dispatcher over the room, with one watched mail in slot 1.
struct DispatchUnderTest : TrackingUnderTest {
  explicit DispatchUnderTest(FakePlatform& fake) : TrackingUnderTest(fake) {}

  bool click(TextView action, std::int32_t slot = 1) {
    bool cancel = true;
    dispatcher.ProcessClick(u"MailItem", slot, action, cancel);
    return cancel;
  }

  Settings settings{world.settings, world.services, world.paths};
  Dispatch dispatcher{
      {.module = state, .settings = settings, .services = world.services, .trace = Trace{world.log}},
      responses};
};

class DispatchTest : public testing::Test {
 protected:
  FakePlatform world;
  DispatchUnderTest room{world};

  void SetUp() override {
    room.open();
    room.openItem({.subject = u"A", .body = u"Hi"});
  }
  // Whether the module answered in place of the mail client.
  std::vector<Text> answers() const { return world.record.lines(u"A: "); }
};

TEST_F(DispatchTest, EachActionGoesToItsOwnResponse) {
  EXPECT_TRUE(room.click(u"Forward"));
  EXPECT_TRUE(room.click(u"Reply"));
  EXPECT_TRUE(room.click(u"ReplyToAll"));
  expectTranscript(answers(), {u"A: Forward", u"A: Reply", u"A: ReplyAll"});
  expectTranscript(
      world.record.lines(u"trace ProcessClick"),
      {u"trace ProcessClick: MailItem 1 action: Forward", u"trace ProcessClick: MailItem 1 action: Reply",
       u"trace ProcessClick: MailItem 1 action: ReplyToAll"});
}

TEST_F(DispatchTest, AnActionInOtherLetterCaseMatchesNone) {
  for (const TextView action : {u"replytoall", u"ReplyAll", u"forward", u""})
    EXPECT_FALSE(room.click(action));
  expectTranscript(answers(), {});
}

TEST_F(DispatchTest, InTheOutboxNothingIsAnsweredWhateverTheSetting) {
  world.explorer->folder = world.folder(DefaultFolder::outbox);
  world.settings.set(u"AutomaticReattachWanted", u"1");
  EXPECT_FALSE(room.click(u"Forward"));
  expectTranscript(world.record.lines(), {u"trace ProcessClick: MailItem 1 action: Forward",
                                          u"trace Processclick: In Outbox, skipping processing"});
}

TEST_F(DispatchTest, TheSettingIsOnWhenItIsMissingAndForEveryNumberButZero) {
  EXPECT_TRUE(room.click(u"Reply"));
  world.settings.set(u"AutomaticReattachWanted", u"-1");
  EXPECT_TRUE(room.click(u"Reply"));
  world.settings.set(u"AutomaticReattachWanted", u"0");
  EXPECT_FALSE(room.click(u"Reply"));
  expectTranscript(answers(), {u"A: Reply", u"A: Reply"});
}

TEST_F(DispatchTest, AnErrorInASettingIsReportedAndTheMailClientsOwnResponseGoesAhead) {
  world.settings.set(u"AutomaticReattachWanted", u"yes");
  EXPECT_FALSE(room.click(u"Reply"));
  expectTranscript(world.record.lines(),
                   {u"trace ProcessClick: MailItem 1 action: Reply",
                    u"error 0 Quillfile.ProcessClick: Error occurred at line 3.  Reason: Type mismatch"});
}

TEST_F(DispatchTest, AnErrorInAForwardOrAReplyToAllIsReportedUnderTheDispatchersName) {
  const Text own =
      u"error 0 Quillfile.ProcessClick: Error occurred at line 4.  Reason: Object variable not set";
  EXPECT_FALSE(room.click(u"Forward", 2));
  EXPECT_FALSE(room.click(u"ReplyToAll", 2));
  EXPECT_FALSE(room.click(u"Reply", 2));
  expectTranscript(
      world.record.lines(u"error "),
      {own, own, u"error 0 Quillfile.ReplyItem: Error occurred.  Reason: Object variable not set"});
}

TEST_F(DispatchTest, EachFailingCallBeforeTheResponseIsReportedWithItsStep) {
  const auto runs = sweepFailures(
      PathRules::posix(), [](FakePlatform&) {},
      [](FakePlatform& fake) -> Text {
        DispatchUnderTest made{fake};
        return made.click(u"none") ? u"True" : u"False";
      });
  const auto ended = [](TextView call, int step) {
    return fill(u"{}: False; error 0 Quillfile.ProcessClick: Error occurred at line {}.  Reason: {} failed",
                call, step, call);
  };
  expectTranscript(runs, {
                             ended(u"Application.activeExplorer", 2),
                             ended(u"Explorer.currentFolder", 2),
                             ended(u"Folder.entryId", 2),
                             ended(u"EngineServices.settingsApplicationName", 3),
                             ended(u"SettingsStore.read", 3),
                         });
}

}  // namespace
}  // namespace quillfile
