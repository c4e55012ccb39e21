// Notes in bodies: written, found and erased again, in every encoding, format and place; nothing else is
// touched.
#include "hosts/mailbox/formats/rtf/rtf_document.h"
#include "hosts/mailbox/mime/encode.h"
#include "hosts/mailbox/outlook/link_notes.h"
#include "hosts/mailbox/outlook/plain_text.h"
#include "hosts/mailbox/outlook/rtf_letters.h"
#include "tests/mailbox/outlook/module_links.h"

namespace quillfile::mailbox {
namespace {

struct Form {
  std::string name;
  std::string type;      // "text/plain"
  std::string charset;   // empty: none said
  std::string encoding;  // of the transfer
  std::string body;      // decoded, in the charset
};

std::string encodedBody(const Form& form) {
  if (form.encoding == "base64") return mime::toBase64(form.body, "\n") + "\n";
  if (form.encoding == "quoted-printable") return mime::toQuotedPrintable(form.body, "\n");
  return form.body;
}

std::string messageOf(const Form& form) {
  return "From: a@b.c\nSubject: x\nMIME-Version: 1.0\nContent-Type: multipart/mixed; "
         "boundary=b\n\n--b\nContent-Type: " +
         form.type + (form.charset.empty() ? "" : "; charset=" + form.charset) +
         "\nContent-Transfer-Encoding: " + form.encoding + "\n\n" + encodedBody(form) +
         "\n--b\nContent-Type: application/pdf; name=a.pdf\nContent-Transfer-Encoding: base64\n\nYQ==\n"
         "--b\nContent-Type: application/pdf; name=b.pdf\nContent-Transfer-Encoding: base64\n\nYg==\n"
         "--b\nContent-Type: application/pdf; name=\"" +
         form.name + ".pdf\"\nContent-Transfer-Encoding: base64\n\nYw==\n--b--\n";
}

const std::string longLine(200, 'x');

const Form forms[] = {
    {"plain", "text/plain", "us-ascii", "7bit", "Hello\n\nyou\n"},
    {"empty", "text/plain", "utf-8", "7bit", ""},
    {"no charset", "text/plain", "", "8bit", "caf\xC3\xA9\n"},
    {"no last line end", "text/plain", "utf-8", "8bit", "caf\xC3\xA9"},
    {"latin", "text/plain", "iso-8859-1", "8bit", "caf\xE9\n"},
    {"latin caf\xC3\xA9", "text/plain", "iso-8859-1", "quoted-printable",
     "caf\xE9 = cr\xE8me \n" + longLine + "\n"},
    {"\xE2\x82\xAC in ascii", "text/plain", "us-ascii", "7bit", "Hello\n"},
    {"quoted", "text/plain", "utf-8", "quoted-printable", "blank at its end \n" + longLine + " \nend "},
    {"base64", "text/plain", "utf-8", "base64", "Hello\r\n" + longLine + "\r\ncaf\xC3\xA9\r\n"},
    {"base64 with bare line ends", "text/plain", "utf-8", "base64", "Hello\nyou\n"},
    {"flowed", "text/plain; format=flowed", "utf-8", "7bit", "a line that \nflows on\n-- \nme\n"},
    {"utf-16", "text/plain", "utf-16le", "base64", std::string("H\0i\0\r\0\n\0", 8)},
    {"japanese", "text/plain", "iso-2022-jp", "7bit", "\x1B$B$3$s\x1B(B\n"},
    {"html", "text/html", "utf-8", "7bit", "<html><Body><p>Hello</p></Body></html>\n"},
    {"html quoted", "text/html", "utf-8", "quoted-printable",
     "<html><Body class=\"a\"><p>caf\xC3\xA9 " + longLine + "</p></Body></html>"},
    {"html base64", "text/html", "windows-1252", "base64", "<p>caf\xE9</p>"},
    {"html empty", "text/html", "utf-8", "7bit", ""},
    {"one & two; 100% 'sure'", "text/html", "utf-8", "7bit", "<p>x</p>"},
};

// Modelled on what mail programs write.
const std::string richText =
    "{\\rtf1\\ansi\\ansicpg1252\\deff0\\deftab720{\\fonttbl{\\f0\\fswiss MS Sans "
    "Serif;}}\r\n{\\colortbl\\red0"
    "\\green0\\blue0;}\r\n\\deflang1033\\pard\\plain\\f0\\fs20 Hello \\b you\\b0 caf\\'e9\\par\r\n\\objattph "
    "\\'20\\par"
    "\r\n}";

const Form richForms[] = {
    {"rich", "text/rtf", "", "base64", richText + "\r\n" + std::string(1, '\0')},
    {"rich as it is", "text/rtf", "us-ascii", "7bit", richText + "\n"},
    {"rich quoted", "application/rtf", "", "quoted-printable", richText},
    {"rich caf\xC3\xA9 {1} \xE2\x82\xAC", "text/rtf", "", "base64", richText},
    {"rich with raw bytes", "text/rtf", "windows-1252", "8bit", "{\\rtf1\\ansi caf\xE9 \\par two}\n"},
    {"rich, raw and \xC3\xA9", "text/rtf", "", "base64", "{\\rtf1\\ansi caf\xE9 {\\b two}}"},
    {"rich in a group", "text/rtf", "", "base64",
     "{\\rtf1\\ansi{\\uc2 **\\par \r\n}}\r\n" + std::string(1, '\0')},
    {"rich from a page", "text/rtf", "", "base64",
     "{\\rtf1\\ansi\\fromhtml1 {\\*\\htmltag64 <p>}hello{\\*\\htmltag27 </html>}}"},
    {"rich and empty", "text/rtf", "", "base64", "{\\rtf1}"},
};

class OutlookRtf : public OutlookLinks, public testing::WithParamInterface<int> {};

TEST_P(OutlookRtf, NotesAreFoundAndErasedToTheVeryText) {
  const auto& form = richForms[GetParam()];
  SCOPED_TRACE(form.name);
  const auto message = messageOf(form);
  const auto item = deliver(message);
  ASSERT_EQ(item->bodyFormat(), u"RTF");
  const auto rtf = item->body(BodyKind::rtf), plain = item->body(BodyKind::plain);
  for (int i = 3; i >= 1; --i) ASSERT_EQ(strip(item, i), Removal::removed);
  finish();

  ASSERT_EQ(told.failed, std::vector<std::string>{});
  const auto links = linksInPlainText(item->body(BodyKind::plain));
  ASSERT_EQ(links.size(), 3u) << toUtf8(item->body(BodyKind::rtf));
  for (const auto& link : links) EXPECT_TRUE(std::filesystem::exists(toUtf8(link).substr(7))) << toUtf8(link);
  EXPECT_TRUE(startsWith(item->body(BodyKind::plain), plain)) << toUtf8(item->body(BodyKind::plain));

  EXPECT_TRUE(restore(item));
  finish();
  ASSERT_EQ(told.failed, std::vector<std::string>{});
  ASSERT_EQ(item->attachments()->count(), 3) << bytesOf(item);
  EXPECT_EQ(toUtf8(item->body(BodyKind::rtf)), toUtf8(rtf));
  EXPECT_EQ(toUtf8(item->body(BodyKind::plain)), toUtf8(plain));
}

INSTANTIATE_TEST_SUITE_P(AllForms, OutlookRtf, testing::Range(0, static_cast<int>(std::size(richForms))));

class OutlookBodies : public OutlookLinks, public testing::WithParamInterface<std::tuple<int, bool>> {};

TEST_P(OutlookBodies, NotesAreFoundAndErasedToTheVeryText) {
  const auto& form = forms[std::get<0>(GetParam())];
  const bool atEnd = std::get<1>(GetParam());
  SCOPED_TRACE(form.name);
  const auto message = messageOf(form);
  const auto item = deliver(message);
  const auto kind = item->bodyFormat() == u"HTML" ? BodyKind::html : BodyKind::plain;
  const auto before = item->body(kind);
  for (int i = 3; i >= 1; --i) ASSERT_EQ(strip(item, i, atEnd), Removal::removed);
  const auto written = item->body(kind);
  finish();

  ASSERT_EQ(told.failed, std::vector<std::string>{});
  EXPECT_EQ(item->body(kind), written) << bytesOf(item);
  const auto links = kind == BodyKind::html ? linksInHtml(written) : linksInPlainText(written);
  EXPECT_EQ(links.size(), 3u);
  // What stood before the body's own header still does.
  const auto preamble = message.substr(message.find("\n\n--b\n"), 6);
  EXPECT_NE(bytesOf(item).find(preamble), std::string::npos);

  EXPECT_TRUE(restore(item));
  finish();
  ASSERT_EQ(told.failed, std::vector<std::string>{});
  ASSERT_EQ(item->attachments()->count(), 3) << bytesOf(item);
  EXPECT_EQ(item->attachments()->item(1)->fileName(), u"a.pdf");
  EXPECT_EQ(item->attachments()->item(2)->fileName(), u"b.pdf");
  EXPECT_EQ(item->body(kind), before) << bytesOf(item);
}

INSTANTIATE_TEST_SUITE_P(AllForms, OutlookBodies,
                         testing::Combine(testing::Range(0, static_cast<int>(std::size(forms))),
                                          testing::Bool()));

class OutlookRichText : public OutlookLinks {};

TEST_F(OutlookRichText, NotesWithLettersOfAnyKindAreFoundAndErasedToTheVeryText) {
  const std::string spelled = "caf\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80";
  const std::string body = "{\\rtf1\\ansi \\u233? \\\\u233? caf\\'e9 \\u0233? \\u8364 ?\\par}";
  const auto message = messageOf({spelled, "text/rtf", "us-ascii", "7bit", body});
  const auto item = deliver(message);
  ASSERT_EQ(item->bodyFormat(), u"RTF");
  const auto before = item->body(BodyKind::rtf);
  EXPECT_EQ(before, u"{\\rtf1\\ansi \u00E9 \\\\u233? caf\\'e9 \\u0233? \\u8364 ?\\par}");
  for (int i = 3; i >= 1; --i) ASSERT_EQ(strip(item, i), Removal::removed);
  finish();
  EXPECT_NE(bytesOf(item).find("caf\\u233? \\u8364? \\u-10179?\\u-8704?.pdf"), std::string::npos)
      << bytesOf(item);

  EXPECT_TRUE(restore(item));
  finish();
  ASSERT_EQ(told.failed, std::vector<std::string>{});
  ASSERT_EQ(item->attachments()->count(), 3) << bytesOf(item);
  EXPECT_EQ(item->attachments()->item(3)->fileName(), fromUtf8(spelled + ".pdf"));
  EXPECT_EQ(item->body(BodyKind::rtf), before);
  EXPECT_NE(bytesOf(item).find("\n\n" + body + "\n--b"), std::string::npos) << bytesOf(item);
}

// Its last brace ends no document: what stands before it is in a destination that readers pass over.
TEST_F(OutlookRichText, ANoteThatWouldStandWhereNothingIsShownIsRefusedAndTheMessageStays) {
  const auto message =
      messageOf({"a", "text/rtf", "us-ascii", "7bit", "{\\rtf1\\ansi lo}{\\*\\x {\\b hidden}"});
  const auto item = deliver(message);
  ASSERT_EQ(item->bodyFormat(), u"RTF");
  const auto before = bytesOf(item);
  ASSERT_EQ(strip(item, 3), Removal::removed);
  finish();
  ASSERT_EQ(told.failed.size(), 1u);
  EXPECT_NE(told.failed[0].find("shows nothing in that place"), std::string::npos) << told.failed[0];
  EXPECT_EQ(bytesOf(item), before);
}

// A document that is to show `text`.
Text rtfChanged(TextView rtf, TextView text) {
  TextChange change{rtfUnescaped(rtf)};
  change.set(text);
  return applied(rtf, rtfHunks(rtf, change.hunks()));
}

TEST(RtfLetters, AreWrittenAsControlWordsWhereTheTextChangesAndNowhereElse) {
  const TextView rtf = u"{a \\u233? \\\\u233? raw \u00E9 \\\u00E9 \\u-3?}";
  const Text shown = rtfUnescaped(rtf);
  EXPECT_EQ(shown, u"{a \u00E9 \\\\u233? raw \u00E9 \\\u00E9 \uFFFD}");
  EXPECT_EQ(rtfChanged(rtf, shown), rtf);
  EXPECT_EQ(rtfChanged(rtf, shown.substr(0, shown.size() - 1) + u"\u20AC}"),
            Text{rtf.substr(0, rtf.size() - 1)} + u"\\u8364?}");
  EXPECT_EQ(rtfChanged(rtf, u"\u00E9" + shown), u"\\u233?" + Text{rtf});
  EXPECT_EQ(rtfChanged(rtf, u"x"), u"x");
  EXPECT_EQ(rtfChanged(rtf, u""), u"");
  EXPECT_EQ(rtfChanged(u"", u"\u00E9"), u"\\u233?");
}

struct FallbackRow {
  const char* name;
  TextView rtf, changed;  // with an e acute put in front of the last brace
};

// Seen by a reader of rich text there is nothing but the letter, whatever the document says that follows one.
TEST(RtfLetters, AreFollowedByAsManySubstitutesAsTheDocumentAsksForThere) {
  const FallbackRow rows[] = {
      {"nothing is said", u"{\\rtf1 a}", u"{\\rtf1 a\\u233?}"},
      {"none", u"{\\rtf1\\uc0 a}", u"{\\rtf1\\uc0 a\\u233 }"},
      {"none, and one stands there", u"{\\rtf1\\uc0 \\u232 b}", u"{\\rtf1\\uc0 \\u232 b\\u233 }"},
      {"two", u"{\\rtf1\\uc2 a}", u"{\\rtf1\\uc2 a\\u233??}"},
      {"none in a group that has ended", u"{\\rtf1{\\uc0 a}}", u"{\\rtf1{\\uc0 a}\\u233?}"},
      {"taken over by a group", u"{\\uc0{\\uc3}{a}}", u"{\\uc0{\\uc3}{a}\\u233 }"},
      {"braces that are escaped", u"{\\uc0 \\}\\{\\}}", u"{\\uc0 \\}\\{\\}\\u233 }"},
      {"a word that only begins so", u"{\\uc0\\ucx1 a}", u"{\\uc0\\ucx1 a\\u233 }"},
      {"said after the place", u"{a{\\uc0}}", u"{a{\\uc0}\\u233?}"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const Text shown = rtfUnescaped(row.rtf);
    const Text wanted = shown.substr(0, shown.size() - 1) + u"\u00E9}";
    EXPECT_EQ(toUtf8(rtfChanged(row.rtf, wanted)), toUtf8(row.changed));
    EXPECT_EQ(rtfUnescaped(row.changed), wanted);
    EXPECT_EQ(formats::readRtf(row.changed).text, formats::readRtf(row.rtf).text + u"\u00E9");
    EXPECT_EQ(rtfChanged(row.changed, shown), row.rtf);
  }
}

class OutlookAlternatives : public OutlookLinks {};

std::string withCrLf(std::string_view text) {
  std::string result;
  for (const char c : text) result.append(c == '\n' ? "\r\n" : std::string(1, c));
  return result;
}

const std::string alternative =
    "From: a@b.c\nSubject: x\nMIME-Version: 1.0\nContent-Type: multipart/mixed; boundary=m\n\n"
    "--m\nContent-Type: multipart/alternative; boundary=a\n\n"
    "--a\nContent-Type: text/plain\n\nHello\n\n"
    "--a\nContent-Type: text/html; charset=utf-8\n\n<html><body>Hello</body></html>\n\n--a--\n\n"
    "--m\nContent-Type: application/pdf; name=a.pdf\nContent-Transfer-Encoding: base64\n\nYQ==\n--m--\n";

TEST_F(OutlookAlternatives, ThePlainTextGetsTheNoteToo) {
  const auto item = deliver(alternative);
  ASSERT_EQ(item->bodyFormat(), u"HTML");
  strip(item, 1);
  finish();
  const auto after = tidied(bytesOf(item));
  EXPECT_EQ(after.substr(after.find("\n\n--m") + 2),
            "--m\nContent-Type: multipart/alternative; boundary=a\n\n"
            "--a\nContent-Type: text/plain\n\nHello\n\n\nAttachment saved to <file://SAVED/a.pdf>\n"
            "--a\nContent-Type: text/html; charset=utf-8\n\n<html><body>Hello<p>Attachment saved to "
            "<a href=\"file://SAVED/a.pdf\">file://SAVED/a.pdf</a></p></Body></html>\n\n--a--\n\n--m--\n");
}

struct EmptyBody {
  std::string name, header;  // the header as it stands before the boundary line
  bool crlf;
};
const EmptyBody emptyBodies[] = {
    {"the blank line is the boundary line's line end too", "Content-Type: text/plain\n\n", false},
    {"the same with CR LF", "Content-Type: text/plain\n\n", true},
    {"no blank line", "Content-Type: text/plain\n", false},
    {"quoted-printable", "Content-Transfer-Encoding: quoted-printable\n\n", false},
    {"base64", "Content-Transfer-Encoding: base64\n\n", false},
};

TEST_F(OutlookAlternatives, ANoteInAnEmptyBodyStaysApartFromItsHeaderAndTheBoundaryLine) {
  for (const auto& empty : emptyBodies) {
    for (const bool atEnd : {true, false}) {
      SCOPED_TRACE(empty.name + (atEnd ? ", at the end" : ", at the top"));
      const std::string message =
          "From: a@b.c\nSubject: x\nMIME-Version: 1.0\nContent-Type: multipart/mixed; boundary=m\n\n"
          "--m\nContent-Type: multipart/alternative; boundary=a\n\n--a\n" +
          empty.header +
          "--a\nContent-Type: text/html\n\n<Body>x</Body>\n--a--\n"
          "--m\nContent-Type: application/pdf; name=a.pdf\nContent-Transfer-Encoding: "
          "base64\n\nYQ==\n--m--\n";
      const auto item = deliver(empty.crlf ? withCrLf(message) : message);
      ASSERT_EQ(strip(item, 1, atEnd), Removal::removed);
      finish();
      const auto link = fromUtf8("file://" + (root / "saved/a.pdf").string());
      EXPECT_EQ(linksInPlainText(item->body(BodyKind::plain)), std::vector{link}) << bytesOf(item);
      EXPECT_EQ(linksInHtml(item->body(BodyKind::html)), std::vector{link}) << bytesOf(item);
      EXPECT_EQ(item->body(BodyKind::plain).find(u"--a"), Text::npos) << bytesOf(item);

      EXPECT_TRUE(restore(item));
      finish();
      EXPECT_EQ(item->attachments()->count(), 1);
      EXPECT_EQ(item->body(BodyKind::plain), u"");
      EXPECT_EQ(item->body(BodyKind::html), u"<Body>x</Body>");
      EXPECT_EQ(told.failed, std::vector<std::string>{});
    }
  }
}

TEST_F(OutlookAlternatives, ThePlainTextLosesTheNoteWithTheHtml) {
  const auto item = deliver(alternative);
  strip(item, 1, false);
  finish();
  EXPECT_TRUE(restore(item));
  finish();
  auto expected = alternative;
  expected.replace(expected.find("<body>"), 6, "<Body>");  // as the module writes the tag
  EXPECT_EQ(bytesOf(item), expected);
}

TEST_F(OutlookAlternatives, ANoteInTheMiddleIsErasedWithTheLineEndsThatItBrought) {
  EXPECT_EQ(withoutNotes(u"a\r\n\r\nAttachment saved to <file:///x>\r\n\r\nb", {u"file:///x"}),
            u"a\r\n\r\nb");
  EXPECT_EQ(withoutNotes(u"Attachment saved to <file:///x>\r\n\r\nb", {u"file:///x"}), u"b");
  EXPECT_EQ(withoutNotes(u"a\r\n\r\nAttachment saved to <file:///x>", {u"file:///y"}),
            u"a\r\n\r\nAttachment saved to <file:///x>");
}

TEST(OutlookLinkNotes, ALinkKeepsItsBlanksOnItsWayFromAPageToItsText) {
  const Text page = u"<p>Attachment saved to <a href=\"file:///a  b\tc\">file:///a  b\tc</a></p>";
  EXPECT_EQ(linksInPlainText(htmlToText(withPlainNotes(page))), linksInHtml(page));
}

}  // namespace
}  // namespace quillfile::mailbox
