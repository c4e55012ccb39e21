#include "core/saving/naming.h"

#include <gtest/gtest.h>

namespace quillfile {
namespace {

constexpr auto windows = PathRules::windows();
constexpr auto posix = PathRules::posix();
const auto noDisplayName = [] { return Text{}; };

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

TEST(Naming, AnEmptyFileNameBecomesTheDisplayNameAsATextFile) {
  const auto displayName = [] { return Text{u"Note #1"}; };
  EXPECT_EQ(attachmentName(windows, u"", displayName), u"Note -1.txt");
  EXPECT_EQ(attachmentName(posix, u"  ", displayName), u"Note -1.txt");
  EXPECT_EQ(attachmentName(posix, u"", noDisplayName), u".txt");
}

TEST(Naming, AFileNameLosesWhatWouldBreakALink) {
  EXPECT_EQ(attachmentName(windows, u"a#b?c&d.pdf", noDisplayName), u"a-b-c-d.pdf");
  EXPECT_EQ(attachmentName(posix, u" a.pdf ", noDisplayName), u" a.pdf ");
}

TEST(Naming, NoNameLeavesTheFolder) {
  for (const auto& rules : {windows, posix}) {
    EXPECT_EQ(attachmentName(rules, u"../../etc/passwd", noDisplayName), u"..-..-etc-passwd");
    EXPECT_EQ(attachmentName(rules, u"..\\..\\x", noDisplayName), u"..-..-x");
    EXPECT_EQ(attachmentName(rules, u"", [] { return Text{u"../x"}; }), u"..-x.txt");
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
