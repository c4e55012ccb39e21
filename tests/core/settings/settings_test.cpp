#include "core/settings/settings.h"

#include <set>

#include "core/settings/number.h"
#include "tests/fakes/both_rules.h"

namespace quillfile {
namespace {

class SettingsTest : public UnderBothRules {
 protected:
  Settings settings{world.settings, world.services, world.paths};
};
INSTANTIATE_TEST_SUITE_P(Paths, SettingsTest, bothRules(), rulesName);

TEST(Numbers, BlanksAndASignAreAllowedAndNothingElseIs) {
  EXPECT_EQ(toNumber(u"0"), 0);
  EXPECT_EQ(toNumber(u"  +12 "), 12);
  EXPECT_EQ(toNumber(u"-7"), -7);
  EXPECT_EQ(toNumber(u"007"), 7);
  EXPECT_EQ(toNumber(u"2147483647"), 2147483647);
  EXPECT_EQ(toNumber(u"-2147483648"), -2147483648LL);
  for (const TextView none : {u"", u" ", u"-", u"1 2", u"- 1", u"+-1", u"1.0", u"1e3", u"0x1", u"True",
                              u"one", u"\u0661", u"2147483648", u"-2147483649", u"99999999999999999999999"})
    EXPECT_THROW(toNumber(none), Failure) << toUtf8(none);
}

// Users' settings rest on every one of these: "key kind 'default' first run".
TEST(SettingsTable, EveryKeyHasItsKindItsDefaultAndItsFirstRunValue) {
  std::vector<Text> rows;
  for (const auto& setting : settingsTable) {
    constexpr TextView kinds[] = {u"flag", u"number", u"text"};
    rows.push_back(fill(u"{}{} {} '{}' {}", setting.key, setting.numbered ? u"n" : u"",
                        kinds[static_cast<std::size_t>(setting.kind)],
                        setting.defaultUnder(PathRules::windows()), setting.firstRun.value_or(u"-")));
  }
  expectTranscript(rows, {u"SavePath text 'C:\\' -",
                          u"AutomaticMode flag '0' -",
                          u"PostProcess number '0' 1",
                          u"AutomaticRename flag '1' 1",
                          u"AutomaticRenameKeywords text '<attachment name>' -",
                          u"RetainPaperclip flag '1' 1",
                          u"OptionalRenameWanted flag '0' 0",
                          u"ExclusionList text '' -",
                          u"SendDeleteAttachments flag '0' 0",
                          u"SendRemoveAttachments flag '0' 0",
                          u"ReadWrite number '0' -",
                          u"AddURL flag '0' 1",
                          u"ErrorPrompt flag '0' 1",
                          u"ImitateOutlookFolders flag '0' 1",
                          u"RemoveAttachment flag '0' 1",
                          u"EmailFrom text 'Not Found' ",
                          u"EmailFromEnabled flag '0' 0",
                          u"AttachmentName text 'Not Found' ",
                          u"AttachmentNameEnabled flag '0' 0",
                          u"SubjectLine text 'Not Found' ",
                          u"SubjectLineEnabled flag '0' 0",
                          u"AttachmentSize number '0' -",
                          u"AttachmentSizeEnabled flag '0' -",
                          u"SaveAllAttachments flag '0' 1",
                          u"LinkLocation text 'Bottom' -",
                          u"AutomaticReattachWanted flag '1' -",
                          u"SaveAttachmentsWanted flag '1' -",
                          u"SaveEmailsWanted flag '0' -",
                          u"SaveEmailsAs1 number '0' -",
                          u"SaveEmailsAs2 number '5' -",
                          u"ExecuteWanted flag '0' -",
                          u"ExecuteOn number '1' -",
                          u"ExecuteCommandLine text '' -",
                          u"EnableButton flag '1' -",
                          u"HotkeyEnabled flag '0' -",
                          u"HotkeyMods number '0' -",
                          u"HotkeyValue number '114' -",
                          u"OldMods number '0' -",
                          u"OldValue number '114' -",
                          u"ButtonClicked flag '0' -",
                          u"SaveAsMRUPath text '' -",
                          u"FolderCount number '1' 1",
                          u"FolderNamen text '' -",
                          u"FolderEntryIdn text '1' -",
                          u"FolderStoreIdn text '' -"});
}

TEST(SettingsTable, EveryKeyStandsOnceWithAMeaningAndAReadableDefault) {
  std::set<Text> keys;
  for (const auto& setting : settingsTable) {
    EXPECT_TRUE(keys.insert(Text{setting.key}).second) << toUtf8(setting.key);
    EXPECT_FALSE(setting.meaning.empty()) << toUtf8(setting.key);
    if (setting.kind == SettingKind::text) continue;
    EXPECT_NO_THROW(toNumber(setting.byDefault)) << toUtf8(setting.key);
    EXPECT_NO_THROW(toNumber(setting.firstRun.value_or(u"0"))) << toUtf8(setting.key);
  }
  EXPECT_EQ(keys.size(), 45u);
}

TEST_P(SettingsTest, AnAbsentKeyReadsAsItsDefault) {
  EXPECT_TRUE(settings.flag(u"AutomaticRename"));
  EXPECT_FALSE(settings.flag(u"AddURL"));
  EXPECT_EQ(settings.number(u"HotkeyValue"), 114);
  EXPECT_EQ(settings.number(u"SaveEmailsAs2"), 5);
  EXPECT_EQ(settings.number(u"FolderCount"), 1);
  EXPECT_EQ(settings.text(u"EmailFrom"), u"Not Found");
  EXPECT_EQ(settings.text(u"LinkLocation"), u"Bottom");
  EXPECT_EQ(settings.text(u"FolderEntryId", 3), u"1");
  EXPECT_EQ(settings.stored(u"SaveAllAttachments"), std::nullopt);
}

TEST_P(SettingsTest, TheSavePathDefaultsToTheRootFolder) {
  EXPECT_EQ(settings.text(u"SavePath"), path(u"C:\\"));
}

TEST_P(SettingsTest, TheSavePathGoesThroughTheEnginesExpansion) {
  world.settings.set(u"SavePath", u"%saved%");
  world.services.expansions[u"%saved%"] = path(u"C:\\Saved\\");
  EXPECT_EQ(settings.text(u"SavePath"), u"%saved%");
  EXPECT_EQ(settings.expandedSavePath(), path(u"C:\\Saved\\"));
}

TEST_P(SettingsTest, AnyNumberButZeroIsOn) {
  world.settings.set(u"AddURL", u"-1");
  EXPECT_TRUE(settings.flag(u"AddURL"));
  world.settings.set(u"AddURL", u" 2");
  EXPECT_TRUE(settings.flag(u"AddURL"));
  world.settings.set(u"AddURL", u"00");
  EXPECT_FALSE(settings.flag(u"AddURL"));
}

TEST_P(SettingsTest, AValueThatIsNoNumberIsATypeMismatch) {
  world.settings.set(u"HotkeyMods", u"Ctrl");
  try {
    settings.number(u"HotkeyMods");
    FAIL() << "a Failure was due";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.number, 13);
    EXPECT_EQ(failure.description, u"Type mismatch");
  }
}

TEST_P(SettingsTest, ValuesAreReadAfreshEachTime) {
  world.settings.set(u"PostProcess", u"1");
  EXPECT_EQ(settings.number(u"PostProcess"), 1);
  world.settings.set(u"PostProcess", u"2");
  EXPECT_EQ(settings.number(u"PostProcess"), 2);
}

TEST_P(SettingsTest, ANumberedKeyIsTheStemAndTheNumberInDecimal) {
  world.settings.set(u"FolderName12", u"Projects");
  EXPECT_EQ(settings.text(u"FolderName", 12), u"Projects");
  settings.write(u"FolderEntryId", 3, u"id");
  expectTranscript(world.record.lines(), {u"setting Corvane/Quillfile/FolderEntryId3 = id"});
}

TEST_P(SettingsTest, TheEnginesOwnFlagLiesUnderTheApplicationsNameAndIsAWord) {
  EXPECT_FALSE(settings.temporarilyDisabled());
  settings.setTemporarilyDisabled(true);
  EXPECT_TRUE(settings.temporarilyDisabled());
  settings.setTemporarilyDisabled(false);
  EXPECT_FALSE(settings.temporarilyDisabled());
  expectTranscript(world.record.lines(), {u"setting Corvane/Corvane/CVTemporarilyDisabled = True",
                                          u"setting Corvane/Corvane/CVTemporarilyDisabled = False"});
  world.settings.setEngine(u"CVTemporarilyDisabled", u"perhaps");
  EXPECT_THROW(settings.temporarilyDisabled(), Failure);
}

}  // namespace
}  // namespace quillfile
