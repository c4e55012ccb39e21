#include "hosts/windows/services/registry_settings.h"

#include <gtest/gtest.h>

#include "hosts/windows/com/wide.h"

namespace quillfile::windows {
namespace {

constexpr TextView application = u"QuillfileTests";

class RegistrySettingsTest : public testing::Test {
 protected:
  ~RegistrySettingsTest() override {
    RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\VB and VBA Program Settings\\QuillfileTests");
  }
  RegistrySettings settings_;
};

TEST_F(RegistrySettingsTest, AnAbsentKeyIsNone) {
  EXPECT_EQ(settings_.read(application, u"Quillfile", u"SavePath"), std::nullopt);
}

TEST_F(RegistrySettingsTest, AWrittenTextIsReadBackWholeWhateverItsLength) {
  for (const Text& value : {Text{}, Text{u"C:\\"}, Text{u"Grüße \U0001F4CE"}, Text(5000, u'x')}) {
    settings_.write(application, u"Quillfile", u"SavePath", value);
    EXPECT_EQ(settings_.read(application, u"Quillfile", u"SavePath"), value);
  }
}

TEST_F(RegistrySettingsTest, AValueLiesUnderTheDocumentedKeyAsAString) {
  settings_.write(application, u"Quillfile", u"EnableButton", u"1");

  wchar_t value[8];
  DWORD bytes = sizeof value, type = 0;
  const auto status =
      RegGetValueW(HKEY_CURRENT_USER, L"Software\\VB and VBA Program Settings\\QuillfileTests\\Quillfile",
                   L"EnableButton", RRF_RT_ANY, &type, value, &bytes);
  ASSERT_EQ(status, ERROR_SUCCESS);
  EXPECT_EQ(type, static_cast<DWORD>(REG_SZ));
  EXPECT_EQ(view(value), u"1");
}

TEST_F(RegistrySettingsTest, AChangeMadeByAnotherProgramIsSeenAtOnce) {
  settings_.write(application, u"Quillfile", u"EnableButton", u"1");
  RegSetKeyValueW(HKEY_CURRENT_USER, L"Software\\VB and VBA Program Settings\\QuillfileTests\\Quillfile",
                  L"EnableButton", REG_SZ, L"0", 4);
  EXPECT_EQ(settings_.read(application, u"Quillfile", u"EnableButton"), u"0");
}

TEST_F(RegistrySettingsTest, SectionsAndApplicationsAreApart) {
  settings_.write(application, u"Quillfile", u"Key", u"a");
  settings_.write(application, application, u"Key", u"b");
  EXPECT_EQ(settings_.read(application, u"Quillfile", u"Key"), u"a");
  EXPECT_EQ(settings_.read(application, application, u"Key"), u"b");
  EXPECT_EQ(settings_.read(u"QuillfileTests2", u"Quillfile", u"Key"), std::nullopt);
}

}  // namespace
}  // namespace quillfile::windows
