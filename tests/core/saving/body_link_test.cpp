#include "tests/core/saving/saving_room.h"

namespace quillfile {
namespace {

class BodyLink : public SavingUnderBothRules {
 protected:
  std::shared_ptr<FakeItem> mail(ItemData data) {
    data.subject = u"A";
    return world.addItem(std::move(data));
  }
  void linksAtTop() { world.settings.set(u"LinkLocation", u"Top"); }
};

constexpr TextView html = u"<p>Attachment saved to <a href=\"L\">L</a></p>";
constexpr TextView plain = u"Attachment saved to <L>";

TEST_P(BodyLink, AtTheBottomAnHtmlNoteStandsBeforeTheClosingTag) {
  auto item = mail({.format = u"HTML", .htmlBody = u"<html><body>x</body></html>"});
  EXPECT_TRUE(engine.UpdateEmailBody(item, u"L"));
  EXPECT_EQ(item->data.htmlBody, fill(u"<html><body>x{}</Body></html>", html));
  expectTranscript(
      lines(),
      {u"trace UpdateEmailBody: Format: HTML", fill(u"A: HTMLBody = <html><body>x{}</Body></html>", html),
       u"A: save by the wrapper", fill(u"trace UpdateEmailBody: *** Body updated: {}", html)});
}

TEST_P(BodyLink, AtTheTopAnHtmlNoteFollowsTheOpeningTag) {
  linksAtTop();
  auto item = mail({.format = u"HTML", .htmlBody = u"<html><body>x</body></html>"});
  EXPECT_TRUE(engine.UpdateEmailBody(item, u"L"));
  EXPECT_EQ(item->data.htmlBody, fill(u"<html><Body>{}x</body></html>", html));
}

TEST_P(BodyLink, AnOpeningTagWithAttributesDoesNotCount) {
  linksAtTop();
  auto item = mail({.format = u"HTML", .htmlBody = u"<html><body class=\"c\">x</body></html>"});
  EXPECT_TRUE(engine.UpdateEmailBody(item, u"L"));
  EXPECT_EQ(item->data.htmlBody, fill(u"{}<html><body class=\"c\">x</body></html>", html));
}

TEST_P(BodyLink, WithoutAClosingTagTheNoteIsAppended) {
  auto item = mail({.format = u"HTML", .htmlBody = u"x"});
  EXPECT_TRUE(engine.UpdateEmailBody(item, u"L"));
  EXPECT_EQ(item->data.htmlBody, fill(u"x{}", html));
}

TEST_P(BodyLink, TheNoteStandsBeforeEachClosingTag) {
  auto item = mail({.format = u"HTML", .htmlBody = u"x</BODY>y</body>"});
  EXPECT_TRUE(engine.UpdateEmailBody(item, u"L"));
  EXPECT_EQ(item->data.htmlBody, fill(u"x{}</Body>y{}</Body>", html, html));
}

TEST_P(BodyLink, ANoteForAnEmptyHtmlBodyWaits) {
  auto item = mail({.format = u"HTML", .body = u"kept"});
  EXPECT_TRUE(engine.UpdateEmailBody(item, u"L"));
  EXPECT_EQ(saving.state.pendingHtmlLinks, html);
  expectTranscript(lines(), {u"trace UpdateEmailBody: Format: HTML", u"A: save by the wrapper",
                             fill(u"trace UpdateEmailBody: *** Body updated: {}", html)});
}

TEST_P(BodyLink, ARichTextNoteStandsBeforeTheLastBraceWithItsBackslashesDoubled) {
  linksAtTop();  // which is of no account to rich text
  auto item = mail({.format = u"RTF", .rtfBody = u"{\\rtf1 abc}"});
  EXPECT_TRUE(engine.UpdateEmailBody(item, u"file:///C:\\a b\\c.pdf"));
  EXPECT_EQ(item->data.rtfBody,
            u"{\\rtf1 abc\\par\r\nAttachment saved to <file:///C:\\\\a b\\\\c.pdf>\\par}");
  expectTranscript(
      lines(), {u"trace UpdateEmailBody: Format: RTF", u"trace UpdateEmailBody: RAW RTF BEFORE: {\\rtf1 abc}",
                u"A: RTFBody = {\\rtf1 abc\\par\r\nAttachment saved to <file:///C:\\\\a b\\\\c.pdf>\\par}",
                u"trace UpdateEmailBody: RAW RTF AFTER: {\\rtf1 abc\\par\r\nAttachment saved to "
                u"<file:///C:\\\\a b\\\\c.pdf>\\par}",
                u"A: save by the wrapper",
                u"trace UpdateEmailBody: *** Body updated: Attachment saved to <file:///C:\\a b\\c.pdf>"});
}

TEST_P(BodyLink, RichTextWithoutABraceGivesWayToTheNoteAsThePlainBody) {
  auto item = mail({.format = u"RTF", .body = u"old", .rtfBody = u"abc"});
  EXPECT_TRUE(engine.UpdateEmailBody(item, u"L"));
  EXPECT_EQ(item->data.body, plain);
  EXPECT_EQ(item->data.rtfBody, u"abc");
}

TEST_P(BodyLink, APlainNoteStandsAtEitherEnd) {
  auto atBottom = mail({.format = u"TEXT", .body = u"x"});
  EXPECT_TRUE(engine.UpdateEmailBody(atBottom, u"L"));
  EXPECT_EQ(atBottom->data.body, fill(u"x\r\n\r\n{}", plain));
  linksAtTop();
  auto atTop = mail({.format = u"TEXT", .body = u"x"});
  EXPECT_TRUE(engine.UpdateEmailBody(atTop, u"L"));
  EXPECT_EQ(atTop->data.body, fill(u"{}\r\n\r\nx", plain));
}

TEST_P(BodyLink, AnEmptyPlainBodyBecomesTheNoteAndTwoLineEnds) {
  linksAtTop();
  auto item = mail({.format = u"anything else"});
  EXPECT_TRUE(engine.UpdateEmailBody(item, u"L"));
  EXPECT_EQ(item->data.body, fill(u"{}\r\n\r\n", plain));
}

TEST_P(BodyLink, TheWordBottomIsComparedExactly) {
  world.settings.set(u"LinkLocation", u"bottom");
  auto item = mail({.format = u"TEXT", .body = u"x"});
  EXPECT_TRUE(engine.UpdateEmailBody(item, u"L"));
  EXPECT_EQ(item->data.body, fill(u"{}\r\n\r\nx", plain));
}

TEST_P(BodyLink, LaterNotesStandAboveEarlierOnesAtTheTop) {
  linksAtTop();
  auto item = mail({.format = u"HTML", .htmlBody = u"<body></body>"});
  EXPECT_TRUE(engine.UpdateEmailBody(item, u"1"));
  EXPECT_TRUE(engine.UpdateEmailBody(item, u"2"));
  EXPECT_EQ(item->data.htmlBody,
            u"<Body><p>Attachment saved to <a href=\"2\">2</a></p>"
            u"<p>Attachment saved to <a href=\"1\">1</a></p></body>");
}

// 32 MB of one line in UTF-16 and three notes: linear work only, or the test's own time limit is reached.
TEST_P(BodyLink, AHugeBodyOfOneLineTakesNotes) {
  auto item = mail({.format = u"HTML", .htmlBody = Text(16 << 20, u'<') + u"</body>"});
  world.log.isWanted = false;
  const auto before = item->data.htmlBody.size();
  for (int i = 0; i < 3; ++i) EXPECT_TRUE(engine.UpdateEmailBody(item, u"L"));
  EXPECT_EQ(item->data.htmlBody.size(), before + 3 * html.size());
}

TEST_P(BodyLink, WhateverFailsIsSilentAndFalse) {
  for (const TextView format : {u"HTML", u"RTF", u"TEXT"}) {
    const auto runs = sweepFailures(
        GetParam(),
        [&](FakePlatform& fresh) {
          fresh.addItem({.subject = u"A", .format = Text{format}, .htmlBody = u"x", .rtfBody = u"{}"});
        },
        [](FakePlatform& fresh) {
          Saving room{fresh};
          const auto item = fresh.folder(DefaultFolder::inbox)->items.front();
          return Text{room.routines.UpdateEmailBody(item, u"L") ? u"True" : u"False"};
        });
    expectTranscript(runs, {u"MailHelper.bodyFormat: False", u"EngineServices.settingsApplicationName: False",
                            u"SettingsStore.read: False", u"MailHelper.wrap: False", u"SafeItem.body: False",
                            u"SafeItem.setBody: False", u"SafeItem.save: False"});
  }
}

RUN_UNDER_BOTH_RULES(BodyLink);

}  // namespace
}  // namespace quillfile
