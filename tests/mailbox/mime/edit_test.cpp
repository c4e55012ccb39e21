#include "hosts/mailbox/mime/edit.h"

#include <gtest/gtest.h>

#include <string>

#include "hosts/mailbox/mime/scan.h"

using namespace quillfile;
using namespace quillfile::mime;

namespace {

// The rewritten message, after the proofs that go before an original is unlinked have been given.
std::string rewritten(const std::string& original, const std::function<void(Edit&)>& change) {
  const auto tree = scan(original);
  Edit edit{tree};
  change(edit);
  const auto pieces = edit.pieces();
  std::string result;
  write(original, pieces, [&](std::string_view bytes) { result += bytes; });
  EXPECT_TRUE(check(original, pieces, edit.cuts(), result));
  EXPECT_TRUE(edit.holds(scan(result))) << result;
  const auto boundary = result.find("=_");
  if (boundary != result.npos && original.find("=_") == original.npos) {  // a new one, random
    const auto word = result.substr(boundary, 34);
    for (auto at = result.find(word); at != result.npos; at = result.find(word))
      result.replace(at, 34, "NEW");
  }
  return result;
}

Content content(std::string bytes) {
  return [bytes](const Sink& sink) { sink(bytes); };
}

const std::string mixed =
    "Subject: s\n"
    "Content-Type: multipart/mixed; boundary=b\n"
    "\n"
    "preamble\n"
    "--b\n"
    "Content-Type: text/plain; charset=iso-8859-1\n"
    "\n"
    "Hello\n"
    "--b\n"
    "Content-Type: application/pdf\n"
    "Content-Transfer-Encoding: base64\n"
    "\n"
    "QUJD\n"
    "--b--\n"
    "epilogue\n";

}  // namespace

TEST(Edit, WithNothingToDoKeepsEveryByte) {
  EXPECT_EQ(rewritten(mixed, [](Edit& edit) { EXPECT_TRUE(edit.empty()); }), mixed);
}

TEST(Edit, CutsARemovedPartOutWithItsBoundaryLine) {
  EXPECT_EQ(rewritten(mixed, [](Edit& edit) { edit.remove(2); }),
            "Subject: s\nContent-Type: multipart/mixed; boundary=b\n\npreamble\n--b\n"
            "Content-Type: text/plain; charset=iso-8859-1\n\nHello\n--b--\nepilogue\n");
}

TEST(Edit, KeepsAMultipartThatHasNoPartsLeft) {
  const auto result = rewritten(mixed, [](Edit& edit) {
    edit.remove(1);
    edit.remove(2);
  });
  EXPECT_EQ(result, "Subject: s\nContent-Type: multipart/mixed; boundary=b\n\npreamble\n--b--\nepilogue\n");
  EXPECT_EQ(scan(result)[0].doubt, u"");
}

TEST(Edit, KeepsTheLineEndBeforeABoundaryLineThatHasNoneOfItsOwn) {
  const std::string original =
      "Content-Type: multipart/mixed; boundary=b\n\n--b\n\ntext\n\n--b\nContent-Type: image/png\n\n--b--\n";
  EXPECT_EQ(rewritten(original, [](Edit& edit) { edit.remove(2); }),
            "Content-Type: multipart/mixed; boundary=b\n\n--b\n\ntext\n\n--b--\n");
}

TEST(Edit, KeepsOneLineEndWherePartsInARowGoBeforeABoundaryLineThatHasNone) {
  const std::string begin = "Content-Type: multipart/mixed; boundary=b\n\n--b\n\n";
  const std::string original =
      begin +
      "text\n--b\n\nx\n--b\nContent-Type: image/png\n--b\n\ny\n--b\nContent-Type: image/png\n\n--b--\n";
  const auto removeAll = [](Edit& edit) {
    for (PartIndex part = 2; part <= 5; ++part) edit.remove(part);
  };
  EXPECT_EQ(rewritten(original, removeAll), begin + "text\n--b--\n");
  EXPECT_EQ(rewritten(original,
                      [&](Edit& edit) {
                        removeAll(edit);
                        edit.setText(1, u"new");
                      }),
            begin + "new\n--b--\n");
  EXPECT_EQ(rewritten(original,
                      [&](Edit& edit) {
                        edit.remove(1);
                        removeAll(edit);
                        edit.addBody(BodyFormat::plain, u"new");
                      }),
            "Content-Type: multipart/mixed; boundary=b\n\n\n--b\n"
            "Content-Type: text/plain; charset=us-ascii\nContent-Transfer-Encoding: 7bit\n\nnew\n--b--\n");
}

TEST(Edit, KeepsABareCarriageReturnOutOfTheLineEndThatComesToStandBehindIt) {
  const std::string begin = "Content-Type: multipart/mixed; boundary=b\n\n--b\n\n";
  const std::string original = begin + "text\r\r\n--b\n\nx\n--b\n\ny\r\r\n--b--\n";
  EXPECT_EQ(rewritten(original, [](Edit& edit) { edit.remove(2); }),
            begin + "text\r\r\n--b\n\ny\r\r\n--b--\n");
  const std::string added =
      "\n--b\nContent-Type: a/b\nContent-Transfer-Encoding: base64\nContent-Disposition: "
      "attachment\n\nQUJD\r\n--b--\n";
  const auto add = [](Edit& edit) {
    edit.add({.name = {}, .type = "a/b", .description = {}, .content = content("ABC")});
  };
  EXPECT_EQ(rewritten(original, add), begin + "text\r\r\n--b\n\nx\n--b\n\ny\r\r" + added);
  EXPECT_EQ(rewritten(original,
                      [&](Edit& edit) {
                        edit.remove(2);
                        edit.remove(3);
                        add(edit);
                      }),
            begin + "text\r\r" + added);
}

TEST(Edit, ClosesAMultipartThatHadNoClosingLineWhenItsLastPartGoes) {
  const std::string original =
      "Content-Type: multipart/mixed; boundary=o\n\n--o\nContent-Type: multipart/related; boundary=i\n\n"
      "--i\nContent-Type: image/png\n\nx\n--o--\n";
  EXPECT_EQ(
      rewritten(original, [](Edit& edit) { edit.remove(2); }),
      "Content-Type: multipart/mixed; boundary=o\n\n--o\nContent-Type: multipart/related; boundary=i\n\n"
      "\n--i--\n--o--\n");
}

TEST(Edit, PutsOneLineEndOnlyBetweenARemovedPartAndAnAddedOne) {
  const std::string original =
      "Content-Type: multipart/mixed; boundary=b\n\n--b\n\ntext\n--b\nContent-Type: image/png\n\n--b--\n";
  EXPECT_EQ(rewritten(original,
                      [](Edit& edit) {
                        edit.remove(2);
                        edit.add({.name = {}, .type = "a/b", .description = {}, .content = content("ABC")});
                      }),
            "Content-Type: multipart/mixed; boundary=b\n\n--b\n\ntext\n--b\nContent-Type: a/b\n"
            "Content-Transfer-Encoding: base64\nContent-Disposition: attachment\n\nQUJD\n--b--\n");
}

TEST(Edit, ClosesAnEmptiedMultipartBeforeItAddsAPartBehindIt) {
  const std::string original =
      "Content-Type: multipart/mixed; boundary=o\n\n--o\nContent-Type: multipart/related; boundary=i\n\n"
      "--i\nContent-Type: image/png\n\nx\n--o--\n";
  EXPECT_EQ(
      rewritten(original,
                [](Edit& edit) {
                  edit.remove(2);
                  edit.add({.name = {}, .type = "a/b", .description = {}, .content = content("ABC")});
                }),
      "Content-Type: multipart/mixed; boundary=o\n\n--o\nContent-Type: multipart/related; boundary=i\n\n"
      "\n--i--\n--o\nContent-Type: a/b\nContent-Transfer-Encoding: base64\n"
      "Content-Disposition: attachment\n\nQUJD\n--o--\n");
}

TEST(Edit, PutsAnEmptyBodyInPlaceOfAMessageThatIsItselfAnAttachment) {
  const std::string original =
      "Subject: s\r\nContent-Type: image/png\r\nContent-Transfer-Encoding: base64\r\n\r\nQUJD\r\n";
  EXPECT_EQ(rewritten(original, [](Edit& edit) { edit.remove(0); }),
            "Subject: s\r\nMIME-Version: 1.0\r\nContent-Type: text/plain; charset=us-ascii\r\n"
            "Content-Transfer-Encoding: 7bit\r\n\r\n");
  EXPECT_EQ(rewritten(original,
                      [](Edit& edit) {
                        edit.remove(0);
                        edit.addBody(BodyFormat::html, u"<p>gone</p>");
                      }),
            "Subject: s\r\nMIME-Version: 1.0\r\nContent-Type: text/html; charset=us-ascii\r\n"
            "Content-Transfer-Encoding: 7bit\r\n\r\n<p>gone</p>");
}

TEST(Edit, KeepsTheCharsetAndEncodingThatANewTextFits) {
  EXPECT_EQ(rewritten(mixed, [](Edit& edit) { edit.setText(1, u"one\r\ntwo\n"); }),
            "Subject: s\nContent-Type: multipart/mixed; boundary=b\n\npreamble\n--b\n"
            "Content-Type: text/plain; charset=iso-8859-1\n\none\ntwo\n\n--b\n"
            "Content-Type: application/pdf\nContent-Transfer-Encoding: base64\n\nQUJD\n--b--\nepilogue\n");
}

TEST(Edit, MakesAPartUtf8WhenItsCharsetCannotHoldTheText) {
  EXPECT_EQ(rewritten(mixed, [](Edit& edit) { edit.setText(1, u"5 \u20AC"); }),
            "Subject: s\nContent-Type: multipart/mixed; boundary=b\n\npreamble\n--b\n"
            "Content-Type: text/plain; charset=utf-8\nContent-Transfer-Encoding: base64\n\nNSDigqw=\n--b\n"
            "Content-Type: application/pdf\nContent-Transfer-Encoding: base64\n\nQUJD\n--b--\nepilogue\n");
}

TEST(Edit, EncodesATextThatHoldsABoundaryLine) {
  const auto result = rewritten(mixed, [](Edit& edit) { edit.setText(1, u"--b--\n"); });
  const auto tree = scan(result);
  ASSERT_EQ(tree.size(), 3u);
  EXPECT_EQ(decoded(tree[1].encoding, tree.body(1)), "--b--\n");
}

TEST(Edit, MakesAMixedMessageOfAPlainOne) {
  const std::string original = "Subject: s\nContent-Type: text/plain\n\nHello\n";
  EXPECT_EQ(
      rewritten(
          original,
          [](Edit& edit) { edit.add({.name = u"a.bin", .description = u"A", .content = content("ABC")}); }),
      "Subject: s\nMIME-Version: 1.0\nContent-Type: multipart/mixed;\n boundary=\"NEW\"\n\n"
      "\n--NEW\nContent-Type: text/plain\n\nHello\n"
      "\n--NEW\nContent-Type: application/octet-stream;\n name=\"a.bin\"\nContent-Transfer-Encoding: base64\n"
      "Content-Disposition: attachment;\n filename=\"a.bin\"\nContent-Description: A\n\nQUJD\n--NEW--\n");
}

TEST(Edit, AddsToAMixedMessageBehindItsLastPart) {
  EXPECT_EQ(rewritten(mixed,
                      [](Edit& edit) {
                        edit.remove(2);
                        edit.addBody(BodyFormat::html, u"first");
                        edit.add({.name = {},
                                  .type = "message/rfc822",
                                  .description = {},
                                  .content = content("X: y\n\nz")});
                      }),
            "Subject: s\nContent-Type: multipart/mixed; boundary=b\n\npreamble\n"
            "--b\nContent-Type: text/html; charset=us-ascii\nContent-Transfer-Encoding: 7bit\n\nfirst\n"
            "--b\nContent-Type: text/plain; charset=iso-8859-1\n\nHello\n"
            "--b\nContent-Type: message/rfc822\nContent-Transfer-Encoding: 8bit\nContent-Disposition: "
            "attachment\n\n"
            "X: y\n\nz\n--b--\nepilogue\n");
}

TEST(Edit, TakesTheNewTextAlongWhenItWrapsAPlainMessage) {
  const std::string original = "Content-Type: text/plain; charset=us-ascii\n\nHello";
  const auto result = rewritten(original, [](Edit& edit) {
    edit.setText(0, u"\u00E4 and much more that is ASCII");
    edit.add({.name = u"\u00E4.txt", .description = {}, .content = content("")});
  });
  EXPECT_EQ(
      result,
      "MIME-Version: 1.0\nContent-Type: multipart/mixed;\n boundary=\"NEW\"\n\n"
      "\n--NEW\nContent-Type: text/plain; charset=utf-8\nContent-Transfer-Encoding: quoted-printable\n\n"
      "=C3=A4 and much more that is ASCII"
      "\n--NEW\nContent-Type: application/octet-stream;\n name*=UTF-8''%C3%A4.txt\n"
      "Content-Transfer-Encoding: base64\nContent-Disposition: attachment;\n filename*=UTF-8''%C3%A4.txt\n\n"
      "\n--NEW--\n");
}

TEST(Edit, ReplacesAFieldOfTheHeaderAndAddsANewOne) {
  EXPECT_EQ(rewritten("A: 1\nB: 2\n folded\na: 3\n\nbody",
                      [](Edit& edit) {
                        edit.setHeader("A", u"\u00E4");
                        edit.setHeader("B", u"");
                        edit.setHeader("C", u"x\r\nInjected: y");
                      }),
            "A: =?utf-8?B?w6Q=?=\nC: x  Injected: y\n\nbody");
}

TEST(Edit, ReplacesALastFieldThatHasNoLineEnd) {
  EXPECT_EQ(rewritten("A: 1\nSubject: old",
                      [](Edit& edit) {
                        edit.setHeader("Subject", u"new");
                        edit.setHeader("B", u"2");
                      }),
            "A: 1\nSubject: new\nB: 2\n\n");
}

TEST(Edit, ManagesMessagesWithoutHeaderBodyOrLineEnd) {
  const auto add = [](Edit& edit) { edit.add({.name = u"a", .description = {}, .content = content("ABC")}); };
  for (const std::string original :
       {"", "\n", "Subject: s", "Subject: s\n", "no header", "\n\n", "Subject: s\n\n"}) {
    const auto result = rewritten(original, add);
    const auto tree = scan(result);
    ASSERT_EQ(tree.size(), 3u) << original;
    EXPECT_EQ(tree.body(1), original.find("no") == 0 ? "no header" : original == "\n\n" ? "\n" : "");
    EXPECT_EQ(decoded(tree[2].encoding, tree.body(2)), "ABC");
  }
}

TEST(Edit, IsRefusedByTheCheckWhenAByteIsNotAsItShouldBe) {
  const auto tree = scan(mixed);
  Edit edit{tree};
  edit.remove(1);
  edit.add({.name = u"a", .description = {}, .content = content(std::string(200'000, 'x'))});
  const auto pieces = edit.pieces();
  std::string result;
  write(mixed, pieces, [&](std::string_view bytes) { result += bytes; });
  ASSERT_TRUE(check(mixed, pieces, edit.cuts(), result));
  EXPECT_FALSE(check(mixed, pieces, {}, result));                     // nothing was allowed to go
  EXPECT_FALSE(check(mixed, pieces, edit.cuts(), result + "x"));      // too long
  EXPECT_FALSE(check(mixed, pieces, edit.cuts(), result.substr(1)));  // too short
  for (std::size_t i = 0; i < result.size(); i += 9973) {
    auto wrong = result;
    wrong[i] = static_cast<char>(wrong[i] ^ 1);
    EXPECT_FALSE(check(mixed, pieces, edit.cuts(), wrong)) << i;
  }
}

TEST(Edit, AddsAPartBehindABodyThatEndsInABareCarriageReturn) {
  EXPECT_EQ(rewritten("Subject: s\n\nbody\r", [](Edit& edit) { edit.addBody(BodyFormat::plain, u"new"); }),
            "Subject: s\nMIME-Version: 1.0\nContent-Type: multipart/mixed;\n boundary=\"NEW\"\n\n\n--NEW\n"
            "Content-Type: text/plain; charset=us-ascii\nContent-Transfer-Encoding: 7bit\n\nnew\n"
            "--NEW\n\nbody\r\r\n--NEW--\n");
}

TEST(Edit, AddsAPartBehindAnEmbeddedHeaderThatEndsWithTheMessage) {
  EXPECT_EQ(rewritten("Content-Type: message/rfc822\r\n\r\nSubject: in\r",
                      [](Edit& edit) { edit.addBody(BodyFormat::plain, u"new"); }),
            "MIME-Version: 1.0\r\nContent-Type: multipart/mixed;\r\n boundary=\"NEW\"\r\n\r\n\r\n--NEW\r\n"
            "Content-Type: text/plain; charset=us-ascii\r\nContent-Transfer-Encoding: 7bit\r\n\r\nnew\r\n"
            "--NEW\r\nContent-Type: message/rfc822\r\n\r\nSubject: in\r\r\n--NEW--\r\n");
  EXPECT_EQ(rewritten("Content-Type: message/rfc822\n\nSubject: in",
                      [](Edit& edit) { edit.addBody(BodyFormat::plain, u"new"); }),
            "MIME-Version: 1.0\nContent-Type: multipart/mixed;\n boundary=\"NEW\"\n\n\n--NEW\n"
            "Content-Type: text/plain; charset=us-ascii\nContent-Transfer-Encoding: 7bit\n\nnew\n"
            "--NEW\nContent-Type: message/rfc822\n\nSubject: in\n--NEW--\n");
}
