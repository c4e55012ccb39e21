#include "tests/core/links/link_command_room.h"

namespace quillfile {
namespace {

INSTANTIATE_TEST_SUITE_P(Rules, LinkCommand, bothRules(), rulesName);

TEST_P(LinkCommand, AForwardOfTwoPlainNotesGetsBothFilesAndLosesBothNotesAndTheirLineBreaks) {
  addFiles({u"a.pdf", u"b.pdf"});
  const Text a = text.plainNote(u"a.pdf"), b = text.plainNote(u"b.pdf");
  auto forward = world.addItem({.subject = u"F", .body = u"Hi\r\n" + a + u"\r\n" + b + u"\r\n"});

  EXPECT_TRUE(commands.ReplaceLinksWithAttachments(forward));

  EXPECT_EQ(forward->data.body, u"Hi\r\n");
  EXPECT_EQ(attachedTo(*forward), (std::vector<Text>{u"a.pdf", u"b.pdf"}));
  const auto found = [&](TextView name, Position marker, Position end) {
    return std::vector<Text>{
        fill(u"trace CheckForLink: Found file indicator at pos: {}", marker),
        fill(u"trace CheckForLink: Found ending file indicator at pos2: {} (file name): {}", end,
             text.path(name)),
        fill(u"trace CheckForLink: URL Found: {}", text.path(name)),
        u"trace CheckForLink: Done Checking For Link.",
        fill(u"F: add {} as '{}', type 1, position anywhere", text.path(name), name),
        fill(u"trace TestAttachmentLink: Found and added {}", text.path(name)),
        fill(u"trace ReplaceLinksWithAttachments: Erasing url text '{}'", text.path(name)),
    };
  };
  std::vector<Text> expected = {
      u"trace ReplaceLinksWithAttachments: Starting (with format & TEXT)",
      u"F: save",
      fill(u"trace Connect.SendItem: WORKING WITH: Hi\r\n{}\r\n{}\r\n", a, b),
      u"trace CheckForLink: Checking For Link...Pos: 1; Param: TEXT",
  };
  const auto append = [&](const std::vector<Text>& lines) {
    expected.insert(expected.end(), lines.begin(), lines.end());
  };
  const auto length = static_cast<Position>(a.size());
  append(found(u"a.pdf", 5 + 21, 4 + length));
  append({u"F: Body = Hi\r\n" + b + u"\r\n", u"F: save by the wrapper",
          fill(u"trace CheckForLink: Checking For Link...Pos: {}; Param: TEXT", 4 - 2)});
  append(found(u"b.pdf", 5 + 21, 4 + length));
  append({
      u"F: Body = Hi\r\n",
      u"F: save by the wrapper",
      u"trace CheckForLink: Checking For Link...Pos: 2; Param: TEXT",
      u"trace InStrIgnoreLfCr: keyword not found in Hi\r\n",
      u"trace CheckForlink: File Not Found",
      u"trace CheckForLink: Done Checking For Link.",
      u"trace ReplaceLinksWithAttachments: Attachment count before save: 2",
      u"F: save by the wrapper",
      u"trace ReplaceLinksWithAttachments: Raw attachment count after save: 2",
  });
  expectTranscript(world.record.lines(), expected);
}

TEST_P(LinkCommand, APaperclipIsTakenFromAForwardWhereverItStands) {
  auto forward = world.addItem({.subject = u"F"});
  forward->attach({.fileName = u"Paperclip.ico", .displayName = u"Paperclip retained by Quillfile"});
  forward->attach({.fileName = u"kept.pdf", .displayName = u"kept.pdf"});
  forward->attach({.fileName = u"Paperclip2.ico", .displayName = u"Paperclip retained by Quillfile"});

  EXPECT_TRUE(commands.ReplaceLinksWithAttachments(forward));

  expectTranscript(world.record.lines(),
                   {
                       u"trace ReplaceLinksWithAttachments: Starting (with format & TEXT)",
                       u"trace ReplaceLinksWithAttachments: Before displaying, removing Paperclip2.ico",
                       u"F/Paperclip2.ico: remove",
                       u"trace ReplaceLinksWithAttachments: Before displaying, removing Paperclip.ico",
                       u"F/Paperclip.ico: remove",
                       u"F: save",
                       u"trace Connect.SendItem: WORKING WITH: ",
                       u"trace CheckForLink: Checking For Link...Pos: 1; Param: TEXT",
                       u"trace InStrIgnoreLfCr: keyword not found in ",
                       u"trace CheckForlink: File Not Found",
                       u"trace CheckForLink: Done Checking For Link.",
                   });
}

TEST_P(LinkCommand, ANoteWhoseFileIsGoneIsErasedFromAForwardAllTheSame) {
  auto forward = world.addItem({.subject = u"F", .body = u"Hi " + text.plainNote(u"gone.pdf")});
  EXPECT_TRUE(commands.ReplaceLinksWithAttachments(forward));
  EXPECT_EQ(forward->data.body, u"Hi ");
  expectTranscript(effects(), {u"F: save", u"F: Body = Hi ", u"F: save by the wrapper"});
}

TEST_P(LinkCommand, AnHtmlForwardIsWrittenForEachNoteAndSavedOnceAtTheEnd) {
  addFiles({u"a.pdf", u"b.pdf"});
  const Text b = text.htmlNote(u"b.pdf");
  auto forward = world.addItem(
      {.subject = u"F", .format = u"HTML", .htmlBody = u"<p>Hi</p>" + text.htmlNote(u"a.pdf") + b});
  EXPECT_TRUE(commands.ReplaceLinksWithAttachments(forward));
  expectTranscript(effects(),
                   {
                       u"F: save",
                       fill(u"F: add {} as 'a.pdf', type 1, position anywhere", text.path(u"a.pdf")),
                       u"F: HTMLBody = <p>Hi</p>" + b,
                       fill(u"F: add {} as 'b.pdf', type 1, position anywhere", text.path(u"b.pdf")),
                       u"F: HTMLBody = <p>Hi</p>",
                       u"F: save by the wrapper",
                   });
}

TEST_P(LinkCommand, ARichTextForwardIsSearchedInPlainTextFirstAndThenInRichText) {
  addFiles({u"a.pdf", u"b.pdf"});
  const Text a = text.rtfNote(u"a.pdf") + u"\\par", b = text.rtfNote(u"b.pdf") + u"\\par";
  auto forward =
      world.addItem({.subject = u"F",
                     .format = u"RTF",
                     .body = u"Hi\r\n" + text.plainNote(u"a.pdf") + u"\r\n" + text.plainNote(u"b.pdf"),
                     .rtfBody = u"{\\rtf1 Hi\\par\r\n" + a + u"\\par\r\n" + b + u"}"});
  EXPECT_TRUE(commands.ReplaceLinksWithAttachments(forward));
  expectTranscript(effects(),
                   {
                       u"F: save",
                       fill(u"F: add {} as 'a.pdf', type 1, position anywhere", text.path(u"a.pdf")),
                       u"F: RTFBody = {\\rtf1 Hi\\par\r\n\\par\r\n" + b + u"}",
                       u"F: save by the wrapper",
                       fill(u"F: add {} as 'b.pdf', type 1, position anywhere", text.path(u"b.pdf")),
                       u"F: RTFBody = {\\rtf1 Hi\\par\r\n\\par\r\n}",
                       u"F: save by the wrapper",
                       u"F: save by the wrapper",
                   });
}

TEST_P(LinkCommand, TheOldestVersionErasesRichTextNotesInThePlainBody) {
  world.application->versionText = u"9.0.0.1";
  addFiles({u"a.pdf"});
  auto forward = world.addItem({.subject = u"F",
                                .format = u"RTF",
                                .body = u"\r\n" + text.plainNote(u"a.pdf") + u"\r\nBye",
                                .rtfBody = u"{untouched}"});
  EXPECT_TRUE(commands.ReplaceLinksWithAttachments(forward));
  EXPECT_EQ(forward->data.body, u"\r\nBye");
  EXPECT_EQ(forward->data.rtfBody, u"{untouched}");
}

TEST_P(LinkCommand, VersionTenStripsTheLineBreaksThatAPlainBodyThenBeginsWith) {
  world.application->versionText = u"10.0";
  const Text body = text.plainNote(u"a.pdf") + u"\r\n\r\n\r\nHi\r\n";
  auto forward = world.addItem({.subject = u"F", .body = body});
  auto reply = world.addItem({.subject = u"R", .body = body});
  EXPECT_TRUE(commands.ReplaceLinksWithAttachments(forward));
  EXPECT_TRUE(commands.JustEraseLinks(reply));
  EXPECT_EQ(forward->data.body, u"Hi\r\n");
  EXPECT_EQ(reply->data.body, u"Hi\r\n");
}

TEST_P(LinkCommand, AForwardLosesPlainNotesInAnyLetterCaseAReplyOnlyInTheirOwn) {
  const Text shouted = replaceAll(text.plainNote(u"a.pdf"), u"Attachment saved to", u"ATTACHMENT SAVED TO");
  auto forward = world.addItem({.subject = u"F", .body = shouted});
  auto reply = world.addItem({.subject = u"R", .body = shouted + u" " + text.plainNote(u"b.pdf")});
  EXPECT_TRUE(commands.ReplaceLinksWithAttachments(forward));
  EXPECT_TRUE(commands.JustEraseLinks(reply));
  EXPECT_EQ(forward->data.body, u"");
  EXPECT_EQ(reply->data.body, shouted + u" ");
}

TEST_P(LinkCommand, TheNoteOfAFileThatIsAnotherByItsLettersCaseIsFollowedOnItsOwn) {
  const bool areTwo = world.paths.caseCounts;
  addFiles({u"A-1.pdf", u"a-1.pdf"});
  for (const TextView version : {u"16.0", u"10.0"}) {
    world.application->versionText = version;
    auto forward = world.addItem(
        {.subject = u"F",
         .body = u"Hi\r\n" + text.plainNote(u"a-1.pdf") + u"\r\n" + text.plainNote(u"A-1.pdf")});
    EXPECT_TRUE(commands.ReplaceLinksWithAttachments(forward));
    EXPECT_EQ(forward->data.body, u"Hi\r\n");
    EXPECT_EQ(attachedTo(*forward),
              areTwo ? (std::vector<Text>{u"a-1.pdf", u"A-1.pdf"}) : (std::vector<Text>{u"a-1.pdf"}));
  }
}

TEST_P(LinkCommand, ANoteThatCannotBeErasedIsAttachedOnceAndStandsWhileTheOthersGo) {
  world.application->versionText = u"10.0";
  addFiles({u"a.pdf", u"b.pdf", u"c.pdf"});
  const Text stuck = replaceAll(text.plainNote(u"a.pdf"), u"to <", u"to: <");
  auto forward = world.addItem({.subject = u"F",
                                .body = u"\r\n\r\n" + stuck + text.plainNote(u"b.pdf") +
                                        text.plainNote(u"c.pdf") + u"\r\n" + text.plainNote(u"b.pdf")});
  EXPECT_TRUE(commands.ReplaceLinksWithAttachments(forward));
  EXPECT_EQ(forward->data.body, stuck);
  EXPECT_EQ(attachedTo(*forward), (std::vector<Text>{u"a.pdf", u"b.pdf", u"c.pdf"}));
}

TEST_P(LinkCommand, AnHtmlReplyLosesItsNotesAndNothingIsAttached) {
  addFiles({u"a.pdf"});
  auto reply = world.addItem({.subject = u"R",
                              .format = u"HTML",
                              .body = u"123",
                              .htmlBody = text.htmlNote(u"a.pdf") + u"<p>Hi</p>"});
  EXPECT_TRUE(commands.JustEraseLinks(reply));
  expectTranscript(world.record.lines(), {
                                             u"trace JustEraseLinks: Starting (with format & HTML): 3",
                                             u"R: save",
                                             u"trace CheckForLink: Checking For Link...Pos: 1; Param: HTML",
                                             fill(u"trace CheckForLink: URL Found: {}", text.path(u"a.pdf")),
                                             u"trace CheckForLink: Done Checking For Link.",
                                             u"trace JustEraseLinks: Replacing links of a.pdf",
                                             u"trace EraseString: FirstPart: ",
                                             u"trace EraseString: LastPart: <p>Hi</p>",
                                             u"R: HTMLBody = <p>Hi</p>",
                                             u"trace CheckForLink: Checking For Link...Pos: 1; Param: HTML",
                                             u"trace InStrIgnoreLfCr: keyword not found in <p>Hi</p>",
                                             u"trace CheckForlink: File Not Found",
                                             u"trace CheckForLink: Done Checking For Link.",
                                             u"trace JustEraseLinks: Saving email without links",
                                             u"R: save by the wrapper",
                                         });
}

TEST_P(LinkCommand, ARichTextReplyNamesTheFileInPlaceOfThePaperclip) {
  const Text marker = u"<< File: Paperclip retained by Quillfile >>";
  for (const TextView version : {u"16.0", u"10.0", u"9.0"}) {
    world.application->versionText = version;
    auto reply =
        world.addItem({.subject = u"R",
                       .format = u"RTF",
                       .body = marker + text.plainNote(u"report.pdf") + u"\r\n" + marker,
                       .rtfBody = u"{" + marker + text.rtfNote(u"report.pdf") + u"\\par" + marker + u"}"});
    EXPECT_TRUE(commands.JustEraseLinks(reply));
    const Text named = u"<< File: report.pdf >>";
    if (version == u"9.0")
      EXPECT_EQ(reply->data.body, named + named);
    else
      EXPECT_EQ(reply->data.rtfBody, u"{" + named + named + u"}");
  }
}

TEST_P(LinkCommand, APlainReplyKeepsThePaperclipMarkerAndTheLineBreakBehindANote) {
  const Text marker = u"<< File: Paperclip retained by Quillfile >>";
  auto reply = world.addItem({.subject = u"R", .body = marker + text.plainNote(u"a.pdf") + u"\r\nBye"});
  EXPECT_TRUE(commands.JustEraseLinks(reply));
  EXPECT_EQ(reply->data.body, marker + u"\r\nBye");
}

TEST_P(LinkCommand, MarkersOfAnyLengthHideNoNoteFromARichTextReply) {
  const Text marker = u"<< File: Paperclip retained by Quillfile >>";
  for (const TextView version : {u"16.0", u"9.0"})
    for (const TextView name :
         {u"a", u"a-name-that-is-much-longer-than-the-marker-it-takes-the-place-of.pdf"})
      for (const bool before : {true, false}) {
        world.application->versionText = version;
        Text plain, rtf = u"{";
        for (int i = 0; i < 3; ++i) {
          const Text file = fill(u"{}{}", name, i);
          if (before) plain += marker, rtf += marker;
          plain += text.plainNote(file), rtf += text.rtfNote(file) + u"\\par";
          if (!before) plain += marker, rtf += marker;
        }
        auto reply = world.addItem({.subject = u"R", .format = u"RTF", .body = plain, .rtfBody = rtf + u"}"});
        EXPECT_TRUE(commands.JustEraseLinks(reply));
        const Text& left = version == u"9.0" ? reply->data.body : reply->data.rtfBody;
        EXPECT_EQ(find(left, u"Attachment saved to"), 0) << toUtf8(left);
      }
}

TEST_P(LinkCommand, ABodyWithoutNotesIsNotTouched) {
  for (const TextView format : {u"TEXT", u"HTML", u"RTF", u"other"}) {
    auto item =
        world.addItem({.subject = u"F", .format = Text{format}, .body = u"Hi", .htmlBody = u"<p>Hi</p>"});
    world.record.clear();
    EXPECT_TRUE(commands.ReplaceLinksWithAttachments(item));
    EXPECT_TRUE(commands.JustEraseLinks(item));
    expectTranscript(effects(), {u"F: save", u"F: save"});
  }
}

TEST_P(LinkCommand, ASaveThatFailsBeforeTheWorkIsIgnored) {
  addFiles({u"a.pdf"});
  auto item = world.addItem({.subject = u"F", .body = text.plainNote(u"a.pdf")});
  world.record.failOn(u"Item.save");
  EXPECT_TRUE(commands.ReplaceLinksWithAttachments(item));
  EXPECT_EQ(item->data.body, u"");
  EXPECT_TRUE(commands.JustEraseLinks(item));
  expectTranscript(world.record.lines(u"error "), {});
}

TEST_P(LinkCommand, AnHtmlBodyWhoseNoteHasNoParagraphBecomesEmpty) {
  auto forward =
      world.addItem({.subject = u"F", .format = u"HTML", .htmlBody = u"<b>Hi</b> Attachment saved to disk"});
  EXPECT_TRUE(commands.ReplaceLinksWithAttachments(forward));
  EXPECT_EQ(forward->data.htmlBody, u"");
  expectTranscript(world.record.lines(u"error "),
                   {u"error 0 Quillfile.CheckForLink: Error in CheckForLink on Line Number: 2.  Reason: "
                    u"find: a position starts at 1"});
}

TEST_P(LinkCommand, AWrapperThatKeepsNothingOfWhatIsWrittenDoesNotHoldTheWalkForEver) {
  class Forgetful : public FakeSafeItem {
   public:
    using FakeSafeItem::FakeSafeItem;
    void setBody(BodyKind, TextView) override {}
  };
  class ForgetfulHelper : public FakeMailHelper {
   public:
    using FakeMailHelper::FakeMailHelper;
    Ref<SafeItem> wrap(const Ref<Item>& item) override {
      return std::make_shared<Forgetful>(std::dynamic_pointer_cast<FakeItem>(item));
    }
  };
  ForgetfulHelper helper{world.record};
  LinkCommands forgetful{
      {world.services, world.log, world.letters, world.files, world.paths}, helper, made.application};
  addFiles({u"a.pdf", u"b.pdf"});
  for (const TextView format : {u"TEXT", u"RTF"}) {
    auto item =
        world.addItem({.subject = u"F",
                       .format = Text{format},
                       .body = text.plainNote(u"a.pdf") + text.plainNote(u"b.pdf"),
                       .rtfBody = text.rtfNote(u"a.pdf") + u"\\par" + text.rtfNote(u"b.pdf") + u"\\par"});
    EXPECT_TRUE(forgetful.ReplaceLinksWithAttachments(item));
    EXPECT_EQ(attachedTo(*item), (std::vector<Text>{u"a.pdf", u"b.pdf"}));
  }
}

}  // namespace
}  // namespace quillfile
