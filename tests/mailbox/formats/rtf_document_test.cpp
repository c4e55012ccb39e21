// RTF as text and as the page that it was made from, on pieces like those that mail programs write.
#include "hosts/mailbox/formats/rtf/rtf_document.h"

#include <gtest/gtest.h>

namespace quillfile::formats {
namespace {

struct TextCase {
  std::string name, rtf, text;
};

const TextCase texts[] = {
    {"Outlook's own",
     "{\\rtf1\\ansi\\ansicpg1252\\deff0\\deftab720{\\fonttbl{\\f0\\fswiss MS Sans Serif;}}\r\n"
     "{\\colortbl\\red0\\green0\\blue0;}\r\n\\pard\\plain\\f0\\fs20 One\\'20\\b two\\b0\\par\r\n}\r\n"
     "\0",
     "One two\r\n"},
    {"escapes and symbols", "{\\rtf1 \\{a\\\\b\\}\\~c\\_d\\tab e\\line f\\endash g\\lquote h\\rquote}",
     "{a\\b} c-d\te\r\nf\u2013g\u2018h\u2019"},
    {"what is no text",
     "{\\rtf1{\\stylesheet{\\s0 Normal;}}{\\info{\\author me}}{\\*\\generator x;}{\\pict 00ff}a}", "a"},
    {"the document's code page", "{\\rtf1\\ansi\\ansicpg1251 \\'cf\\'f0\\'e8\\'e2\\'e5\\'f2}",
     "\u041f\u0440\u0438\u0432\u0435\u0442"},
    {"a font's character set",
     "{\\rtf1\\ansi{\\fonttbl{\\f0\\fcharset0 A;}{\\f1\\fcharset204 B;}}\\f0\\'e9 \\f1\\'cf\\f0\\'e9}",
     "\u00e9 \u041f\u00e9"},
    {"two bytes a character, the second a letter or escaped",
     "{\\rtf1\\ansi\\ansicpg932 \\'93\\'fa\\'96{\\b\\'7b}\\'83\\'41\\'83A}", "\u65e5\ufffd{\u30a2\u30a2"},
    {"Unicode with a fallback", "{\\rtf1\\ansi \\u8364?1\\u-10179?\\u-8704?2}",
     "\u20ac1\U0001F600"
     "2"},
    {"a fallback of two", "{\\rtf1\\uc2 \\u8364\\'80\\'80x{\\uc0\\u8364}y}", "\u20acx\u20acy"},
    {"bytes that are counted", "{\\rtf1 a\\bin3 }}}b}", "ab"},
    {"a field", "{\\rtf1 {\\field{\\*\\fldinst{HYPERLINK \"http://x\"}}{\\fldrslt here}}}", "here"},
    {"an empty one", "{\\rtf1}", ""},
    {"none", "just text", "just text"},
    {"braces that do not fit", "}}a{{{b", "ab"},
    {"cut in a word", "{\\rtf1 a\\pa", "a"},
    {"cut in a byte", "{\\rtf1 a\\'e", "a"},
};

class RtfTexts : public testing::TestWithParam<TextCase> {};

TEST_P(RtfTexts, AreRead) { EXPECT_EQ(toUtf8(readRtf(fromUtf8(GetParam().rtf)).text), GetParam().text); }

INSTANTIATE_TEST_SUITE_P(All, RtfTexts, testing::ValuesIn(texts), [](const auto& one) {
  std::string name = one.param.name;
  for (char& letter : name)
    if (!isalnum(static_cast<unsigned char>(letter))) letter = '_';
  return name;
});

TEST(RtfDocument, GivesThePageThatItWasMadeFrom) {
  const auto read = readRtf(
      u"{\\rtf1\\ansi\\ansicpg1252\\fromhtml1 \\deff0{\\fonttbl\r\n{\\f0\\fswiss Arial;}}\r\n"
      u"\\uc1\\pard\\plain\\deftab360 \\f0\\fs24 \r\n{\\*\\htmltag19 <html>}\r\n"
      u"{\\*\\htmltag241 <style>}\r\n{\\*\\htmltag241 a \\{ color: red; \\}}{\\*\\htmltag249 </style>}"
      u"{\\*\\htmltag1 \\par }{\\*\\mhtmltag84 <a href=\"x\">}{\\*\\htmltag84 <a href=\"y\">}\\htmlrtf "
      u"{\\field"
      u"{\\*\\fldinst{HYPERLINK \"y\"}}{\\fldrslt\\cf1\\ul \\htmlrtf0 caf\\'e9\\tab\\u8364?\\htmlrtf "
      u"}\\htmlrtf0 "
      u"\\htmlrtf }\\htmlrtf0 {\\*\\htmltag92 </a>}{\\*\\htmltag84 &nbsp;}\\htmlrtf \\'a0\\htmlrtf0 "
      u"\\ldblquote x\\rdblquote{\\*\\htmltag72}\\htmlrtf\\par}\\htmlrtf0\r\n{\\*\\htmltag27 </html>}}");
  EXPECT_EQ(read.origin, RtfOrigin::html);
  EXPECT_EQ(
      toUtf8(read.html),
      "<html><style>a { color: red; }</style>\r\n<a href=\"y\">caf\u00e9\t\u20ac</a>&nbsp;&ldquo;x&rdquo;"
      "</html>");
  EXPECT_EQ(toUtf8(read.text), "caf\u00e9\t\u20ac\u00a0\u201cx\u201d\r\n");
}

TEST(RtfDocument, KnowsWhatWasPlainText) {
  const auto read =
      readRtf(u"{\\rtf1\\ansi\\fromtext\\deff0{\\fonttbl{\\f0\\fswiss Arial;}}\\pard one\\par two}");
  EXPECT_EQ(read.origin, RtfOrigin::plain_text);
  EXPECT_EQ(read.text, u"one\r\ntwo");
  EXPECT_EQ(read.html, u"");
}

TEST(RtfDocument, IsBoundedWhateverIsNested) {
  const Text deep(1'000'000, u'{');
  EXPECT_EQ(readRtf(deep + u"a" + Text(1'000'000, u'}') + u"b").text, u"ab");
  Text words;
  for (int i = 0; i < 200'000; ++i) words += u"\\uc999999999\\bin-5\\u99999999999999\\f-1\\ansicpg0\\'81";
  readRtf(words);
}

}  // namespace
}  // namespace quillfile::formats
