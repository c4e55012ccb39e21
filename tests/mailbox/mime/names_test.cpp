// The names of attachments in every form that senders give them.
#include <gtest/gtest.h>

#include "hosts/mailbox/mime/content_type.h"
#include "hosts/mailbox/mime/encoded_word.h"
#include "hosts/mailbox/mime/header_value.h"
#include "hosts/mailbox/mime/name_doubt.h"

using namespace quillfile;
using namespace quillfile::mime;

namespace {

struct Row {
  const char* what;
  std::string header;
  Text name;
};

const Row rows[] = {
    {.what = "no header", .header = "", .name = u""},
    {.what = "a token", .header = "Content-Disposition: attachment; filename=a.pdf\n", .name = u"a.pdf"},
    {.what = "a quoted string",
     .header = "Content-Disposition: attachment; filename=\"a \\\"b\\\".pdf\"\n",
     .name = u"a \"b\".pdf"},
    {.what = "blanks without quotes",
     .header = "Content-Disposition: attachment; filename=a b.pdf\n",
     .name = u"a b.pdf"},
    {.what = "a semicolon in quotes",
     .header = "Content-Disposition: attachment; filename=\"a;b.pdf\"; size=1\n",
     .name = u"a;b.pdf"},
    {.what = "a missing quote",
     .header = "Content-Disposition: attachment; filename=\"a.pdf\n",
     .name = u"a.pdf"},
    {.what = "a comment",
     .header = "Content-Disposition: attachment (why; not); filename=a.pdf (x)\n",
     .name = u"a.pdf"},
    {.what = "brackets in a name without quotes",
     .header = "Content-Disposition: attachment; filename=a (1).pdf; size=1\n",
     .name = u"a (1).pdf"},
    {.what = "a filename that leaves nothing",
     .header = "Content-Type: image/png; name=a.png\nContent-Disposition: inline; filename=\"..\"\n",
     .name = u"a.png"},
    {.what = "nothing but a filename that leaves nothing",
     .header = "Content-Disposition: inline; filename=\"..\"\n",
     .name = u".."},
    {.what = "only a name", .header = "Content-Type: image/png; name=\"a.png\"\n", .name = u"a.png"},
    {.what = "filename wins",
     .header = "Content-Type: image/png; name=a.png\nContent-Disposition: inline; filename=b.png\n",
     .name = u"b.png"},
    {.what = "an empty filename does not",
     .header = "Content-Type: image/png; name=a.png\nContent-Disposition: inline; filename=\"\"\n",
     .name = u"a.png"},
    {.what = "RFC 2231",
     .header = "Content-Disposition: attachment; filename*=UTF-8'en'%e2%82%ac%20rates.txt\n",
     .name = u"\u20AC rates.txt"},
    {.what = "RFC 2231 beside a plain one",
     .header = "Content-Disposition: attachment; filename=EUR.txt; filename*=iso-8859-15''%A4.txt\n",
     .name = u"\u20AC.txt"},
    {.what = "continuations, out of order",
     .header =
         "Content-Disposition: attachment;\n filename*1=\"b c\"; filename*0=\"a \";\n filename*2*=%2E.txt\n",
     .name = u"a b c..txt"},
    {.what = "a character cut by a continuation",
     .header = "Content-Disposition: attachment; filename*0*=utf-8''%e2%82; filename*1*=%ac.txt\n",
     .name = u"\u20AC.txt"},
    {.what = "a gap in the continuations",
     .header = "Content-Disposition: attachment; filename*0=a; filename*2=c\n",
     .name = u"a"},
    {.what = "no charset and language",
     .header = "Content-Disposition: attachment; filename*=a%20b.txt\n",
     .name = u"a b.txt"},
    {.what = "a broken percent",
     .header = "Content-Disposition: attachment; filename*=utf-8''100%.txt\n",
     .name = u"100%.txt"},
    {.what = "an encoded word, wrong and common",
     .header = "Content-Type: image/png; name=\"=?utf-8?B?w6QucG5n?=\"\n",
     .name = u"\u00E4.png"},
    {.what = "an encoded word without quotes",
     .header = "Content-Type: image/png; name==?iso-8859-1?Q?=E4.png?=\n",
     .name = u"\u00E4.png"},
    {.what = "encoded words in continuations",
     .header = "Content-Disposition: attachment; filename*0=\"=?utf-8?B?w6Qu\"; filename*1=\"cG5n?=\"\n",
     .name = u"\u00E4.png"},
    {.what = "raw UTF-8",
     .header = "Content-Disposition: attachment; filename=\"\xC3\xA4.png\"\n",
     .name = u"\u00E4.png"},
    {.what = "raw windows-1252",
     .header = "Content-Disposition: attachment; filename=\"\xE4 \x80.png\"\n",
     .name = u"\u00E4 \u20AC.png"},
    {.what = "a folded name",
     .header = "Content-Disposition: attachment; filename=\"a\r\n b.pdf\"\r\n",
     .name = u"a b.pdf"},
    {.what = "any case", .header = "CONTENT-DISPOSITION: Attachment; FileName=a.pdf\n", .name = u"a.pdf"},
};

const Row words[] = {
    {.what = "plain", .header = "Hello", .name = u"Hello"},
    {.what = "neighbours lose the blank between",
     .header = "=?utf-8?Q?Hello_?= =?utf-8?B?d29ybGQ=?=",
     .name = u"Hello world"},
    {.what = "neighbours in two charsets",
     .header = "=?utf-8?Q?=C3=A4?= =?iso-8859-1?Q?=E4?=",
     .name = u"\u00E4\u00E4"},
    {.what = "a character cut in two", .header = "=?utf-8?Q?=E2=82?= =?utf-8?Q?=AC?=", .name = u"\u20AC"},
    {.what = "text around", .header = "a =?utf-8?Q?b?= c", .name = u"a b c"},
    {.what = "glued to text", .header = "a=?utf-8?Q?b?=c", .name = u"abc"},
    {.what = "glued to each other", .header = "=?utf-8?Q?a?==?utf-8?Q?b?=", .name = u"ab"},
    {.what = "a blank inside", .header = "=?utf-8?Q?a b?=", .name = u"a b"},
    {.what = "missing padding", .header = "=?utf-8?B?d29ybGQ?=", .name = u"world"},
    {.what = "a language", .header = "=?utf-8*en?Q?a?=", .name = u"a"},
    {.what = "an unknown encoding", .header = "=?utf-8?X?a?=", .name = u"=?utf-8?X?a?="},
    {.what = "no end", .header = "=?utf-8?Q?a", .name = u"=?utf-8?Q?a"},
    {.what = "an unknown charset keeps the bytes", .header = "=?x-nobody?Q?=E4?=", .name = u"\u00E4"},
    {.what = "a question mark inside", .header = "=?utf-8?Q?what?!?=", .name = u"what?!"},
    {.what = "nothing in it",
     .header = "=?utf-8?Q?"
               "?= x",
     .name = u" x"},
};

}  // namespace

TEST(GivenName, IsReadInEveryForm) {
  for (const auto& row : rows) EXPECT_EQ(givenName(Header{row.header}), row.name) << row.what;
}

TEST(NameDoubt, IsAboutACharsetThatNobodyKnows) {
  const auto isDoubted = [](std::string_view parameters) {
    return nameDoubt(Header{"Content-Type: image/png; name*=x-nobody''%E4.png\nContent-Disposition: inline" +
                            std::string{parameters} + "\n"}) == u"its name is in an unknown character set";
  };
  EXPECT_TRUE(isDoubted(""));
  EXPECT_TRUE(isDoubted("; filename*=x-nobody''%E4.png"));
  EXPECT_TRUE(isDoubted("; filename*0*=x-nobody''%E4; filename*1=.png"));
  EXPECT_TRUE(isDoubted("; filename=\"=?x-nobody?Q?=E4?=.png\""));
  EXPECT_FALSE(isDoubted("; filename=a.png"));
  EXPECT_FALSE(isDoubted("; filename=\"\xE4.png\""));
  EXPECT_FALSE(isDoubted("; filename*=''%E4.png"));
  EXPECT_FALSE(isDoubted("; filename*=koi8-r''%E4.png"));
  EXPECT_FALSE(isDoubted("; filename=\"=?us-ascii?Q?=E4?=.png\""));
}

TEST(EncodedWords, AreReadInEveryForm) {
  for (const auto& row : words) EXPECT_EQ(decodeWords(row.header), row.name) << row.what;
}

TEST(HeaderValues, AreReadBackAsTheyWereMeant) {
  const Text names[] = {u"a.pdf",
                        u"with \"quotes\" and \\.txt",
                        u"\u00E4\u20AC\U0001F600.txt",
                        Text(200, u'\u20AC') + u".txt",
                        Text(200, u'x'),
                        u"=?utf-8?Q?no_word?=",
                        u""};
  for (const auto& name : names) {
    const auto field =
        "Content-Disposition: attachment" + encodedParameter("filename", name, "\r\n") + "\r\n";
    EXPECT_EQ(disposition(Header{field}).parameters.bytes("filename").has_value(),
              toUtf8(name).size() == name.size());
    EXPECT_EQ(givenName(Header{field}), name.starts_with(u"=?") ? u"no word" : name);
    EXPECT_EQ(decodeWords(unfolded(encodedText(name, "\r\n"))), name);
  }
}

TEST(ContentType, IsTextPlainWhereItCannotBeRead) {
  for (const char* field :
       {"", "Content-Type:\n", "Content-Type: text\n", "Content-Type: /x\n", "Content-Type: ;a=b\n"}) {
    EXPECT_TRUE(contentType(Header{field}).is("text/plain")) << field;
  }
  EXPECT_TRUE(contentType(Header{"content-type: (c) Image / PNG (x); a=b\n"}).is("image/png"));
}
