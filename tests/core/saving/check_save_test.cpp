#include "tests/core/saving/saving_room.h"

namespace quillfile {
namespace {

class CheckSave : public SavingUnderBothRules {
 protected:
  std::shared_ptr<FakeItem> three() {
    auto item = world.addItem({.label = u"A", .subject = u"Invoice"});
    for (const TextView name : {u"one.pdf", u"two.pdf", u"three.pdf"})
      item->attach({.fileName = Text{name}, .displayName = fill(u"The {}", name), .size = 102'400});
    return item;
  }
  bool check(const std::shared_ptr<FakeItem>& item, SaveFilters& filters, bool checkOnly = false) {
    world.record.clear();
    return engine.CheckSave(item, path(u"/Saved/"), filters, {}, checkOnly);
  }
  bool check(const std::shared_ptr<FakeItem>& item, SaveFilters&& filters, bool checkOnly = false) {
    return check(item, filters, checkOnly);
  }
  Text savedAs(TextView name) const { return fill(u"A/{}: save as {}{}", name, path(u"/Saved/"), name); }
  // The lines of CheckSave that follow the nine about its filters.
  std::vector<Text> decisions() const {
    auto all = traced(u"CheckSave");
    all.erase(all.begin(), all.begin() + 9);
    return all;
  }
};

TEST_P(CheckSave, WithoutAFilterNothingQualifies) {
  EXPECT_FALSE(check(three(), {}));
  expectTranscript(lines(),
                   {u"trace CheckSave: Typename: MailItem", u"trace CheckSave: SaveBySubjectEnabled: 0",
                    u"trace CheckSave: TextSubject: ", u"trace CheckSave: SaveByFromEnabled: 0",
                    u"trace CheckSave: TextFrom: ", u"trace CheckSave: SaveByNameEnabled: 0",
                    u"trace CheckSave: TextFileName: ", u"trace CheckSave: SaveBySizeEnabled: 0",
                    u"trace CheckSave: TextFileSize: 0", u"trace CheckSave: Leaving (Returning: False)"});
}

TEST_P(CheckSave, AMatchingSubjectQualifiesTheItemAndTheSenderIsNeverRead) {
  world.record.failOn(u"SafeItem.senderName");
  SaveFilters filters{
      .SaveBySubjectEnabled = 1, .TextSubject = u"VOICE", .SaveByFromEnabled = 1, .TextFrom = u"ada"};
  EXPECT_TRUE(check(three(), filters));
  expectTranscript(decisions(), {u"EmailSubject: invoice", u"Leaving (Returning: True)"});
  EXPECT_EQ(filters.TextSubject, u"voice");
}

TEST_P(CheckSave, TheSendersNameOrAddressQualifiesTheItem) {
  SaveFilters filters{.SaveByFromEnabled = 1, .TextFrom = u"LOVELACE"};
  EXPECT_TRUE(check(three(), filters));
  EXPECT_EQ(filters.TextFrom, u"lovelace");
  expectTranscript(decisions(), {u"emailFrom (.SenderName): ada lovelace", u"Leaving (Returning: True)"});
  EXPECT_TRUE(check(three(), {.SaveByFromEnabled = 1, .TextFrom = u"@example"}));
  expectTranscript(decisions(),
                   {u"emailFrom (.SenderName): ada lovelace",
                    u"emailFrom (.SenderEmailAddress): ada@example.com", u"Leaving (Returning: True)"});
}

TEST_P(CheckSave, AnExchangeSenderIsTestedByTheResolvedAddress) {
  auto item = world.addItem(
      {.label = u"A", .senderType = u"EX", .senderAddress = u"/o=x", .smtpAddress = u"A@B.example"});
  EXPECT_TRUE(check(item, {.SaveByFromEnabled = 1, .TextFrom = u"b.example"}));
  expectTranscript(decisions(), {u"emailFrom (.SenderName): ada lovelace",
                                 u"emailFrom (GetSMTPAddress): a@b.example", u"Leaving (Returning: True)"});
}

TEST_P(CheckSave, AnAddressThatResolvesEmptyIsNotTested) {
  auto item = world.addItem({.label = u"A", .senderType = u"EX", .senderAddress = u"/o=x"});
  EXPECT_FALSE(check(item, {.SaveByFromEnabled = 1, .TextFrom = u"x"}));
  expectTranscript(decisions(), {u"emailFrom (.SenderName): ada lovelace", u"Leaving (Returning: False)"});
}

TEST_P(CheckSave, ASenderThatIsNothingEndsTheSenderFilter) {
  auto item = world.addItem({.label = u"A", .hasSender = false});
  EXPECT_FALSE(check(item, {.SaveByFromEnabled = 1, .TextFrom = u"example"}));
  expectTranscript(decisions(), {u"emailFrom (.SenderName): ada lovelace", u"Leaving (Returning: False)"});
}

TEST_P(CheckSave, OneMatchingNameIsSavedAloneAndTheSizeFilterStillRuns) {
  SaveFilters filters{.SaveByNameEnabled = 1, .TextFileName = u"the TWO", .SaveBySizeEnabled = 1};
  EXPECT_FALSE(check(three(), filters));
  EXPECT_EQ(filters.TextFileName, u"the two");
  expectTranscript(
      decisions(),
      {u"emailFileName (.DisplayName): the three.pdf", u"emailFileName (.FileName): three.pdf",
       u"emailFileName (.DisplayName): the two.pdf", u"emailFileName (.DisplayName): the one.pdf",
       u"emailFileName (.FileName): one.pdf", u"Attachment Size: 102400; Wanted Size: 0",
       u"Attachment Size failed", u"Attachment Size: 102400; Wanted Size: 0", u"Attachment Size failed",
       u"Attachment Size: 102400; Wanted Size: 0", u"Attachment Size failed", u"Leaving (Returning: False)"});
  expectTranscript(done(), {savedAs(u"two.pdf"), u"A: save by the wrapper"});
}

TEST_P(CheckSave, AFirstAttachmentThatMatchesByNameSkipsTheSizeFilter) {
  EXPECT_FALSE(check(
      three(),
      {.SaveByNameEnabled = 1, .TextFileName = u"one.pdf", .SaveBySizeEnabled = 1, .TextFileSize = 1000}));
  expectTranscript(done(), {savedAs(u"one.pdf"), u"A: save by the wrapper"});
}

TEST_P(CheckSave, AnAttachmentAtTheLimitFailsAndOneBelowPasses) {
  auto item = three();
  item->attached.at(1)->size = 102'399;
  SaveFilters filters{.SaveBySizeEnabled = 1, .TextFileSize = 100};
  EXPECT_FALSE(check(item, filters));
  expectTranscript(decisions(), {u"Attachment Size: 102400; Wanted Size: 102400", u"Attachment Size failed",
                                 u"Attachment Size: 102399; Wanted Size: 102400", u"Attachment Size passed",
                                 u"Attachment Size: 102400; Wanted Size: 102400", u"Attachment Size failed",
                                 u"Leaving (Returning: False)"});
  expectTranscript(done(), {savedAs(u"two.pdf"), u"A: save by the wrapper"});
  EXPECT_EQ(filters.TextFileSize, 102'400);
}

TEST_P(CheckSave, DecidingOnlyAMatchQualifiesAndNothingIsSaved) {
  EXPECT_TRUE(check(three(), {.SaveByNameEnabled = 1, .TextFileName = u"two"}, true));
  EXPECT_TRUE(done().empty());
  EXPECT_TRUE(check(three(), {.SaveBySizeEnabled = 1, .TextFileSize = 101}, true));
  EXPECT_TRUE(done().empty());
  expectTranscript(
      decisions(),
      {u"Attachment Size: 102400; Wanted Size: 103424", u"Attachment Size: 102400; Wanted Size: 103424",
       u"Attachment Size: 102400; Wanted Size: 103424", u"Leaving (Returning: True)"});
}

TEST_P(CheckSave, ALimitBeyond32BitsIsAnErrorAndNeverWraps) {
  for (const auto& [kilobytes, bytes] :
       {std::pair{2'097'151, 2'147'482'624}, std::pair{2'097'152, 2'097'152}}) {
    SaveFilters filters{.SaveBySizeEnabled = 1, .TextFileSize = kilobytes};
    check(three(), filters, true);
    EXPECT_EQ(filters.TextFileSize, bytes);
  }
  expectTranscript(decisions(), {});
  expectTranscript(done(), {u"error 0 Quillfile.CheckSave: Error occurred at line 7.  Reason: Overflow"});
}

TEST_P(CheckSave, ThePlaceholderIsAddedOnceEverythingThatMatchedIsGone) {
  auto item = world.addItem({.label = u"A"});
  item->attach({.fileName = u"one.pdf"});
  SaveFilters filters{.SaveByNameEnabled = 1, .TextFileName = u"one"};
  EXPECT_FALSE(engine.CheckSave(item, path(u"/Saved/"), filters, {.remove = true}, false));
  ASSERT_EQ(item->attached.size(), 1u);
  EXPECT_EQ(item->attached.front()->displayName, u"Paperclip retained by Quillfile");
  EXPECT_EQ(lines().back(), u"trace CheckSave: Leaving (Returning: False)");
}

TEST_P(CheckSave, NotesForAnEmptyHtmlBodyAreNotWrittenAfterItAndNeverIntoAnotherItem) {
  auto filtered = world.addItem({.label = u"A", .format = u"HTML"});
  filtered->attach({.fileName = u"one.pdf"});
  SaveFilters filters{.SaveByNameEnabled = 1, .TextFileName = u"one"};
  EXPECT_FALSE(engine.CheckSave(filtered, path(u"/Saved/"), filters, {.addLink = true}, false));
  EXPECT_NE(saving.state.pendingHtmlLinks, u"");
  EXPECT_EQ(filtered->data.htmlBody, u"");

  auto other = world.addItem({.label = u"B", .format = u"HTML"});
  other->attach({.fileName = u"two.pdf"});
  EXPECT_TRUE(engine.SaveAttachments(other, {.addLink = true}, path(u"/Saved/")));
  EXPECT_EQ(other->data.htmlBody, fill(u"<Body><p>Attachment saved to <a href=\"{}\">{}</a></p></Body>",
                                       link(u"/Saved/two.pdf"), link(u"/Saved/two.pdf")));
}

TEST_P(CheckSave, AnErrorLeavesTheResultAsItStood) {
  const auto runs = sweepFailures(
      GetParam(),
      [](FakePlatform& fresh) {
        fresh.addItem({.label = u"A"})->attach({.fileName = u"one.pdf", .displayName = u"x", .size = 1});
      },
      [&](FakePlatform& fresh) {
        Saving room{fresh};
        fresh.log.isWanted = false;
        SaveFilters filters{.SaveBySubjectEnabled = 1,
                            .SaveByFromEnabled = 1,
                            .SaveByNameEnabled = 1,
                            .SaveBySizeEnabled = 1,
                            .TextFileSize = 1};
        const auto item = fresh.folder(DefaultFolder::inbox)->items.front();
        return Text{room.routines.CheckSave(item, u"", filters, {}, true) ? u"True" : u"False"};
      });
  const auto failed = [](TextView call, int step) {
    return fill(u"{}: False; error 0 Quillfile.CheckSave: Error occurred at line {}.  Reason: {} failed",
                call, step, call);
  };
  expectTranscript(runs, {failed(u"MailHelper.wrap", 1),           failed(u"SafeItem.subject", 3),
                          failed(u"EngineUtilities.matchText", 3), failed(u"SafeItem.senderName", 4),
                          failed(u"EngineUtilities.matchText", 4), failed(u"SafeItem.sender", 4),
                          failed(u"AddressEntry.type", 4),         failed(u"SafeItem.senderEmailAddress", 4),
                          failed(u"EngineUtilities.matchText", 4), failed(u"Item.attachments", 5),
                          failed(u"Attachments.count", 5),         failed(u"Attachments.item", 5),
                          failed(u"Attachment.displayName", 5),    failed(u"EngineUtilities.matchText", 5),
                          failed(u"Attachment.fileName", 5),       failed(u"EngineUtilities.matchText", 5),
                          failed(u"Item.attachments", 7),          failed(u"Attachments.count", 7),
                          failed(u"Attachments.item", 7),          failed(u"Attachment.size", 7)});
}

RUN_UNDER_BOTH_RULES(CheckSave);

}  // namespace
}  // namespace quillfile
