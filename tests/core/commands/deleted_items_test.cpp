#include "core/commands/deleted_items.h"

#include "tests/core/links/link_texts.h"
#include "tests/fakes/failure_sweep.h"
#include "tests/fakes/fake_platform.h"
#include "tests/fakes/transcript.h"

namespace quillfile {
namespace {

constexpr std::int32_t no = frmYesNoPrompt::ResponseNo, noToAll = frmYesNoPrompt::ResponseNoToAll,
                       yes = frmYesNoPrompt::ResponseYes, yesToAll = frmYesNoPrompt::ResponseYesToAll;

struct DeletedItemsUnderTest {
  explicit DeletedItemsUnderTest(FakePlatform& fake) : world(fake) { state.outlookApp = world.application; }

  FakePlatform& world;
  ModuleState state;
  Settings settings{world.settings, world.services, world.paths};
  DeletedItemsFolder folder{{.module = state,
                             .settings = settings,
                             .services = world.services,
                             .utilities = world.utilities,
                             .mailHelper = world.mailHelper,
                             .dialogs = world.dialogs,
                             .trace = Trace{world.log}},
                            {world.services, world.log, world.letters, world.files, world.paths}};
};

class DeletedItemsTest : public testing::TestWithParam<PathRules> {
 protected:
  FakePlatform world{GetParam()};
  DeletedItemsUnderTest room{world};
  LinkTexts text{GetParam()};

  // A mail with a note for each of the files, which exist.
  std::shared_ptr<FakeItem> mailWith(const std::vector<Text>& names, bool filesExist = true) {
    Text body = u"Hi";
    for (const auto& name : names) {
      body += u"\r\n" + text.plainNote(name);
      if (filesExist) world.files.add(text.path(name));
    }
    return world.addItem({.subject = u"M", .body = body}, DefaultFolder::deleted_items);
  }
  // The user selects so many items in the explorer and deletes them.
  void select(std::size_t count) { world.explorer->selected = std::vector<Ref<Item>>(count); }
  void handle(const Ref<Item>& item) { room.folder.HandleDeletedItemsFolderAdd(item); }
  Text deleted(TextView name) const { return fill(u"delete file {}", text.path(name)); }
};

INSTANTIATE_TEST_SUITE_P(Rules, DeletedItemsTest, bothRules(), rulesName);

TEST_P(DeletedItemsTest, ANoLetsAnEarlierYesForTheSameMailStand) {
  select(1);
  world.dialogs.promptAnswers = {yes, no};
  handle(mailWith({u"a.pdf", u"b.pdf"}));
  EXPECT_EQ(world.dialogs.prompts.size(), 2u);
  expectTranscript(world.record.lines(u"delete file"), {deleted(u"a.pdf"), deleted(u"b.pdf")});
}

TEST_P(DeletedItemsTest, ANoBeforeAYesKeepsItsFileAndAClosedPromptIsANo) {
  select(1);
  world.dialogs.promptAnswers = {no, 0, yes};
  handle(mailWith({u"a.pdf", u"b.pdf", u"c.pdf"}));
  expectTranscript(world.record.lines(u"delete file"), {deleted(u"c.pdf")});
}

TEST_P(DeletedItemsTest, AYesToAllCoversTheRestOfTheDeletionAndTheNextDeletionAsksAgain) {
  select(3);
  world.dialogs.promptAnswers = {yesToAll};
  handle(mailWith({u"a.pdf", u"b.pdf"}));
  handle(mailWith({u"c.pdf"}));
  handle(mailWith({u"d.pdf"}));
  EXPECT_EQ(world.dialogs.prompts.size(), 1u);
  expectTranscript(world.record.lines(u"delete file"),
                   {deleted(u"a.pdf"), deleted(u"b.pdf"), deleted(u"c.pdf"), deleted(u"d.pdf")});
  select(1);
  handle(mailWith({u"e.pdf"}));
  EXPECT_EQ(world.dialogs.prompts.size(), 2u);
  EXPECT_TRUE(world.files.find(text.path(u"e.pdf")));
}

TEST_P(DeletedItemsTest, ANoToAllKeepsTheRestOfTheDeletionEvenAfterAYes) {
  select(2);
  world.dialogs.promptAnswers = {yes, noToAll};
  handle(mailWith({u"a.pdf", u"b.pdf", u"c.pdf"}));
  handle(mailWith({u"d.pdf"}));
  EXPECT_EQ(world.dialogs.prompts.size(), 2u);
  expectTranscript(world.record.lines(u"delete file"), {deleted(u"a.pdf")});
  handle(mailWith({u"e.pdf"}));
  EXPECT_EQ(world.dialogs.prompts.size(), 3u);
}

TEST_P(DeletedItemsTest, AYesHoldsForItsOwnMailAlone) {
  select(2);
  world.dialogs.promptAnswers = {yes, no};
  handle(mailWith({u"a.pdf"}));
  handle(mailWith({u"b.pdf"}));
  EXPECT_EQ(world.dialogs.prompts.size(), 2u);
  expectTranscript(world.record.lines(u"delete file"), {deleted(u"a.pdf")});
}

TEST_P(DeletedItemsTest, TheLinksOfARichTextMailAreThoseOfItsPlainBody) {
  select(1);
  world.dialogs.promptAnswers = {yes};
  auto mail = mailWith({u"a.pdf"});
  mail->data.format = u"RTF";
  mail->data.rtfBody = text.rtfNote(u"b.pdf");
  handle(mail);
  expectTranscript(world.record.lines(u"delete file"), {deleted(u"a.pdf")});
}

TEST_P(DeletedItemsTest, AnEscapedBlankInALinkIsNoBlank) {
  select(1);
  world.dialogs.promptAnswers = {yes};
  world.files.add(text.path(u"a b.pdf"));
  handle(mailWith({u"a%20b.pdf"}, false));
  EXPECT_TRUE(world.dialogs.prompts.empty());
  handle(mailWith({u"a%20b.pdf"}));
  expectTranscript(world.record.lines(u"delete file"), {deleted(u"a%20b.pdf")});
}

TEST_P(DeletedItemsTest, AResetBeginsANewDeletion) {
  select(5);
  world.dialogs.promptAnswers = {noToAll, yes};
  handle(mailWith({u"a.pdf"}));
  room.folder.resetPrompt();
  handle(mailWith({u"b.pdf"}));
  expectTranscript(world.record.lines(u"delete file"), {deleted(u"b.pdf")});
}

TEST_P(DeletedItemsTest, InPersonalFoldersNobodyIsAskedAndOnlyAnEarlierYesToAllDeletes) {
  const auto inbox = world.explorer->folder;
  const auto personal = std::make_shared<FakeFolder>(world.record, u"Personal Folders", u"");
  select(1);
  world.explorer->folder = personal;
  handle(mailWith({u"a.pdf"}));
  EXPECT_TRUE(world.files.find(text.path(u"a.pdf")));

  world.explorer->folder = inbox;
  world.dialogs.promptAnswers = {yesToAll};
  handle(mailWith({u"b.pdf"}));
  world.explorer->folder = personal;
  handle(mailWith({u"c.pdf"}));
  EXPECT_EQ(world.dialogs.prompts.size(), 1u);
  expectTranscript(world.record.lines(u"delete file"), {deleted(u"b.pdf"), deleted(u"c.pdf")});
}

TEST_P(DeletedItemsTest, AMailWhoseFilesAreGoneIsOnlyTraced) {
  select(1);
  const auto mail = mailWith({u"a.pdf"}, false);
  const Text body = mail->data.body;
  handle(mail);
  const auto length = static_cast<Position>(body.size());
  expectTranscript(world.record.lines(),
                   {
                       u"trace HandleDeletedItemsFolderAdd: Deleting Item...",
                       u"trace CheckForLink: Checking For Link...Pos: 1; Param: TEXT",
                       fill(u"trace CheckForLink: Found file indicator at pos: {}", find(body, u"file:///")),
                       fill(u"trace CheckForLink: Found ending file indicator at pos2: {} (file name): {}",
                            length, text.path(u"a.pdf")),
                       fill(u"trace CheckForLink: URL Found: {}", text.path(u"a.pdf")),
                       u"trace CheckForLink: Done Checking For Link.",
                       fill(u"trace HandleDeletedItemsFolderAdd: FileExists returned not found: '{}'",
                            text.path(u"a.pdf")),
                       fill(u"trace CheckForLink: Checking For Link...Pos: {}; Param: TEXT", length),
                       fill(u"trace InStrIgnoreLfCr: keyword not found in {}", body),
                       u"trace CheckForlink: File Not Found",
                       u"trace CheckForLink: Done Checking For Link.",
                       u"trace HandleDeletedItemsFolderAdd: Deleting Item Finished",
                   });
}

TEST_P(DeletedItemsTest, AnAnsweredQuestionIsTracedAndItsFileDeleted) {
  select(1);
  world.dialogs.promptAnswers = {yes};
  world.files.add(text.path(u"a.pdf"));
  handle(world.addItem({.subject = u"M", .format = u"HTML", .htmlBody = text.htmlNote(u"a.pdf")},
                       DefaultFolder::deleted_items));
  const Text path = text.path(u"a.pdf");
  expectTranscript(
      world.record.lines(u"trace HandleDeletedItemsFolderAdd"),
      {
          u"trace HandleDeletedItemsFolderAdd: Deleting Item...",
          fill(u"trace HandleDeletedItemsFolderAdd: Calling FileExists: {}", path),
          fill(u"trace HandleDeletedItemsFolderAdd: File: {} was found and is being deleted.", path),
          u"trace HandleDeletedItemsFolderAdd: Deleting Item Finished",
      });
  ASSERT_EQ(world.dialogs.prompts.size(), 1u);
  EXPECT_EQ(world.dialogs.prompts[0].path, path);
  EXPECT_FALSE(world.files.find(path));
}

TEST_P(DeletedItemsTest, OtherItemsThanMailAreIgnored) {
  for (const TextView type : {u"PostItem", u"MeetingItem", u"ReportItem"})
    handle(world.addItem({.subject = u"P", .type = Text{type}, .body = text.plainNote(u"a.pdf")}));
  expectTranscript(world.record.lines(), {});
}

TEST_P(DeletedItemsTest, ABodyOfNoKnownFormatHoldsNoLink) {
  select(1);
  auto mail = mailWith({u"a.pdf"});
  mail->data.format = u"other";
  handle(mail);
  EXPECT_TRUE(world.dialogs.prompts.empty());
}

TEST_P(DeletedItemsTest, EachFailingCallIsReportedWithItsStep) {
  const auto runs = sweepFailures(
      GetParam(),
      [](FakePlatform& fake) {
        const LinkTexts texts{fake.paths};
        fake.files.add(texts.path(u"a.pdf"));
        fake.addItem({.subject = u"M", .body = texts.plainNote(u"a.pdf")});
        fake.dialogs.promptAnswers = {yes};
      },
      [](FakePlatform& fake) -> Text {
        DeletedItemsUnderTest made{fake};
        made.folder.HandleDeletedItemsFolderAdd(fake.folder(DefaultFolder::inbox)->items.front());
        return fake.files.find(LinkTexts{fake.paths}.path(u"a.pdf")) ? u"kept" : u"deleted";
      });
  std::vector<Text> own;  // reading the settings goes on after an error
  for (const auto& run : runs)
    if (find(run, u".HandleDeletedItemsFolderAdd") > 0) own.push_back(run);
  const auto ended = [](TextView call, int step) {
    return fill(
        u"{}: kept; error 0 Quillfile.HandleDeletedItemsFolderAdd: Error occurred at line {}.  Reason: {} "
        u"failed",
        call, step, call);
  };
  expectTranscript(own, {
                            ended(u"Item.typeName", 2),
                            ended(u"MailHelper.bodyFormat", 3),
                            ended(u"MailHelper.wrap", 3),
                            ended(u"SafeItem.body", 3),
                            ended(u"Application.activeExplorer", 4),
                            ended(u"Explorer.currentFolder", 4),
                            ended(u"Folder.name", 4),
                            ended(u"Explorer.selection", 4),
                            ended(u"Selection.count", 4),
                            ended(u"Application.version", 5),
                            ended(u"EngineServices.languageStrings", 5),
                            ended(u"EngineServices.prepareForm", 5),
                            ended(u"Dialogs.showDeletePrompt", 5),
                            ended(u"EngineUtilities.deleteFile", 5),
                        });
}

}  // namespace
}  // namespace quillfile
