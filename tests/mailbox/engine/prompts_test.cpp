#include "hosts/mailbox/engine/prompts.h"

#include <gtest/gtest.h>

#include <set>
#include <vector>

#include "tests/mailbox/support/scripted_terminal.h"

namespace quillfile::mailbox {
namespace {

struct Asking {
  ScriptedTerminal terminal;
  std::set<std::string> taken;
  std::optional<PresetAnswer> preset;
  Prompts prompts() {
    return Prompts{terminal, preset, [this](const std::string& path) { return taken.contains(path); }};
  }
};

DeletePrompt deletePrompt() {
  DeletePrompt prompt;
  prompt.path = u"/home/u/a.pdf";
  prompt.message = u"An attachment was saved to: /home/u/a.pdf\r\nWould you like to delete this file?";
  return prompt;
}

SaveAsRequest saveAs(TextView name = u"/home/u/a.pdf", TextView folder = u"") {
  SaveAsRequest request;
  request.fileName = name;
  request.initialFolder = folder;
  return request;
}

TEST(Prompts, EachKeyOfTheDeletePromptIsOneAnswerAndThePathIsShownWhole) {
  for (const auto& [key, response] : {std::pair{"n", 1}, {"o", 2}, {"y", 3}, {"a", 4}}) {
    Asking asking;
    asking.terminal.keys = key;
    EXPECT_EQ(asking.prompts().show(deletePrompt()), response);
    EXPECT_NE(asking.terminal.shown.find("/home/u/a.pdf\nWould you like to delete this file?"),
              std::string::npos);
  }
}

TEST(Prompts, TheEndOfInputAtTheDeletePromptIsNoAnswer) {
  Asking asking;
  EXPECT_EQ(asking.prompts().show(deletePrompt()), 0);
}

TEST(Prompts, WithNobodyThereTheCarefulAnswerIsGiven) {
  Asking asking;
  asking.terminal.here = false;
  EXPECT_EQ(asking.prompts().show(deletePrompt()), 1);
  EXPECT_EQ(asking.prompts().ask(u"Would you like to rename the file?"), Answer::no);
  EXPECT_EQ(asking.prompts().show(saveAs()), std::nullopt);
  EXPECT_EQ(asking.terminal.shown, "");
}

struct PresetCase {
  const char* word;
  std::int32_t deletes;
  Answer asks;
  std::optional<Text> saves;
};

TEST(Prompts, APresetAnswersEveryPrompt) {
  for (const PresetCase& row : {
           PresetCase{.word = "yes", .deletes = 3, .asks = Answer::yes, .saves = u"/home/u/a.pdf"},
           PresetCase{.word = "yes-to-all", .deletes = 4, .asks = Answer::yes, .saves = u"/home/u/a.pdf"},
           PresetCase{.word = "no", .deletes = 1, .asks = Answer::no, .saves = std::nullopt},
           PresetCase{.word = "no-to-all", .deletes = 2, .asks = Answer::no, .saves = std::nullopt},
           PresetCase{.word = "cancel", .deletes = 1, .asks = Answer::cancel, .saves = std::nullopt},
       }) {
    Asking asking;
    asking.preset = presetAnswer(row.word);
    ASSERT_TRUE(asking.preset) << row.word;
    EXPECT_EQ(asking.prompts().show(deletePrompt()), row.deletes) << row.word;
    EXPECT_EQ(asking.prompts().ask(u"?"), row.asks) << row.word;
    EXPECT_EQ(asking.prompts().show(saveAs()), row.saves) << row.word;
  }
  EXPECT_FALSE(presetAnswer("maybe"));
}

TEST(Prompts, APresetYesNeverOverwrites) {
  Asking asking;
  asking.preset = PresetAnswer::yes;
  asking.taken = {"/home/u/a.pdf", "/home/u/a-1.pdf"};
  EXPECT_EQ(asking.prompts().show(saveAs()), u"/home/u/a-2.pdf");
}

TEST(Prompts, TheSaveAsFormTakesTheProposalANameOrAPath) {
  for (const auto& [line, path] :
       std::vector<std::pair<std::string, std::optional<Text>>>{{"", u"/home/u/a.pdf"},
                                                                {"b.pdf", u"/home/u/b.pdf"},
                                                                {"/srv/c.pdf", u"/srv/c.pdf"},
                                                                {"-", std::nullopt}}) {
    Asking asking;
    asking.terminal.lines = {line};
    EXPECT_EQ(asking.prompts().show(saveAs()), path) << line;
  }
}

TEST(Prompts, ANameThatIsTypedWithoutAPointGetsTheExtension) {
  auto request = saveAs();
  for (const auto& [extension, line, path] :
       {std::tuple{u"pdf", "b", u"/home/u/b.pdf"}, std::tuple{u"pdf", "/srv/c.d/b", u"/srv/c.d/b.pdf"},
        std::tuple{u"pdf", "b.txt", u"/home/u/b.txt"}, std::tuple{u"", "b", u"/home/u/b"},
        std::tuple{u"0/readme", "b", u"/home/u/b"}}) {
    Asking asking;
    asking.terminal.lines = {line};
    request.defaultExtension = extension;
    EXPECT_EQ(asking.prompts().show(request), path) << line;
  }
}

TEST(Prompts, TheSaveAsFormAsksBeforeOverwriting) {
  Asking asking;
  asking.taken = {"/home/u/a.pdf"};
  asking.terminal.lines = {"", "d.pdf"};
  asking.terminal.keys = "n";
  EXPECT_EQ(asking.prompts().show(saveAs()), u"/home/u/d.pdf");
  asking.terminal.lines = {""};
  asking.terminal.keys = "y";
  EXPECT_EQ(asking.prompts().show(saveAs()), u"/home/u/a.pdf");
}

TEST(Prompts, ANameAndARememberedFolderMakeTheProposal) {
  Asking asking;
  asking.preset = PresetAnswer::yes;
  EXPECT_EQ(asking.prompts().show(saveAs(u"a.pdf", u"/srv/")), u"/srv/a.pdf");
}

}  // namespace
}  // namespace quillfile::mailbox
