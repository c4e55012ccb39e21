#include "tests/core/links/link_command_room.h"
#include "tests/fakes/failure_sweep.h"

namespace quillfile {
namespace {

using LinkCommandFailure = LinkCommand;
INSTANTIATE_TEST_SUITE_P(Rules, LinkCommandFailure, bothRules(), rulesName);

// What a failing call leaves: the one transcript of every place where a call can fail.
void arrangeRichText(FakePlatform& world) {
  const LinkTexts text{world.paths};
  world.files.add(text.path(u"a.pdf"));
  world
      .addItem({.subject = u"F",
                .format = u"RTF",
                .body = text.plainNote(u"a.pdf"),
                .rtfBody = u"{" + text.rtfNote(u"a.pdf") + u"\\par}"})
      ->attach({.fileName = u"p.ico", .displayName = u"Paperclip retained by Quillfile"});
}

Text forwardFirst(FakePlatform& world) {
  Commands made{world};
  const auto item = world.folder(DefaultFolder::inbox)->items.front();
  return made.commands.ReplaceLinksWithAttachments(item) ? u"True" : u"False";
}

Text replyFirst(FakePlatform& world) {
  Commands made{world};
  const auto item = world.folder(DefaultFolder::inbox)->items.front();
  return made.commands.JustEraseLinks(item) ? u"True" : u"False";
}

TEST_P(LinkCommandFailure, EachFailingCallOfAForwardIsReportedWithItsStep) {
  const auto runs = sweepFailures(GetParam(), arrangeRichText, forwardFirst);
  const auto ended = [](TextView call, int step) {
    return fill(
        u"{}: False; error 0 Quillfile.ReplaceLinksWithAttachments: Error occurred at line {}.  "
        u"Reason: {} failed",
        call, step, call);
  };
  expectTranscript(runs,
                   {
                       ended(u"MailHelper.bodyFormat", 1),
                       ended(u"Item.attachments", 2),
                       ended(u"Attachments.count", 2),
                       ended(u"Attachments.item", 2),
                       ended(u"Attachment.displayName", 2),
                       u"Attachment.fileName: True",
                       ended(u"Attachment.remove", 2),
                       u"Item.save: True",
                       ended(u"MailHelper.wrap", 4),
                       ended(u"SafeItem.body", 4),
                       ended(u"Application.version", 5),
                       u"Item.attachments: True; error 0 Quillfile.TestAttachmentLink: Error occurred.  "
                       u"Reason: Item.attachments failed",
                       u"Attachments.add: True; error 0 Quillfile.TestAttachmentLink: Error occurred.  "
                       u"Reason: Attachments.add failed",
                       ended(u"SafeItem.body", 8),
                       ended(u"SafeItem.setBody", 8),
                       ended(u"SafeItem.save", 8),
                       u"Item.attachments: True",
                       u"Attachments.count: True",
                       ended(u"SafeItem.save", 9),
                       u"Item.attachments: True",
                       u"Attachments.count: True",
                   });
}

TEST_P(LinkCommandFailure, EachFailingCallOfAReplyIsReportedWithItsStep) {
  const auto runs = sweepFailures(GetParam(), arrangeRichText, replyFirst);
  const auto ended = [](TextView call, int step) {
    return fill(u"{}: False; error 0 Quillfile.JustEraseLinks: Error occurred at line {}.  Reason: {} failed",
                call, step, call);
  };
  expectTranscript(runs, {
                             ended(u"MailHelper.bodyFormat", 1),
                             u"Item.body: True",
                             ended(u"MailHelper.wrap", 2),
                             u"Item.save: True",
                             ended(u"SafeItem.body", 3),
                             ended(u"Application.version", 4),
                             ended(u"SafeItem.body", 6),
                             ended(u"SafeItem.setBody", 6),
                             ended(u"SafeItem.save", 6),
                         });
}

TEST_P(LinkCommandFailure, WithoutAnApplicationACommandEndsInAReport) {
  made.application = nullptr;
  EXPECT_FALSE(commands.JustEraseLinks(world.addItem({.subject = u"R"})));
  expectTranscript(world.record.lines(u"error "),
                   {u"error 0 Quillfile.JustEraseLinks: Error occurred at line "
                    u"4.  Reason: Object variable not set"});
}

}  // namespace
}  // namespace quillfile
