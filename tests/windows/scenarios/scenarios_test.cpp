// Every scenario on both sides; and again with each of the client's, the engine's and the library's calls
// failing.
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/fakes/transcript.h"
#include "tests/windows/scenarios/scenarios.h"

namespace quillfile::windows {
namespace {

void expectSame(const Outcome& component, const Outcome& core) {
  expectTranscript(component.lines, core.lines);
  for (std::size_t i = 0; i < core.settings.size(); ++i) {
    EXPECT_EQ(component.settings[i].second, core.settings[i].second) << toUtf8(core.settings[i].first);
  }
}

class EveryScenario : public testing::TestWithParam<Scenario> {};

TEST_P(EveryScenario, IsTheSameOnTheComponentAsOnTheCore) {
  const long before = liveObjects;
  const auto core = SideBySide::onCore(GetParam());
  const auto component = SideBySide::onComponent(GetParam());
  expectSame(component, core);
  EXPECT_FALSE(core.lines.empty());
  EXPECT_EQ(liveObjects, before) << "objects that the module still holds";
}

std::string nameOf(const testing::TestParamInfo<Scenario>& info) { return info.param.name; }

INSTANTIATE_TEST_SUITE_P(Saving, EveryScenario, testing::ValuesIn(saveScenarios()), nameOf);
INSTANTIATE_TEST_SUITE_P(Items, EveryScenario, testing::ValuesIn(itemScenarios()), nameOf);

// Where the mail-helper library is not registered, the item itself serves, and the rest stays the same.
class WithoutTheLibrary : public testing::TestWithParam<Scenario> {};

std::vector<Text> withoutItsMention(const std::vector<Text>& lines) {
  std::vector<Text> result;
  for (const auto& line : lines) {
    if (line != u"mail helper: clean up") result.push_back(replaceAll(line, u" by the wrapper", u""));
  }
  return result;
}

TEST_P(WithoutTheLibrary, TheClientItselfServes) {
  const auto core = SideBySide::onCore(GetParam());
  const auto component = SideBySide::onComponent(GetParam(), {}, false);
  expectTranscript(withoutItsMention(component.lines), withoutItsMention(core.lines));
}

std::vector<Scenario> librarysScenarios() {
  std::vector<Scenario> chosen;
  for (const auto& scenario : saveScenarios()) {
    for (const std::string name :
         {"text", "html", "rtf", "rtf_that_is_none", "sender_filter", "exchange_sender_filter",
          "mail_saved_as_0", "mail_saved_as_1", "mail_saved_as_2"}) {
      if (scenario.name == name) chosen.push_back(scenario);
    }
  }
  return chosen;
}

INSTANTIATE_TEST_SUITE_P(Saving, WithoutTheLibrary, testing::ValuesIn(librarysScenarios()), nameOf);

TEST(WithoutTheLibrarysFormats, SavingAMailEndsInTheErrorTrapAndTheAttachmentsAreSaved) {
  for (const auto& scenario : saveScenarios()) {
    if (scenario.name != "mail_saved_too") continue;
    const auto component = SideBySide::onComponent(scenario, {}, false);
    const auto saves = std::count_if(component.lines.begin(), component.lines.end(), [](const Text& line) {
      return line.find(u"of type 1024") != Text::npos;
    });
    EXPECT_EQ(saves, 0);
    EXPECT_EQ(std::count(component.lines.begin(), component.lines.end(), u"Invoices/a.pdf: remove"), 1);
  }
}

// The calls of the ports that reach the component through COM.
constexpr TextView comCalls[] = {u"Application.activeExplorer",
                                 u"Application.nameSpace",
                                 u"AddressEntry.type",
                                 u"Attachment.displayName",
                                 u"Attachment.fileName",
                                 u"Attachment.remove",
                                 u"Attachment.saveAsFile",
                                 u"Attachment.size",
                                 u"Attachment.type",
                                 u"Attachment.typeName",
                                 u"Attachments.add",
                                 u"Attachments.count",
                                 u"Attachments.item",
                                 u"EngineUtilities.cleanFileName",
                                 u"EngineUtilities.createFolderPath",
                                 u"EngineUtilities.matchText",
                                 u"Explorer.currentFolder",
                                 u"Explorer.listen",
                                 u"Explorer.selection",
                                 u"EngineServices.languageStrings",
                                 u"EngineServices.prepareForm",
                                 u"EngineUtilities.deleteFile",
                                 u"Folder.entryId",
                                 u"Folder.item",
                                 u"Folder.itemCount",
                                 u"Folder.name",
                                 u"Inspector.currentItem",
                                 u"Item.display",
                                 u"Item.entryId",
                                 u"Item.listen",
                                 u"Item.respond",
                                 u"Application.version",
                                 u"Folder.storeId",
                                 u"Item.attachments",
                                 u"Item.body",
                                 u"Item.receivedTime",
                                 u"Item.save",
                                 u"Item.setUnRead",
                                 u"Item.subject",
                                 u"Item.typeName",
                                 u"Item.unRead",
                                 u"MailHelper.bodyFormat",
                                 u"MailHelper.cleanUp",
                                 u"MailHelper.smtpAddress",
                                 u"MailHelper.wrap",
                                 u"ModuleHost.addButton",
                                 u"ModuleHost.application",
                                 u"ModuleHost.folderPath",
                                 u"ModuleHost.registerHotkey",
                                 u"ModuleHost.watchFolder",
                                 u"ModuleHost.watchMonitoredFolders",
                                 u"NameSpace.defaultFolder",
                                 u"SafeItem.attachments",
                                 u"SafeItem.body",
                                 u"SafeItem.save",
                                 u"SafeItem.saveAs",
                                 u"SafeItem.senderEmailAddress",
                                 u"SafeItem.senderName",
                                 u"SafeItem.setBody",
                                 u"Selection.count",
                                 u"Selection.item"};

class EveryFailure : public testing::TestWithParam<TextView> {};

TEST_P(EveryFailure, IsReportedByTheComponentAsByTheCore) {
  const long before = liveObjects;
  for (const auto& scenario : saveScenarios()) {
    for (const std::string wanted :
         {"text", "html", "exchange_sender_filter", "mail_saved_too", "outlooks_folders"}) {
      if (scenario.name != wanted) continue;
      SCOPED_TRACE(scenario.name);
      expectSame(SideBySide::onComponent(scenario, GetParam()), SideBySide::onCore(scenario, GetParam()));
    }
  }
  for (const auto& scenario : itemScenarios()) {
    for (const std::string wanted : {"html_answered_from_a_slot", "rtf_answered_from_the_explorer",
                                     "text_answered_from_the_explorer", "deleted_yes_to_all"}) {
      if (scenario.name != wanted) continue;
      SCOPED_TRACE(scenario.name);
      expectSame(SideBySide::onComponent(scenario, GetParam()), SideBySide::onCore(scenario, GetParam()));
    }
  }
  EXPECT_EQ(liveObjects, before) << "objects that the module still holds";
}

INSTANTIATE_TEST_SUITE_P(Calls, EveryFailure, testing::ValuesIn(comCalls),
                         [](const auto& call) { return toUtf8(replaceAll(call.param, u".", u"_")); });

}  // namespace
}  // namespace quillfile::windows
