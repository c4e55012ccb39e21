// Every scenario on the registered component: the transcript of the core's own tests, line for line, the same
// files on the disk, the same settings; and again with each of the client's, the engine's and the library's
// calls failing.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "tests/fakes/transcript.h"
#include "tests/windows/scenarios/component_stage.h"

namespace quillfile::windows {
namespace {

void expectSame(const BothOutcomes& both) {
  expectTranscript(both.component.lines, both.core.lines);
  expectTranscript(both.component.files, both.core.files);
  expectTranscript(both.component.items, both.core.items);
  for (std::size_t i = 0; i < both.core.settings.size(); ++i) {
    EXPECT_EQ(both.component.settings[i].second, both.core.settings[i].second)
        << toUtf8(both.core.settings[i].first);
  }
}

std::string nameOf(const testing::TestParamInfo<Scenario>& info) { return info.param.name; }

// The calls that the component makes through COM, by the ports behind the objects. Each fails in the sweeps.
// (EngineServices.expandPath has a test of its own.)
constexpr TextView comCalls[] = {u"AddressEntry.type",
                                 u"Application.activeExplorer",
                                 u"Application.nameSpace",
                                 u"Application.version",
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
                                 u"EngineServices.languageStrings",
                                 u"EngineServices.prepareForm",
                                 u"EngineServices.prepareModuleCollection",
                                 u"EngineServices.settingsApplicationName",
                                 u"EngineUtilities.cleanFileName",
                                 u"EngineUtilities.createFolderPath",
                                 u"EngineUtilities.deleteFile",
                                 u"EngineUtilities.discardSavedFile",
                                 u"EngineUtilities.fileExists",
                                 u"EngineUtilities.matchText",
                                 u"Explorer.currentFolder",
                                 u"Explorer.listen",
                                 u"Explorer.selection",
                                 u"Folder.entryId",
                                 u"Folder.item",
                                 u"Folder.itemCount",
                                 u"Folder.name",
                                 u"Folder.storeId",
                                 u"Inspector.currentItem",
                                 u"Item.attachments",
                                 u"Item.body",
                                 u"Item.display",
                                 u"Item.entryId",
                                 u"Item.listen",
                                 u"Item.receivedTime",
                                 u"Item.remove",
                                 u"Item.respond",
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
                                 u"ModuleHost.findFolder",
                                 u"ModuleHost.folderPath",
                                 u"ModuleHost.registerHotkey",
                                 u"ModuleHost.removeButton",
                                 u"ModuleHost.unregisterHotkey",
                                 u"ModuleHost.watchFolder",
                                 u"ModuleHost.watchMonitoredFolders",
                                 u"NameSpace.defaultFolder",
                                 u"SafeItem.body",
                                 u"SafeItem.save",
                                 u"SafeItem.saveAs",
                                 u"SafeItem.sender",
                                 u"SafeItem.senderEmailAddress",
                                 u"SafeItem.senderName",
                                 u"SafeItem.setBody",
                                 u"SafeItem.subject",
                                 u"Selection.count",
                                 u"Selection.item"};

class EveryScenario : public testing::TestWithParam<Scenario> {};

TEST_P(EveryScenario, IsTheSameOnTheComponentAsOnTheCore) {
  const long before = liveObjects;
  const auto both = playOnBoth(GetParam());
  expectSame(both);
  EXPECT_FALSE(both.core.lines.empty());
  for (const auto& [call, times] : both.component.calls) {
    const bool known =
        call == u"EngineServices.expandPath" ||
        std::find(std::begin(comCalls), std::end(comCalls), TextView{call}) != std::end(comCalls);
    EXPECT_TRUE(known) << toUtf8(call) << " never fails in the sweeps";
  }
  EXPECT_EQ(liveObjects, before) << "objects that the module still holds";
}

INSTANTIATE_TEST_SUITE_P(Component, EveryScenario, testing::ValuesIn(allScenarios()), nameOf);

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
  const auto both = playOnBoth(GetParam(), {}, false);
  expectTranscript(withoutItsMention(both.component.lines), withoutItsMention(both.core.lines));
  expectTranscript(both.component.files, both.core.files);
}

std::vector<Scenario> named(std::initializer_list<const char*> names) {
  std::vector<Scenario> chosen;
  for (const std::string name : names) chosen.push_back(scenarioNamed(name));
  return chosen;
}

INSTANTIATE_TEST_SUITE_P(Component, WithoutTheLibrary,
                         testing::ValuesIn(named({"text", "html", "rtf", "rtf_that_is_none", "sender_filter",
                                                  "exchange_sender_filter", "mail_saved_as_0",
                                                  "mail_saved_as_1", "mail_saved_as_2"})),
                         nameOf);

TEST(WithoutTheLibrarysFormats, SavingAMailEndsInTheErrorTrapAndTheAttachmentsAreSaved) {
  const auto component = playOnBoth(scenarioNamed("mail_saved_too"), {}, false).component;
  const auto saves = std::count_if(component.lines.begin(), component.lines.end(),
                                   [](const Text& line) { return line.find(u"of type 1024") != Text::npos; });
  EXPECT_EQ(saves, 0);
  EXPECT_EQ(std::count(component.lines.begin(), component.lines.end(), u"Invoices/a.pdf: remove"), 1);
}

std::string callName(const testing::TestParamInfo<TextView>& info) {
  return toUtf8(replaceAll(info.param, u".", u"_"));
}

// How often a scenario makes a call where none fails, on the side that makes it more often. A failure of a
// later one would change nothing: such a play is the plain one again, and is left out of the sweeps.
std::int32_t timesMade(const Text& call, const Scenario& scenario) {
  static std::map<std::string, std::map<Text, std::int32_t>> known;
  const auto [found, isNew] = known.try_emplace(scenario.name);
  auto& times = found->second;
  if (isNew) {
    const auto both = playOnBoth(scenario);
    times = both.core.calls;
    for (const auto& [name, made] : both.component.calls) times[name] = std::max(times[name], made);
  }
  return times[call];
}

bool failed(const BothOutcomes& both, const Text& call) {
  const Text line = fill(u"{} fails", call);
  const auto has = [&](const std::vector<Text>& lines) {
    return std::find(lines.begin(), lines.end(), line) != lines.end();
  };
  return has(both.component.lines) && has(both.core.lines);
}

class EveryFailure : public testing::TestWithParam<TextView> {};

TEST_P(EveryFailure, IsReportedByTheComponentAsByTheCore) {
  const long before = liveObjects;
  const Text call{GetParam()};
  bool made = false;
  for (const auto& scenario :
       named({"text", "html", "exchange_sender_filter", "mail_saved_too", "folders_of_the_client",
              "refreshed_button_and_hotkey", "hotkey", "html_answered_from_a_slot",
              "rtf_answered_from_the_explorer", "text_answered_from_the_explorer", "deleted_yes_to_all",
              "subject_filter", "sender_filter_by_address", "attachment_name_filter",
              "attachment_size_filter", "renamed_by_every_keyword", "item_removed",
              "new_item_into_the_clients_folders", "sent_item_with_deletion"})) {
    if (timesMade(call, scenario) == 0) continue;
    made = true;
    SCOPED_TRACE(scenario.name);
    const auto both = playOnBoth(scenario, {.call = call});
    expectSame(both);
    EXPECT_TRUE(failed(both, call));
  }
  EXPECT_TRUE(made) << "a call that no scenario makes";
  EXPECT_EQ(liveObjects, before) << "objects that the module still holds";
}

INSTANTIATE_TEST_SUITE_P(Calls, EveryFailure, testing::ValuesIn(comCalls), callName);

// Without its path the module saves into the folder that is current, and there the disk is not as the fakes'
// is.
TEST(ASavePathThatCannotBeExpanded, IsReportedByTheComponentAsByTheCore) {
  const auto reported = [](const Outcome& outcome) {
    std::vector<Text> lines;
    for (const auto& line : outcome.lines) {
      if (startsWith(line, u"error ") || line.find(u" gives ") != Text::npos) lines.push_back(line);
    }
    return lines;
  };
  const auto both = playOnBoth(scenarioNamed("text"), {.call = u"EngineServices.expandPath"});
  for (const wchar_t* file : {L"a.pdf", L"b.xls"}) DeleteFileW(file);
  EXPECT_TRUE(failed(both, u"EngineServices.expandPath"));
  expectTranscript(reported(both.component), reported(both.core));
}

// The sweep: the first call of that name fails, then the second alone, and so on until none is left.
class EachFailureInTurn : public testing::TestWithParam<TextView> {};

TEST_P(EachFailureInTurn, IsReportedByTheComponentAsByTheCore) {
  const long before = liveObjects;
  const Text call{GetParam()};
  for (const auto& scenario : named({"new_html_item", "new_item_into_the_clients_folders",
                                     "sent_item_with_removal", "html_answered_from_a_slot",
                                     "rtf_answered_from_the_explorer", "refreshed_button_and_hotkey"})) {
    for (std::int32_t nth = 1; nth <= timesMade(call, scenario); ++nth) {
      SCOPED_TRACE(scenario.name + ", call " + std::to_string(nth));
      const auto both = playOnBoth(scenario, {.call = call, .nth = nth});
      expectSame(both);
      EXPECT_TRUE(failed(both, call));
    }
  }
  EXPECT_EQ(liveObjects, before) << "objects that the module still holds";
}

INSTANTIATE_TEST_SUITE_P(Calls, EachFailureInTurn, testing::ValuesIn(comCalls), callName);

}  // namespace
}  // namespace quillfile::windows
