#include "hosts/mailbox/mime/clean_name.h"

#include <gtest/gtest.h>

using namespace quillfile;
using namespace quillfile::mime;

namespace {

struct Row {
  const char* what;
  Text name;
  Text clean;
};

const Row rows[] = {
    {.what = "a plain name stays", .name = u"report 2026.pdf", .clean = u"report 2026.pdf"},
    {.what = "nothing", .name = u"", .clean = u""},
    {.what = "directories upwards", .name = u"../../etc/passwd", .clean = u"passwd"},
    {.what = "the other separator", .name = u"..\\..\\x", .clean = u"x"},
    {.what = "a drive with a folder", .name = u"C:\\Users\\a.doc", .clean = u"a.doc"},
    {.what = "a separator at the end", .name = u"folder/", .clean = u"folder"},
    {.what = "only separators", .name = u"//\\", .clean = u""},
    {.what = "this folder", .name = u".", .clean = u""},
    {.what = "the folder above", .name = u"..", .clean = u""},
    {.what = "dots and blanks", .name = u" . . ", .clean = u""},
    {.what = "a hidden file stays hidden", .name = u".bashrc", .clean = u".bashrc"},
    {.what = "a dot at the end", .name = u"a.pdf.", .clean = u"a.pdf"},
    {.what = "blanks around", .name = u"  a.pdf . ", .clean = u"a.pdf"},
    {.what = "a NUL", .name = Text{u"a\0b.txt", 7}, .clean = u"ab.txt"},
    {.what = "line ends and tabs", .name = u"a\r\n\tb.txt", .clean = u"a   b.txt"},
    {.what = "C1 controls", .name = u"a\u0085b", .clean = u"ab"},
    {.what = "a right-to-left override", .name = u"gpj\u202Eexe.txt", .clean = u"gpjexe.txt"},
    {.what = "isolates and marks", .name = u"\u2066a\u2069\u200F.b", .clean = u"a.b"},
    {.what = "a byte order mark", .name = u"\uFEFFa", .clean = u"a"},
    {.what = "dots around an override", .name = u".\u202E.", .clean = u""},
    {.what = "half a pair", .name = Text{u'a', 0xD83D, u'b', 0xDE00}, .clean = u"ab"},
    {.what = "a whole pair", .name = u"\U0001F600.png", .clean = u"\U0001F600.png"},
    {.what = "invisible tags beyond the first plane", .name = u"a\U000E0041b", .clean = u"ab"},
    {.what = "a device", .name = u"CON", .clean = u"_CON"},
    {.what = "a device with an extension", .name = u"com1.tar.gz", .clean = u"_com1.tar.gz"},
    {.what = "a device with a superscript digit", .name = u"LPT\u00B2", .clean = u"_LPT\u00B2"},
    {.what = "a device and a blank", .name = u"nul .txt", .clean = u"_nul .txt"},
    {.what = "no device", .name = u"CONSOLE.txt", .clean = u"CONSOLE.txt"},
    {.what = "no device either", .name = u"COM10", .clean = u"COM10"},
};

}  // namespace

TEST(CleanName, GivesOneCleanComponent) {
  for (const auto& row : rows) EXPECT_EQ(cleanName(row.name), row.clean) << row.what;
}

TEST(CleanName, CutsAnOverlongNameBeforeItsExtension) {
  const auto clean = cleanName(Text(4000, u'x') + u".pdf");
  EXPECT_EQ(clean, Text(246, u'x') + u".pdf");
}

TEST(CleanName, CountsUtf8BytesAndCutsNoCharacterInTwo) {
  Text grins;
  for (int i = 0; i < 100; ++i) grins += u"\U0001F600";
  const auto clean = cleanName(grins + u".png");
  EXPECT_EQ(toUtf8(clean).size(), 61u * 4 + 4);  // 248: another one would make 252
  EXPECT_EQ(toUtf8(cleanName(Text(300, u'\u20AC'))).size(), 249u);
}

TEST(CleanName, TakesASentenceAfterADotForNoExtension) {
  const auto clean = cleanName(u"Dr. " + Text(400, u'x'));
  EXPECT_EQ(clean, u"Dr. " + Text(246, u'x'));
}

TEST(CleanName, ChangesNoNameASecondTime) {
  for (const auto& row : rows) EXPECT_EQ(cleanName(row.clean), row.clean) << row.what;
}
