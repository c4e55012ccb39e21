#include "core/saving/naming.h"

#include <gtest/gtest.h>

namespace quillfile {
namespace {

constexpr auto windows = PathRules::windows();
constexpr auto posix = PathRules::posix();

TEST(Naming, ADriveColonSurvivesTheInvalidCharacters) {
  EXPECT_EQ(StripInvalidCharacters(windows, u"C:\\Mail:In\\a?b.pdf", u"-"), u"C:\\Mail-In\\a-b.pdf");
  EXPECT_EQ(StripInvalidCharacters(windows, u"::x", u"-"), u"-:x");
  EXPECT_EQ(StripInvalidCharacters(windows, u"#/:*?<>|\"", u"-"), u"---------");
  EXPECT_EQ(StripInvalidCharacters(windows, u"", u"-"), u"");
}

TEST(Naming, WhereThereAreNoDrivesEveryColonGoes) {
  EXPECT_EQ(StripInvalidCharacters(posix, u"C:/Mail:In/a?b.pdf", u"-"), u"C-/Mail-In/a-b.pdf");
  EXPECT_EQ(StripInvalidCharacters(posix, u"#\\:*?<>|\"", u"-"), u"---------");
  EXPECT_EQ(StripInvalidCharacters(posix, u"/home/ada/Mail/", u"-"), u"/home/ada/Mail/");
}

TEST(Naming, AFileNameLosesWhatWouldBreakALink) {
  for (const auto& rules : {windows, posix}) {
    EXPECT_EQ(cleanedName(rules, u"a#b?c&d.pdf"), u"a-b-c-d.pdf");
    EXPECT_EQ(cleanedName(rules, u" a.pdf "), u" a.pdf ");
  }
}

TEST(Naming, WhatNoPathCanHoldIsInNoNameEither) {
  for (const auto& rules : {windows, posix})
    EXPECT_EQ(componentOf(rules, u"a:<b>c|d:e*f\"g.txt"), u"a--b-c-d-e-f-g.txt");
}

TEST(Naming, NoNameLeavesTheFolder) {
  for (const auto& rules : {windows, posix}) {
    EXPECT_EQ(cleanedName(rules, u"../../etc/passwd"), u"..-..-etc-passwd");
    EXPECT_EQ(cleanedName(rules, u"..\\..\\x"), u"..-..-x");
  }
}

TEST(Naming, ALongNameIsProposedAsFortyUnitsAndItsExtension) {
  EXPECT_EQ(shortenedForPrompt(Text(196, u'n') + u".pdf"), Text(40, u'n') + u".pdf");
  EXPECT_EQ(shortenedForPrompt(Text(129, u'n')), Text(40, u'n'));
  EXPECT_EQ(shortenedForPrompt(Text(124, u'n') + u".pdf"), Text(124, u'n') + u".pdf");
}

TEST(Naming, ACutNameDoesNotEndInHalfAPair) {
  const Text name = Text(39, u'n') + u"\U0001F600" + Text(100, u'n') + u".pdf";
  EXPECT_EQ(shortenedForPrompt(name), Text(39, u'n') + u".pdf");
}

TEST(Naming, AnExtensionBeginsAtTheLastPoint) {
  EXPECT_EQ(partsOf(u"a.b.pdf").base, u"a.b");
  EXPECT_EQ(partsOf(u"a.b.pdf").extension, u".pdf");
  EXPECT_EQ(partsOf(u"README").extension, u"");
  EXPECT_EQ(partsOf(u".profile").base, u"");
}

}  // namespace
}  // namespace quillfile
