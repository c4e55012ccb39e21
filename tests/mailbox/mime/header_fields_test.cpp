// Addresses, dates, charsets and plain fields.
#include <gtest/gtest.h>

#include "hosts/mailbox/mime/address.h"
#include "hosts/mailbox/mime/charset.h"
#include "hosts/mailbox/mime/date.h"
#include "hosts/mailbox/mime/header.h"

using namespace quillfile;
using namespace quillfile::mime;

TEST(Header, GivesFieldsAsTheyStandAndUnfolded) {
  const Header header{"From x\nSubject: a\r\n\tb \r\nReceived: one\nX-Odd : y\nno field\nreceived: two\n"};
  EXPECT_EQ(header.value("subject"), "a\tb");
  EXPECT_EQ(header.field("Subject")->whole, "Subject: a\r\n\tb \r\n");
  EXPECT_EQ(header.field("Subject")->value, " a\r\n\tb ");
  EXPECT_EQ(header.value("X-Odd"), "y");
  ASSERT_EQ(header.fields("RECEIVED").size(), 2u);
  EXPECT_EQ(header.fields("RECEIVED")[1].value, " two");
  EXPECT_EQ(header.value("Missing"), "");
}

TEST(Addresses, AreReadInEveryForm) {
  struct Row {
    std::string value;
    std::vector<Address> addresses;
  };
  const Row rows[] = {
      {.value = "", .addresses = {}},
      {.value = "a@b.c", .addresses = {{u"", u"a@b.c"}}},
      {.value = "Ann Lee <a@b.c>, <d@e.f>", .addresses = {{u"Ann Lee", u"a@b.c"}, {u"", u"d@e.f"}}},
      {.value = "\"Lee, Ann \\\"A\\\"\" <a@b.c>", .addresses = {{u"Lee, Ann \"A\"", u"a@b.c"}}},
      {.value = "a@b.c (Ann (the) Lee)", .addresses = {{u"Ann (the) Lee", u"a@b.c"}}},
      {.value = "=?utf-8?Q?J=C3=B6rg?= <j@b.c>", .addresses = {{u"J\u00F6rg", u"j@b.c"}}},
      {.value = "Team: a@b.c, D <d@e.f>;, g@h.i",
       .addresses = {{u"", u"a@b.c"}, {u"D", u"d@e.f"}, {u"", u"g@h.i"}}},
      {.value = "One: Two: a@b.c;;", .addresses = {{u"", u"a@b.c"}}},
      {.value = "undisclosed-recipients:;", .addresses = {}},
      {.value = "\"odd local\"@b.c", .addresses = {{u"", u"\"odd local\"@b.c"}}},
      {.value = "X <@r1,@r2:a@b.c>", .addresses = {{u"X", u"a@b.c"}}},
      {.value = "X <a@b.c", .addresses = {{u"X", u"a@b.c"}}},
      {.value = "Just A Name", .addresses = {{u"Just A Name", u""}}},
      {.value = "postmaster", .addresses = {{u"", u"postmaster"}}},
      {.value = "\xE4 <a@b.c>", .addresses = {{u"\u00E4", u"a@b.c"}}},
  };
  for (const auto& row : rows) EXPECT_EQ(parseAddresses(row.value), row.addresses) << row.value;
}

TEST(Addresses, AreBoundedHoweverDeepTheyNest) {
  EXPECT_EQ(parseAddresses(std::string(1'000'000, '(')).size(), 0u);
  std::string groups, many;
  for (int i = 0; i < 200'000; ++i) groups += "a:";
  for (int i = 0; i < 20'000; ++i) many += "a@b,";
  EXPECT_EQ(parseAddresses(groups).size(), 0u);
  EXPECT_EQ(parseAddresses(many).size(), 10'000u);
}

TEST(Dates, AreReadInEveryForm) {
  struct Row {
    const char* value;
    std::optional<std::int64_t> seconds;
  };
  const Row rows[] = {
      {.value = "Fri, 21 Nov 1997 09:55:06 -0600", .seconds = 880127706},
      {.value = "21 Nov 97 09:55:06 CST", .seconds = 880127706},
      {.value = "21 Nov 097 09:55:06 CST", .seconds = 880127706},
      {.value = "Fri, 21-Nov-1997 15:55:06 GMT", .seconds = 880127706},
      {.value = "Fri (a (b)) , 21 Nov 1997 (c\\)) 09:55:06 -0600 (CST)", .seconds = 880127706},
      {.value = "Fri Nov 21 15:55:06 1997", .seconds = 880127706},
      {.value = "21 November 1997 15:55 Z", .seconds = 880127700},
      {.value = "1 Jan 70 00:00:00 UT", .seconds = 0},
      {.value = "29 Feb 2024 23:59:60 +0000", .seconds = 1709251199},
      {.value = "30 Feb 2024 10:00:00 +0000", .seconds = {}},
      {.value = "21 Nov 1997", .seconds = {}},
      {.value = "21 Nov 1997 25:00:00", .seconds = {}},
      {.value = "nonsense", .seconds = {}},
      {.value = "", .seconds = {}},
  };
  for (const auto& row : rows) EXPECT_EQ(parseDate(row.value), row.seconds) << row.value;
  EXPECT_EQ(parseReceivedDate("from a (x; y) by b; Fri, 21 Nov 1997 09:55:06 -0600 (c; d)"), 880127706);
  EXPECT_EQ(parseReceivedDate("from a by b"), std::nullopt);
}

TEST(Charsets, AreReadUnderTheNamesThatMailUses) {
  struct Row {
    const char* charset;
    std::string bytes;
    Text text;
    bool doubted = false;
  };
  const Row rows[] = {
      {.charset = "utf-8", .bytes = "\xE2\x82\xAC", .text = u"\u20AC"},
      {.charset = "UTF8", .bytes = "\xF0\x9F\x98\x80", .text = u"\U0001F600"},
      {.charset = "", .bytes = "\xE4\x80", .text = u"\u00E4\u20AC"},
      {.charset = "iso-8859-1", .bytes = "\xE4\x92", .text = u"\u00E4\u2019"},
      {.charset = "us-ascii", .bytes = "\xC3\xA4", .text = u"\u00E4"},
      {.charset = "koi8-r", .bytes = "\xC1", .text = u"\u0430"},
      {.charset = "gb2312", .bytes = "\xC4\xE3", .text = u"\u4F60"},
      {.charset = "ks_c_5601-1987", .bytes = "\xB0\xA1", .text = u"\uAC00"},
      {.charset = "iso-2022-jp", .bytes = "\x1B$B$\"\x1B(B", .text = u"\u3042"},
      {.charset = "utf-16le", .bytes = std::string{"a\0", 2}, .text = u"a"},
      {.charset = "utf-16be", .bytes = std::string{"\0a", 2}, .text = u"a"},
      {.charset = "utf-8",
       .bytes = "a\xFF"
                "b",
       .text = u"a\uFFFD"
               u"b",
       .doubted = true},
      {.charset = "utf-8", .bytes = "a\xE2\x82", .text = u"a\uFFFD\uFFFD", .doubted = true},
      {.charset = "x-nobody", .bytes = "a\xE4", .text = u"a\u00E4", .doubted = true},
      {.charset = "utf-8//TRANSLIT", .bytes = "a", .text = u"a", .doubted = true},
  };
  for (const auto& row : rows) {
    Doubt doubt;
    EXPECT_EQ(fromCharset(row.bytes, row.charset, &doubt), row.text) << row.charset;
    EXPECT_EQ(!doubt.empty(), row.doubted) << row.charset;
  }
}

TEST(Charsets, TakeATextOnlyWhenItFits) {
  EXPECT_EQ(toCharset(u"\u00E4", "iso-8859-1"), "\xE4");
  EXPECT_EQ(toCharset(u"\u20AC", "iso-8859-1"), std::nullopt);
  EXPECT_EQ(toCharset(u"\u20AC", "windows-1252"), "\x80");
  EXPECT_EQ(toCharset(u"\u00E4", "us-ascii"), std::nullopt);
  EXPECT_EQ(toCharset(u"a", ""), "a");
  EXPECT_EQ(toCharset(u"\u3042", "iso-2022-jp"), "\x1B$B$\"\x1B(B");
  EXPECT_EQ(toCharset(u"a", "x-nobody"), std::nullopt);
  EXPECT_EQ(toCharset(Text{0xD83D}, "utf-8"), std::nullopt);
}
