// Whole runs over an item, their transcripts line by line.
#include "tests/core/saving/saving_room.h"

namespace quillfile {
namespace {

using Lines = std::vector<Text>;

Lines operator+(Lines first, const Lines& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

class WholeRun : public SavingUnderBothRules {
 protected:
  std::shared_ptr<FakeItem> three(ItemData data) {
    data.label = u"A";
    auto item = world.addItem(std::move(data));
    for (const TextView name : {u"1.pdf", u"2.pdf", u"3.pdf"})
      item->attach({.fileName = Text{name}, .displayName = fill(u"The {}", name)});
    return item;
  }

  bool run(const std::shared_ptr<FakeItem>& item, AfterSave afterSave = AfterSave::keep_unread) {
    return engine.CheckForAttachments({.item = item,
                                       .skipCriteria = true,
                                       .afterSave = afterSave,
                                       .addLink = true,
                                       .remove = true,
                                       .readWrite = ReadWrite::leave,
                                       .savePath = path(u"/Saved/")});
  }

  Lines beginning() const {
    return {u"trace CheckForAttachments: Attachment Count: 3",
            fill(u"trace CheckForAttachments: Save Path: {}", path(u"/Saved/")),
            u"trace SaveAttachments: Attachments Count:3",
            fill(u"trace SaveAttachments: SavePath:{}", path(u"/Saved/"))};
  }

  // From the attachment's index to its file's date; then it is removed.
  Lines savedAndRemoved(int number) const {
    const auto name = fill(u"{}.pdf", number);
    const auto saved = path(u"/Saved/") + name;
    return {fill(u"trace SaveAttachments: Attachment Index:{}", number),
            u"trace SaveAttachments: Attachment TypeName: Attachment",
            u"trace SaveAttachments: Attachment Type: 1",
            fill(u"trace SaveAttachments: Attachment DisplayName: The {}", name),
            fill(u"trace SaveAttachments: Attachment Name: {}", name),
            u"trace SaveAttachment: Attachment Type: olByValue",
            fill(u"trace SaveAttachment: Checking path: {}", path(u"/Saved/")),
            u"trace SaveAttachment: Attachment Keywords: <attachment name>",
            fill(u"trace SaveAttachment: Attachment FileName: {}", name),
            fill(u"trace SaveAttachment: Attachment DisplayName: The {}", name),
            u"trace SaveAttachment: Attachment Type: 1",
            fill(u"trace SaveAttachment: Saving attachment to: {}", saved),
            fill(u"A/{}: save as {}", name, saved),
            fill(u"trace WaitForFile: Entering with {}", saved),
            fill(u"FileTimes.openAlone {}", saved),
            u"trace WaitForFile: File opened normally",
            u"FileTimes.close",
            u"trace WaitForFile: Leaving",
            fill(u"trace ChangeDateTo: Changing date of {} to 3/4/2009 2:05:00 PM", saved),
            fill(u"FileTimes.openToChange {}{}", GetParam().longPathPrefix, saved),
            u"FileTimes.setTimes 128806419000000000 128806419000000000 128806419000000000",
            u"trace ChangeDateTo: Successfully changed date",
            u"FileTimes.close",
            fill(u"A/{}: remove", name)};
  }

  // The saves that follow a note, and the plain body that is traced.
  static Lines noted(TextView note, TextView body) {
    return {u"A: save by the wrapper", fill(u"trace UpdateEmailBody: *** Body updated: {}", note), u"A: save",
            fill(u"trace UpdateEmailBody: Body (without removal) after save: {}", body),
            u"trace SaveAttachments: Result: 1"};
  }

  Lines placeholder(TextView format, std::size_t position) const {
    const auto icon = world.installationFolder() + Text{GetParam().separator} + u"Paperclip.ico";
    return {
        u"trace AttachPaperclip: Retain Paperclip: 1", u"trace AttachPaperclip: Attachment Count: 0",
        fill(u"trace AttachPaperclip: Adding paperclip to {} email at {}", format, position),
        fill(u"A: add {} as 'Paperclip retained by Quillfile', type by default, position {}", icon, position),
        fill(u"trace AttachPaperclip: Retained paperclip with {}", icon)};
  }

  Text linkOf(int number) const { return link(fill(u"/Saved/{}.pdf", number)); }
  Text htmlNote(int number) const {
    return fill(u"<p>Attachment saved to <a href=\"{}\">{}</a></p>", linkOf(number), linkOf(number));
  }
  Text plainNote(int number) const { return fill(u"Attachment saved to <{}>", linkOf(number)); }
};

TEST_P(WholeRun, ThreeAttachmentsOfAnHtmlMailWithNotesAtTheBottom) {
  EXPECT_TRUE(run(three({.format = u"HTML", .body = u"x", .htmlBody = u"<body>x</body>"})));

  auto expected = beginning();
  Text notes;
  for (const int number : {3, 2, 1}) {
    notes += htmlNote(number);
    expected = expected + savedAndRemoved(number) +
               Lines{u"trace UpdateEmailBody: Format: HTML", fill(u"A: HTMLBody = <body>x{}</Body>", notes)} +
               noted(htmlNote(number), u"x");
  }
  const auto length = fill(u"<body>x{}</Body>", notes).size();
  expectTranscript(lines(),
                   expected + placeholder(u"HTML", length - 1) + Lines{u"A: save", u"A: UnRead = True"});
}

TEST_P(WholeRun, ThreeAttachmentsOfAnHtmlMailWithNotesAtTheTop) {
  world.settings.set(u"LinkLocation", u"Top");
  EXPECT_TRUE(run(three({.format = u"HTML", .body = u"x", .htmlBody = u"<body>x</body>"})));

  auto expected = beginning();
  Text notes;
  for (const int number : {3, 2, 1}) {
    notes = htmlNote(number) + notes;
    expected = expected + savedAndRemoved(number) +
               Lines{u"trace UpdateEmailBody: Format: HTML", fill(u"A: HTMLBody = <Body>{}x</body>", notes)} +
               noted(htmlNote(number), u"x");
  }
  const auto length = fill(u"<Body>{}x</body>", notes).size();
  expectTranscript(lines(),
                   expected + placeholder(u"HTML", length - 1) + Lines{u"A: save", u"A: UnRead = True"});
}

TEST_P(WholeRun, NotesForAnEmptyHtmlBodyAreWrittenOnceAtTheEnd) {
  auto item = three({.format = u"HTML"});
  EXPECT_TRUE(run(item));

  auto expected = beginning();
  for (const int number : {3, 2, 1})
    expected = expected + savedAndRemoved(number) + Lines{u"trace UpdateEmailBody: Format: HTML"} +
               noted(htmlNote(number), u"");
  const auto icon = world.installationFolder() + Text{GetParam().separator} + u"Paperclip.ico";
  expected =
      expected +
      Lines{u"trace AttachPaperclip: Retain Paperclip: 1",
            u"trace AttachPaperclip: Attachment Count: 0",
            u"trace AttachPaperclip: Adding paperclip to HTML email at -1",
            fill(u"A: add {} as 'Paperclip retained by Quillfile', type by default, position -1", icon),
            fill(u"trace AttachPaperclip: Retained paperclip with {}", icon),
            fill(u"A: HTMLBody = <Body>{}{}{}</Body>", htmlNote(3), htmlNote(2), htmlNote(1)),
            u"A: save by the wrapper",
            u"A: save",
            u"A: UnRead = True"};
  expectTranscript(lines(), expected);
  EXPECT_EQ(saving.state.pendingHtmlLinks, u"");
}

TEST_P(WholeRun, ThreeAttachmentsOfARichTextMail) {
  EXPECT_TRUE(run(three({.format = u"RTF", .body = u"x", .rtfBody = u"{\\rtf1 x}"})));

  auto expected = beginning();
  Text before = u"{\\rtf1 x}";
  for (const int number : {3, 2, 1}) {
    const auto note = replaceAll(plainNote(number), u"\\", u"\\\\");
    const auto after = fill(u"{}\\par\r\n{}\\par}", before.substr(0, before.size() - 1), note);
    expected =
        expected + savedAndRemoved(number) +
        Lines{u"trace UpdateEmailBody: Format: RTF",
              fill(u"trace UpdateEmailBody: RAW RTF BEFORE: {}", before), fill(u"A: RTFBody = {}", after),
              fill(u"trace UpdateEmailBody: RAW RTF AFTER: {}", after)} +
        noted(plainNote(number), u"x");
    before = after;
  }
  const auto lastBracket = before.rfind(u'>') + 1;
  expectTranscript(lines(),
                   expected + placeholder(u"RTF", lastBracket + 1) + Lines{u"A: save", u"A: UnRead = True"});
}

TEST_P(WholeRun, ThreeAttachmentsOfAPlainMailAtEitherEnd) {
  for (const TextView location : {u"Bottom", u"Top"}) {
    world.settings.set(u"LinkLocation", location);
    for (const TextView name : {u"/Saved/1.pdf", u"/Saved/2.pdf", u"/Saved/3.pdf"})
      world.files.erase(path(name));
    auto item = three({.body = u"x"});
    world.record.clear();
    EXPECT_TRUE(run(item));

    auto expected = beginning();
    Text body = u"x";
    for (const int number : {3, 2, 1}) {
      const auto note = plainNote(number);
      body = location == u"Bottom" ? body + u"\r\n\r\n" + note : note + u"\r\n\r\n" + body;
      expected = expected + savedAndRemoved(number) +
                 Lines{u"trace UpdateEmailBody: Format: TEXT", fill(u"A: Body = {}", body)} +
                 noted(note, body);
    }
    expectTranscript(
        lines(), expected + placeholder(u"TEXT", body.size() - 1) + Lines{u"A: save", u"A: UnRead = True"});
  }
}

TEST_P(WholeRun, ASecondSaveThatFailsEndsTheLoopAndThereIsNoPlaceholder) {
  auto item = three({.body = u"x"});
  world.settings.set(u"AutomaticRename", u"0");
  world.files.add(path(u"/Saved/2.pdf")).attributes = 33;  // and the question is answered with Cancel
  EXPECT_TRUE(run(item));
  expectTranscript(
      traced(u"SaveAttachments"),
      {u"Attachments Count:3", fill(u"SavePath:{}", path(u"/Saved/")), u"Attachment Index:3",
       u"Attachment TypeName: Attachment", u"Attachment Type: 1", u"Attachment DisplayName: The 3.pdf",
       u"Attachment Name: 3.pdf", u"Result: 1", u"Attachment Index:2", u"Attachment TypeName: Attachment",
       u"Attachment Type: 1", u"Attachment DisplayName: The 2.pdf", u"Attachment Name: 2.pdf", u"Result: 0"});
  EXPECT_EQ(item->attached.size(), 2u);
  EXPECT_TRUE(traced(u"AttachPaperclip").empty());
  EXPECT_EQ(saving.state.counter.value, 1);
}

TEST_P(WholeRun, ADeclinedRemovalGoesOnWithTheNextAttachment) {
  auto item = three({.body = u"x"});
  item->attached.at(1)->removal = Removal::declined;
  EXPECT_TRUE(run(item));
  ASSERT_EQ(item->attached.size(), 1u);
  EXPECT_EQ(item->attached.front()->fileName, u"2.pdf");
  EXPECT_EQ(item->data.body, fill(u"x\r\n\r\n{}\r\n\r\n{}", plainNote(3), plainNote(1)));
  EXPECT_EQ(saving.state.counter.value, 3);
  EXPECT_TRUE(world.record.lines(u"error ").empty());
}

TEST_P(WholeRun, AnOleObjectAmongOthersIsSkipped) {
  auto item = three({.body = u"x"});
  item->attached.at(1)->type = AttachmentType::ole;
  EXPECT_TRUE(run(item));
  EXPECT_EQ(item->attached.size(), 1u);
  EXPECT_EQ(saving.state.counter.value, 2);
  const auto about = traced(u"SaveAttachments");
  EXPECT_EQ(about.at(11), u"Attachment DisplayName: The 2.pdf");
  EXPECT_EQ(about.at(12), u"Result: 2");  // an OLE object's name is not asked for
}

// 20,000 attachments of one name, in time that grows with their number: the test's own limit is the measure.
TEST_P(WholeRun, ManyAttachmentsTakeTheirTimeAndNoMore) {
  auto item = world.addItem({.label = u"A", .format = u"HTML"});
  for (int i = 0; i < 20'000; ++i) item->attach({.fileName = fill(u"{}.png", i)});
  world.log.isWanted = false;
  EXPECT_TRUE(engine.CheckForAttachments(
      {.item = item, .skipCriteria = true, .addLink = true, .savePath = path(u"/Saved/")}));
  EXPECT_EQ(saving.state.counter.value, 20'000);
}

RUN_UNDER_BOTH_RULES(WholeRun);

}  // namespace
}  // namespace quillfile
