#include "core/links/quillfile_extended.h"

#include "tests/core/links/link_texts.h"
#include "tests/fakes/fake_platform.h"
#include "tests/fakes/transcript.h"

namespace quillfile {
namespace {

class LinkReader : public testing::TestWithParam<PathRules> {
 protected:
  FakePlatform world{GetParam()};
  LinkTexts text{GetParam()};
  QuillfileExtended links{LinkPorts{world.services, world.log, world.letters, world.files, world.paths}};
  std::shared_ptr<FakeItem> mail = world.addItem({.subject = u"Mail"});
  Ref<SafeItem> safe = world.mailHelper.wrap(mail);

  struct Answer {
    bool found;
    Position position;
    Text fileName;
    bool operator==(const Answer&) const = default;
  };
  Answer check(TextView body, TextView format, Position position = 1, bool fieldStyle = true) {
    Text fileName = u"left over";
    const bool found = links.CheckForLink(body, position, format, fileName, fieldStyle);
    return {found, position, fileName};
  }
  Position inStr(TextView body, bool returnEnd, Position start = 1) {
    return links.InStrIgnoreLfCr(start, body, u"Attachment", u"Attachment saved to",
                                 CompareMode::ignoring_case, returnEnd);
  }
  static Position end(TextView body) { return static_cast<Position>(body.size()); }
};

INSTANTIATE_TEST_SUITE_P(Rules, LinkReader, bothRules(), rulesName);

TEST_P(LinkReader, APhraseThatALineBreakDividesIsFoundAndItsEndLiesOneFurther) {
  EXPECT_EQ(inStr(u"x Attachment saved to y", false), 3);
  EXPECT_EQ(inStr(u"x Attachment saved to y", true), 3 + 19);
  EXPECT_EQ(inStr(u"x Attachment\r\nsaved to y", false), 3);
  EXPECT_EQ(inStr(u"x Attachment\r\nsaved to y", true), 3 + 19 + 1);
  EXPECT_EQ(inStr(u"x Attachment saved\r\nto y", false), 3);
  EXPECT_EQ(inStr(u"x aTTACHMENT SAVED TO y", false), 3);
}

TEST_P(LinkReader, AnUnbrokenPhraseWinsOverAnEarlierBrokenOne) {
  const Text body = u"Attachment\r\nsaved to a, Attachment saved to b";
  EXPECT_EQ(inStr(body, false), 25);
  EXPECT_EQ(inStr(body, false, 25), 25);
  EXPECT_EQ(inStr(body, false, 26), 0);
}

TEST_P(LinkReader, TheSearchForABrokenPhraseTracesEachKeywordThatIsNone) {
  EXPECT_EQ(inStr(u"Attachment lost, Attachment\r\nsaved to", false), 18);
  EXPECT_EQ(inStr(u"No attachment", false), 0);
  EXPECT_EQ(links.InStrIgnoreLfCr(1, u"attachment saved to", u"Attachment", u"Attachment saved to",
                                  CompareMode::exact, false),
            0);
  expectTranscript(
      world.record.lines(),
      {
          u"trace InStrIgnoreLfCr: Slice: Attachment lost, Attachment ",
          u"trace InStrIgnoreLfCr: Phrase 'Attachment saved to' not found in Attachment lost, Attachment ",
          u"trace InStrIgnoreLfCr: Slice: Attachment saved to",
          u"trace InStrIgnoreLfCr: Slice: attachment",
          u"trace InStrIgnoreLfCr: Phrase 'Attachment saved to' not found in attachment",
          u"trace InStrIgnoreLfCr: keyword not found in No attachment",
          u"trace InStrIgnoreLfCr: keyword not found in attachment saved to",
      });
}

TEST_P(LinkReader, AnHtmlLinkIsReadWithoutItsClosingQuotationMark) {
  const Text body = fill(u"<html><body>{}</body></html>", text.htmlNote(u"a.pdf"));
  const auto closing = find(body, u">", find(body, u"file:///"));
  EXPECT_EQ(check(body, u"HTML"), (Answer{true, closing, text.path(u"a.pdf")}));
  expectTranscript(world.record.lines(), {
                                             u"trace CheckForLink: Checking For Link...Pos: 1; Param: HTML",
                                             fill(u"trace CheckForLink: URL Found: {}", text.path(u"a.pdf")),
                                             u"trace CheckForLink: Done Checking For Link.",
                                         });
}

TEST_P(LinkReader, APlainLinkIsReadUpToItsClosingBracket) {
  const Text body = fill(u"Hello\r\n\r\n{}", text.plainNote(u"a b.pdf"));
  EXPECT_EQ(check(body, u"TEXT"), (Answer{true, end(body), text.path(u"a b.pdf")}));
  expectTranscript(world.record.lines(),
                   {
                       u"trace CheckForLink: Checking For Link...Pos: 1; Param: TEXT",
                       fill(u"trace CheckForLink: Found file indicator at pos: {}", find(body, u"file:///")),
                       fill(u"trace CheckForLink: Found ending file indicator at pos2: {} (file name): {}",
                            end(body), text.path(u"a b.pdf")),
                       fill(u"trace CheckForLink: URL Found: {}", text.path(u"a b.pdf")),
                       u"trace CheckForLink: Done Checking For Link.",
                   });
}

TEST_P(LinkReader, ARichTextPathHasItsDoubledBackslashesMadeSingle) {
  const Text body = u"{\\rtf1 abc\\par\r\n" + text.rtfNote(u"a.pdf") + u"\\par}";
  EXPECT_EQ(check(body, u"RTF"), (Answer{true, end(body) - 5, text.path(u"a.pdf")}));
}

TEST_P(LinkReader, ABodyWithoutTheFileMarkerOrItsEndHoldsNoPlainLink) {
  EXPECT_EQ(check(u"Attachment saved to disk", u"TEXT"), (Answer{false, 0, u""}));
  EXPECT_EQ(check(u"Attachment saved to <file:///C:", u"TEXT"), (Answer{false, 22, u""}));
  expectTranscript(world.record.lines(), {
                                             u"trace CheckForLink: Checking For Link...Pos: 1; Param: TEXT",
                                             u"trace CheckForLink: Failed to find file indicator in body",
                                             u"trace CheckForlink: File Not Found",
                                             u"trace CheckForLink: Done Checking For Link.",
                                             u"trace CheckForLink: Checking For Link...Pos: 1; Param: TEXT",
                                             u"trace CheckForLink: Found file indicator at pos: 22",
                                             u"trace CheckForLink: Failed to find ending file indicator",
                                             u"trace CheckForlink: File Not Found",
                                             u"trace CheckForLink: Done Checking For Link.",
                                         });
}

TEST_P(LinkReader, ABodyWithoutThePhraseHoldsNoLinkAndLeavesThePositionAtZero) {
  for (const TextView format : {u"HTML", u"TEXT", u"RTF"}) {
    EXPECT_EQ(check(u"see file:///C:\\a.pdf>", format), (Answer{false, 0, u""}));
    EXPECT_EQ(links.EraseString(u"see file:///C:\\a.pdf>", format), u"");
  }
}

TEST_P(LinkReader, InHtmlThePhraseAloneIsALinkThatPointsToNothing) {
  EXPECT_EQ(check(u"Attachment saved to disk", u"HTML"), (Answer{true, 0, u""}));
  EXPECT_EQ(check(u"Attachment saved to <a href=\"file:///x", u"HTML"), (Answer{true, 30, u""}));
  EXPECT_EQ(check(u"Attachment saved to file:///>", u"HTML"), (Answer{true, 29, u""}));
}

TEST_P(LinkReader, ASearchFromPositionZeroIsReportedAndFindsNothing) {
  EXPECT_EQ(check(text.plainNote(u"a.pdf"), u"TEXT", 0), (Answer{false, 0, u""}));
  expectTranscript(world.record.lines(),
                   {
                       u"trace CheckForLink: Checking For Link...Pos: 0; Param: TEXT",
                       u"error 0 Quillfile.CheckForLink: Error in CheckForLink on Line Number: 3.  Reason: "
                       u"find: a position starts at 1",
                   });
}

TEST_P(LinkReader, ABodyOfNoKnownFormatGivesItsPathAndStillNoLink) {
  const bool windows = GetParam().drives;
  const Text expected = windows ? u"C:\\a.pdf" : u"/docs/a.pdf";
  const Text four = windows ? u"C:\\\\\\\\a.pdf" : u"docs/a.pdf";
  const Text two = windows ? u"C:\\\\a.pdf" : u"docs/a.pdf";

  const Text field = u"{ HYPERLINK \"file:///" + four + u"\"} text>";
  EXPECT_EQ(check(field, u"HTM"), (Answer{false, end(field), expected}));
  const Text quoted = u"{ HYPERLINK \"file:///" + four + u"\" text>";
  EXPECT_EQ(check(quoted, u"html"), (Answer{false, end(quoted), expected}));
  const Text plain = u"<file:///" + two + u">";
  EXPECT_EQ(check(plain, u"", 1, false), (Answer{false, end(plain) + 1, expected}));

  EXPECT_EQ(check(u"no link", u"", 1, false), (Answer{false, 0, u""}));
  EXPECT_EQ(check(u"file:///a", u"", 1, true), (Answer{false, 1, u""}));
  EXPECT_EQ(check(u"file:///a", u"", 1, false), (Answer{false, 1, u""}));
}

TEST_P(LinkReader, TheParagraphOfTheFirstHtmlNoteIsCutOut) {
  const Text body = fill(u"<P>Hi</P>{}<p>Bye</p>", text.htmlNote(u"a.pdf"));
  EXPECT_EQ(links.EraseString(body, u"HTML"), u"<P>Hi</P><p>Bye</p>");
  expectTranscript(world.record.lines(),
                   {u"trace EraseString: FirstPart: <P>Hi</P>", u"trace EraseString: LastPart: <p>Bye</p>"});
}

TEST_P(LinkReader, AnHtmlNoteWithoutItsParagraphOrItsEndIsNotErased) {
  EXPECT_EQ(links.EraseString(u"Attachment saved to <a>x</a></p>", u"HTML"), u"");
  EXPECT_EQ(links.EraseString(u"<p>Attachment saved to x</p>", u"HTML"), u"");
  EXPECT_EQ(links.EraseString(u"<p>Attachment saved to <a>x</a>", u"HTML"), u"");
  expectTranscript(world.record.lines(), {});
}

TEST_P(LinkReader, ARichTextNoteIsCutUpToTheEndOfItsLine) {
  const Text note = text.rtfNote(u"a.pdf");
  EXPECT_EQ(links.EraseString(u"{\\par\r\n" + note + u"\\par}", u"RTF"), u"{\\par\r\n}");
  EXPECT_EQ(links.EraseString(u"{\\par\r\n" + note + u" \\par}", u"RTF"), u"{\\par\r\n}");
  EXPECT_EQ(links.EraseString(u"{\\par\r\n" + note + u"\r\n\\par}", u"RTF"), u"{\\par\r\n}");
  EXPECT_EQ(links.EraseString(u"{\\par\r\n" + note + u"} tail", u"RTF"), u"{\\par\r\n} tail");
  world.record.clear();
  EXPECT_EQ(links.EraseString(u"{" + note + u" open", u"RTF"), u"");
  expectTranscript(world.record.lines(u"trace EraseString"),
                   {u"trace EraseString: Failed to find ending file marker"});
}

TEST_P(LinkReader, ANoteInPlainTextIsItsCallersToErase) {
  EXPECT_EQ(links.EraseString(text.plainNote(u"a.pdf"), u"TEXT"), u"");
  EXPECT_EQ(links.EraseString(text.plainNote(u"a.pdf"), u"other"), u"");
  expectTranscript(world.record.lines(), {});
}

TEST_P(LinkReader, ALinkedFileIsAttachedByValueUnderItsName) {
  world.files.add(text.path(u"a b.pdf"));
  EXPECT_TRUE(links.TestAttachmentLink(safe, text.path(u"a%20b.pdf")));
  EXPECT_FALSE(links.TestAttachmentLink(safe, text.path(u"gone.pdf")));
  expectTranscript(world.record.lines(),
                   {
                       fill(u"Mail: add {} as 'a b.pdf', type 1, position anywhere", text.path(u"a b.pdf")),
                       fill(u"trace TestAttachmentLink: Found and added {}", text.path(u"a b.pdf")),
                       fill(u"trace TestAttachmentLink: Did not find {}", text.path(u"gone.pdf")),
                   });
}

TEST_P(LinkReader, AnEscapedBlankIsABlankUnlessAFileOfThatVeryNameIsThere) {
  const bool windows = GetParam().drives;
  world.files.add(text.path(u"a%20b.pdf"));
  EXPECT_EQ(links.TestAttachmentLink(safe, text.path(u"a%20b.pdf")), !windows);
  world.files.add(text.path(u"a b.pdf"));
  EXPECT_TRUE(links.TestAttachmentLink(safe, text.path(u"a%20b.pdf")));
  const auto added = [&](TextView name) {
    return std::vector<Text>{
        fill(u"Mail: add {} as '{}', type 1, position anywhere", text.path(name), name),
        fill(u"trace TestAttachmentLink: Found and added {}", text.path(name)),
    };
  };
  auto expected =
      windows ? std::vector<Text>{fill(u"trace TestAttachmentLink: Did not find {}", text.path(u"a b.pdf"))}
              : added(u"a%20b.pdf");
  for (const auto& line : added(windows ? u"a b.pdf" : u"a%20b.pdf")) expected.push_back(line);
  expectTranscript(world.record.lines(), expected);
}

TEST_P(LinkReader, AFailureToAttachIsReportedAndCountsAsNotAttached) {
  world.files.add(text.path(u"a.pdf"));
  world.record.failOn(u"Attachments.add");
  EXPECT_FALSE(links.TestAttachmentLink(safe, text.path(u"a.pdf")));
  expectTranscript(
      world.record.lines(u"error "),
      {u"error 0 Quillfile.TestAttachmentLink: Error occurred.  Reason: Attachments.add failed"});
}

class FailingLinkedFiles : public LinkedFiles {
  bool exists(const Ref<SafeItem>&, TextView) override { throw Failure{5, u"no answer"}; }
};

TEST_P(LinkReader, AnErrorInLookingForAFileCountsAsNotFound) {
  FailingLinkedFiles files;
  QuillfileExtended reader{LinkPorts{world.services, world.log, world.letters, files, world.paths}};
  EXPECT_FALSE(reader.FileExists(safe, text.path(u"a.pdf")));
  expectTranscript(world.record.lines(), {});
}

TEST_P(LinkReader, AFilesNameFollowsTheLastSlashElseTheLastBackslash) {
  EXPECT_EQ(QuillfileExtended::FileNameFromPath(u"C:\\Docs\\a.pdf"), u"a.pdf");
  EXPECT_EQ(QuillfileExtended::FileNameFromPath(u"/docs/a.pdf"), u"a.pdf");
  EXPECT_EQ(QuillfileExtended::FileNameFromPath(u"C:/Docs\\a.pdf"), u"Docs\\a.pdf");
  EXPECT_EQ(QuillfileExtended::FileNameFromPath(u"a.pdf"), u"a.pdf");
  EXPECT_EQ(QuillfileExtended::FileNameFromPath(u"/docs/"), u"");
  EXPECT_EQ(QuillfileExtended::FileNameFromPath(u""), u"");
}

}  // namespace
}  // namespace quillfile
