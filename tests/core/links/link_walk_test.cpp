// Walks over bodies of every make: all notes are found, and no body holds a walk for ever.
#include "core/links/link_walk.h"

#include <array>
#include <random>

#include "core/links/link_commands.h"
#include "tests/core/links/link_texts.h"
#include "tests/fakes/fake_platform.h"
#include "tests/fakes/transcript.h"

namespace quillfile {
namespace {

class LinkWalkTest : public testing::TestWithParam<PathRules> {
 protected:
  FakePlatform world{GetParam()};
  LinkTexts text{GetParam()};
  LinkPorts ports{world.services, world.log, world.letters, world.files, world.paths};
  QuillfileExtended links{ports};
  Ref<Application> application = world.application;
  LinkCommands commands{ports, world.mailHelper, application};

  void SetUp() override { world.log.isWanted = false; }
};

INSTANTIATE_TEST_SUITE_P(Rules, LinkWalkTest, bothRules(), rulesName);

TEST_P(LinkWalkTest, NotesThatStandSideBySideAreAllAttachedAndGoneInEveryFormatAndOrder) {
  for (const TextView format : {u"TEXT", u"RTF", u"HTML"})
    for (const int count : {1, 2, 3, 20})
      for (const bool descending : {false, true})
        for (const TextView between : {u"", u" ", u"\r\n", u"\r\n\r\n", u"some words"})
          for (const TextView before : {u"", u"A longer text that comes before all of the notes"}) {
            Text plain{before}, rtf = u"{\\rtf1 " + Text{before}, html{before};
            std::vector<Text> names;
            for (int i = 0; i < count; ++i) {
              const Text name = fill(u"{}.pdf", descending ? count - i : i + 1);
              world.files.add(text.path(name));
              names.push_back(name);
              plain += text.plainNote(name) + Text{between};
              rtf += u"\\par\r\n" + text.rtfNote(name) + u"\\par";
              html += text.htmlNote(name) + Text{between};
            }
            auto mail = world.addItem({.subject = u"F",
                                       .format = Text{format},
                                       .body = plain,
                                       .htmlBody = html,
                                       .rtfBody = rtf + u"}"});
            ASSERT_TRUE(commands.ReplaceLinksWithAttachments(mail));
            std::vector<Text> attached;
            for (const auto& attachment : mail->attached) attached.push_back(attachment->fileName);
            ASSERT_EQ(joined(attached), joined(names)) << toUtf8(format);
            const auto& data = mail->data;
            const Text& left = format == u"TEXT"  ? data.body
                               : format == u"RTF" ? data.rtfBody
                                                  : data.htmlBody;
            ASSERT_EQ(find(left, u"Attachment saved to"), 0) << toUtf8(left);
          }
}

// A body glued from what notes are made of, whole and broken.
Text randomBody(std::mt19937& random, const LinkTexts& text) {
  const std::vector<Text> pieces = {text.plainNote(u"a"),
                                    text.rtfNote(u"b"),
                                    text.htmlNote(u"c"),
                                    u"Attachment",
                                    u"Attachment saved to",
                                    u"Attachment\r\nsaved to",
                                    u"ATTACHMENT SAVED TO ",
                                    u"file:///",
                                    u"<",
                                    u">",
                                    u"\"",
                                    u"<p>",
                                    u"</a>",
                                    u"</p>",
                                    u"\\par",
                                    u"}",
                                    u"\r\n",
                                    u"words",
                                    u"<< File: Paperclip retained by Quillfile >>"};
  Text body;
  for (auto n = random() % 24; n > 0; --n) body += pieces[random() % pieces.size()];
  return body;
}

std::size_t notesIn(TextView body) { return body.size() / TextView{u"Attachment saved to"}.size() + 1; }

TEST_P(LinkWalkTest, EachTurnMakesTheBodyShorterOrMovesForwardInIt) {
  std::mt19937 random{20090304};
  for (int run = 0; run < 4000; ++run) {
    const TextView format = std::array<TextView, 3>{u"TEXT", u"RTF", u"HTML"}[random() % 3];
    const Text start = randomBody(random, text);
    LinkWalk walk{links, format, true, BodyKind::plain, std::make_unique<LooseCopy>(start)};
    std::size_t turns = 0, length = start.size();
    Position from = 0;
    while (walk.next()) {
      ASSERT_LE(++turns, notesIn(start)) << toUtf8(start);
      ASSERT_TRUE(turns == 1 || walk.body().size() < length || walk.position() == 0 || walk.position() > from)
          << toUtf8(start);
      length = walk.body().size();
      from = walk.position();
      const Text note = fill(u"Attachment saved to <{}>", GetParam().linkTo(walk.fileName()));
      if (format == u"TEXT") {
        for (auto at = find(walk.body(), note); at > 0; at = find(walk.body(), note, at))
          walk.replace(at, at + static_cast<Position>(note.size()), u"");
      } else {
        walk.eraseNote();
      }
    }
  }
}

TEST_P(LinkWalkTest, NoBodyHoldsACommandForEverOrGetsAFileTwiceForOneNote) {
  std::mt19937 random{19850611};
  world.files.add(text.path(u"a"));
  for (int run = 0; run < 400; ++run) {
    for (const TextView format : {u"TEXT", u"RTF", u"HTML", u"other"})
      for (const TextView version : {u"16.0", u"10.0", u"9.0"}) {
        world.application->versionText = version;
        const Text body = randomBody(random, text), other = randomBody(random, text);
        const ItemData data{
            .subject = u"F", .format = Text{format}, .body = body, .htmlBody = body, .rtfBody = other};
        auto forward = world.addItem(data), reply = world.addItem(data);
        ASSERT_TRUE(commands.ReplaceLinksWithAttachments(forward));
        ASSERT_LE(forward->attached.size(), notesIn(body) + notesIn(other));
        ASSERT_TRUE(commands.JustEraseLinks(reply));
        world.record.clear();
      }
  }
}

// Whoever erases by the book: one note after the other, each searched for in the text itself.
Text erasedByTheBook(LetterCase& letters, Text body, TextView note, TextView behind, Position exact) {
  const Text wanted = Text{note}.append(behind);
  const auto tail = static_cast<Position>(note.size()) - exact;  // where it begins, counted from 0
  for (auto at = findIgnoringCase(letters, body, wanted); at > 0;
       at = findIgnoringCase(letters, body, wanted, at)) {
    if (startsWith(from(body, at + tail), from(wanted, tail + 1)))
      body.erase(static_cast<std::size_t>(at - 1), wanted.size());
    else
      ++at;
  }
  return body;
}

TEST_P(LinkWalkTest, WhatIsErasedIsWhatASearchOfTheWholeBodyFindsHoweverNotesAreEntangled) {
  const std::vector<Text> notes = {text.plainNote(u"a"), text.plainNote(u"k\u00E9"),
                                   u"Attachment saved to <Attachment saved to <x>", u"Attachment saved to <>",
                                   u"Attachment saved to <file://>"};
  const std::vector<Text> pieces = {notes[0],
                                    notes[1],
                                    notes[2],
                                    notes[3],
                                    u"ATTACHMENT saved to <",
                                    replaceAll(notes[1], u"k\u00E9", u"K\u00C9"),
                                    u"Attachment saved",
                                    u" to <",
                                    u"x>",
                                    u">",
                                    u"\r\n",
                                    u"words"};
  std::mt19937 random{20261121};
  std::size_t erased = 0;
  for (int run = 0; run < 8'000; ++run) {
    Text expected;
    for (auto n = random() % 16; n > 0; --n) expected += pieces[random() % pieces.size()];
    LinkWalk walk{links, u"TEXT", true, BodyKind::plain, std::make_unique<LooseCopy>(expected)};
    for (int turn = 0; turn < 6; ++turn) {
      const Text note = notes[random() % notes.size()];
      const Text behind = random() % 2 == 0 ? u"\r\n" : u"";
      const auto exact =
          static_cast<Position>(std::array{note.size(), note.size() / 4, std::size_t{0}}[random() % 3]);
      const auto before = expected.size();
      expected = erasedByTheBook(world.letters, expected, note, behind, exact);
      erased += expected.size() < before;
      walk.eraseAll(note, behind, exact);
      ASSERT_EQ(toUtf8(walk.body()), toUtf8(expected));
      if (random() % 4 == 0) {  // a change of another kind
        expected.insert(0, u" to <x>");
        walk.replace(1, 1, u" to <x>");
      }
    }
  }
  EXPECT_GT(erased, 5'000u);
}

TEST_P(LinkWalkTest, AHugeBodyOfKeywordsOrBracketsCostsAFewPasses) {
  constexpr std::size_t units = 300'000;
  Text keywords, brackets = u"Attachment saved to <file:///x";
  for (std::size_t i = 0; i < units / 10; ++i) keywords += u"Attachment";
  brackets += Text(units, u'>');
  for (const auto& body : {keywords, brackets}) {
    LinkWalk walk{links, u"TEXT", true, BodyKind::plain, std::make_unique<LooseCopy>(body)};
    while (walk.next()) continue;
    for (const TextView format : {u"RTF", u"HTML"}) EXPECT_EQ(links.EraseString(body, format), u"");
  }
}

}  // namespace
}  // namespace quillfile
