// The fakes themselves: what the other tests rely on.
#include "tests/fakes/failure_sweep.h"
#include "tests/fakes/fake_platform.h"
#include "tests/fakes/transcript.h"

namespace quillfile {
namespace {

class Counting : public ItemEvents {
 public:
  int sent = 0;
  void onRespond(Response, bool&) override {}
  void onSend(bool& cancel) override { ++sent, cancel = true; }
  void onWrite(bool&) override {}
  void onClose(bool&) override {}
};

TEST(Fakes, EffectsAndTracesStandInOneTranscript) {
  FakePlatform world;
  auto mail = world.addItem({.subject = u"Invoices"});
  mail->attach({.fileName = u"a.pdf", .content = "bytes"});
  world.files.addFolder(u"C:\\Saved");
  const Platform platform = world.platform();

  platform.log.write(u"Quillfile", u"Test", u"Entering", 0);
  mail->attachments()->item(1)->saveAsFile(u"C:\\Saved\\a.pdf");
  mail->attachments()->item(1)->remove();
  mail->save();

  expectTranscript(world.record.lines(),
                   {u"trace Test: Entering", u"Invoices/a.pdf: save as C:\\Saved\\a.pdf",
                    u"Invoices/a.pdf: remove", u"Invoices: save"});
  EXPECT_EQ(world.files.find(u"c:\\saved\\A.PDF")->content, "bytes");
  EXPECT_TRUE(mail->attached.empty());
}

TEST(Fakes, ASweepFailsEachCallInTurn) {
  const auto runs = sweepFailures(
      PathRules::posix(), [](FakePlatform& world) { world.addItem({.subject = u"A"}); },
      [](FakePlatform& world) {
        const auto item = world.folder(DefaultFolder::inbox)->item(1);
        item->save();
        return item->subject();
      });
  expectTranscript(runs, {u"Folder.item: throws Folder.item failed", u"Item.save: throws Item.save failed",
                          u"Item.subject: throws Item.subject failed"});
}

TEST(Fakes, NothingIsDeliveredAfterASubscriptionEnds) {
  FakePlatform world;
  auto mail = world.addItem({.subject = u"A"});
  Counting listener;
  {
    const auto subscription = mail->listen(listener);
    EXPECT_TRUE(mail->raiseSend());
  }
  EXPECT_FALSE(mail->raiseSend());
  EXPECT_EQ(listener.sent, 1);
}

TEST(Fakes, AResponseLiesInDraftsOnceItIsSaved) {
  FakePlatform world;
  auto mail = world.addItem({.subject = u"A"});
  const auto forward = mail->respond(Response::forward);
  EXPECT_EQ(forward->entryId(), u"");
  forward->save();
  EXPECT_EQ(forward->entryId(), u"Forward of A-id");
  EXPECT_EQ(world.folder(DefaultFolder::drafts)->items.size(), 1u);
}

TEST(Fakes, FoldersAndReadOnlyFilesRefuseAsTheSystemWould) {
  for (const auto& rules : {PathRules::windows(), PathRules::posix()}) {
    FakePlatform world{rules};
    const Text root = rules.drives ? u"C:\\Saved\\" : u"/saved/";
    world.files.refuseFolder(root);
    EXPECT_FALSE(world.utilities.createFolderPath(root + u"Inbox"));
    EXPECT_THROW(world.files.write(root + u"a.pdf", "x"), Failure);
    world.files.add(root + u"b.pdf").attributes = 33;
    EXPECT_THROW(world.files.deleteFile(root + u"b.pdf"), Failure);
    EXPECT_EQ(world.files.firstFreePath(root, u"b", u".pdf"), root + u"b-1.pdf");
  }
}

TEST(Fakes, DatesReadBackToTheSameSecond) {
  FakePlatform world;
  for (const LocalTime time :
       {LocalTime{2009, 3, 4, 14, 5, 0}, LocalTime{2009, 3, 4, 0, 0, 0}, LocalTime{2009, 12, 31, 0, 5, 9}})
    EXPECT_EQ(world.dates.parse(world.dates.general(time)), time);
  EXPECT_EQ(world.dates.general({2009, 3, 4, 14, 5, 0}), u"3/4/2009 2:05:00 PM");
  EXPECT_EQ(world.dates.general({2009, 3, 4, 0, 0, 0}), u"3/4/2009");
  EXPECT_THROW(world.dates.parse(u"tomorrow"), Failure);
}

}  // namespace
}  // namespace quillfile
