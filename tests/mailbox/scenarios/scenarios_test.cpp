// The scenarios on the mailbox host: the trace of the core's own tests, line for line, the same last message,
// the same files, items and settings.
#include <algorithm>
#include <set>

#include "hosts/mailbox/engine/trace_file.h"
#include "tests/fakes/transcript.h"
#include "tests/mailbox/scenarios/mailbox_stage.h"
#include "tests/scenarios/fake_stage.h"

namespace quillfile::mailbox {
namespace {

// `text` with `beginning` … `end` taken out wherever they stand.
void cutOut(Text& text, TextView beginning, TextView end) {
  for (std::size_t from; (from = text.find(beginning)) != Text::npos;) {
    const auto to = text.find(end, from + beginning.size());
    if (to == Text::npos) break;
    text.erase(from, to + end.size() - from);
  }
}

// `text` with "#" for the number that follows `words`, wherever they stand.
void hideNumber(Text& text, TextView words) {
  for (auto at = text.find(words); at != Text::npos; at = text.find(words, at + 1)) {
    const auto from = at + words.size();
    auto to = from;
    while (to < text.size() && text[to] >= u'0' && text[to] <= u'9') ++to;
    text.replace(from, to - from, u"#");
  }
}

// What both hosts tell: the trace, the reports, the user's doings. This host's own is left out: where it is
// installed; what its ids are; that a response quotes its original, which moves every position in it; that
// the plain text of a mail follows its HTML or rich text at once.
std::vector<Text> inCommon(const std::vector<Text>& lines) {
  std::vector<Text> result;
  for (Text line : lines) {
    const bool told =
        startsWith(line, u"trace ") || startsWith(line, u"error ") || startsWith(line, u"user ");
    if (!told || startsWith(line, u"trace UpdateEmailBody: Body (without removal) after save")) continue;
    line = fromUtf8(onOneLine(line));
    cutOut(line, u"\\r\\n\\r\\n-----Original Message-----", u"\\r\\nSubject: Invoices\\r\\n\\r\\n");
    cutOut(line, u"<div><br></div><hr><div><b>From:", u"</div><div><br></div>");
    for (const TextView words :
         {u"Pos: ", u"at pos: ", u"at pos2: ", u"format & TEXT): ", u"format & HTML): ", u"format & RTF): "})
      hideNumber(line, words);
    if (startsWith(line, u"trace ProcessSentItems: Processing: "))
      line = u"trace ProcessSentItems: Processing";
    if (startsWith(line, u"trace AttachPaperclip: Retained paperclip with "))
      line = u"trace AttachPaperclip: Retained paperclip";
    result.push_back(line);
  }
  return result;
}

// The last message box of each side, which need not stand where the other's does.
Text lastMessage(const std::vector<Text>& lines) {
  Text last;
  for (const auto& line : lines)
    if (startsWith(line, u"message box ")) last = line;
  return last;
}

// A mail that was saved as a file is a real one here.
std::vector<Text> inCommonFiles(std::vector<Text> files) {
  for (auto& file : files)
    if (startsWith(file, u"Invoices.")) file = file.substr(0, file.find(u" | "));
  return files;
}

class EveryScenario : public testing::TestWithParam<Scenario> {};

TEST_P(EveryScenario, IsTheSameInAMailboxAsOnTheCore) {
  if (GetParam().name == "same_name_three_times")
    GTEST_SKIP() << "this host keeps attachments in the mail whose saved file another has replaced";
  const TemporaryFolder root;
  Outcome mailbox;
  try {
    MailboxStage stage{root, GetParam()};
    play(GetParam(), stage);
    mailbox = stage.outcome();
  } catch (const Unplayable& reason) {
    GTEST_SKIP() << "this host does not know " << reason.what;
  }
  const auto core = playOnCore(GetParam(), PathRules::posix(), fromUtf8(root / "saved/"));
  expectTranscript(inCommon(mailbox.lines), inCommon(core.lines));
  EXPECT_EQ(lastMessage(mailbox.lines), lastMessage(core.lines));
  expectTranscript(inCommonFiles(mailbox.files), inCommonFiles(core.files));
  expectTranscript(mailbox.items, core.items);
}

INSTANTIATE_TEST_SUITE_P(Mailbox, EveryScenario, testing::ValuesIn(allScenarios()),
                         [](const auto& given) { return given.param.name; });

}  // namespace
}  // namespace quillfile::mailbox
