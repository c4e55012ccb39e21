#include "hosts/mailbox/mime/scan.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>

using namespace quillfile::mime;

namespace {

const std::string mixed =
    "From: a@example.org\r\n"
    "Content-Type: multipart/mixed; boundary=\"b 1\"\r\n"
    "\r\n"
    "preamble\r\n"
    "--b 1\r\n"
    "\r\n"
    "Hello\r\n"
    "--b 1  \r\n"
    "Content-Type: application/pdf; name=a.pdf\r\n"
    "Content-Transfer-Encoding: base64\r\n"
    "\r\n"
    "QUJD\r\n"
    "\r\n"
    "--b 1--\r\n"
    "epilogue\r\n";

// One line for each part: depth, kind, body.
std::string outline(const PartTree& tree) {
  std::string lines;
  for (PartIndex i = 0; i < tree.size(); ++i) {
    const auto& part = tree[i];
    lines += std::string(part.depth, ' ');
    lines += part.kind == PartKind::leaf        ? "leaf [" + std::string{tree.body(i)} + "]"
             : part.kind == PartKind::multipart ? "multipart"
                                                : "message";
    lines += part.doubt.empty() ? "\n" : " doubted\n";
  }
  return lines;
}

}  // namespace

TEST(Scan, GivesTheLineEndBeforeABoundaryToTheBoundary) {
  const auto tree = scan(mixed);
  EXPECT_EQ(outline(tree),
            "multipart\n"
            " leaf [Hello]\n"
            " leaf [QUJD\r\n]\n");
  EXPECT_EQ(tree[1].opening.of(mixed), "\r\n--b 1\r\n");
  EXPECT_EQ(tree[2].whole().of(mixed).substr(0, 11), "\r\n--b 1  \r\n");
  EXPECT_EQ(tree[0].closing.of(mixed), "\r\n--b 1--");
  EXPECT_EQ(tree[2].encoding, Encoding::base64);
  EXPECT_TRUE(tree.type(2).is("application/pdf"));
  EXPECT_EQ(tree.doubt(), u"");
}

TEST(Scan, TheTypeOfAPartIsWhatItsHeaderSaysHoweverManyAndHoweverLong) {
  std::string message = "Content-Type: multipart/mixed; boundary=b\n\n";
  for (int i = 0; i < 200; ++i) {
    message += "--b\nContent-Type: image/x" + std::to_string(i) + "; name=\"" + std::to_string(i) + "\"\n";
    if (i % 50 == 20) message += "X-Long: " + std::string(5000, 'x') + "\n";
    message += "\nbody\n";
  }
  message += "--b--\n";
  const auto tree = scan(message);
  ASSERT_EQ(tree.size(), 201u);
  EXPECT_TRUE(tree.type(0).is("multipart/mixed"));
  for (PartIndex part = 1; part < tree.size(); ++part) {
    const auto number = std::to_string(part - 1);
    EXPECT_TRUE(tree.type(part).is("image/x" + number)) << number;
    EXPECT_EQ(tree.type(part).parameters.bytes("name"), number);
  }
}

TEST(Scan, TakesAnythingForAMessage) {
  EXPECT_EQ(outline(scan("")), "leaf []\n");
  EXPECT_EQ(outline(scan("no header\nat all")), "leaf [no header\nat all]\n");
  EXPECT_EQ(outline(scan("\n--b\n")), "leaf [--b\n]\n");
}

TEST(Scan, PutsTheInsideOfAnEmbeddedMessageBelowIt) {
  const auto tree = scan(
      "Content-Type: multipart/mixed; boundary=o\n\n--o\nContent-Type: message/rfc822\n\nSubject: in\n"
      "Content-Type: multipart/mixed; boundary=i\n\n--i\n\ntext\n--i--\n--o--\n");
  EXPECT_EQ(outline(tree), "multipart\n message\n  multipart\n   leaf [text]\n");
  EXPECT_TRUE(tree.insideEmbedded(3));
  EXPECT_FALSE(tree.insideEmbedded(1));
  EXPECT_EQ(tree.header(2).value("Subject"), "in");
}

TEST(Scan, LetsAnOuterBoundaryEndWhatIsOpenInside) {
  const auto tree = scan(
      "Content-Type: multipart/mixed; boundary=o\n\n--o\nContent-Type: multipart/alternative; boundary=i\n\n"
      "--i\n\none\n--o\n\ntwo\n--o--\n");
  EXPECT_EQ(outline(tree), "multipart\n multipart\n  leaf [one]\n leaf [two]\n");
}

TEST(Scan, DoubtsWhatIsCutOff) {
  const auto tree = scan("Content-Type: multipart/mixed; boundary=o\n\n--o\n\none\n--o\n\ntw");
  EXPECT_EQ(outline(tree), "multipart doubted\n leaf [one]\n leaf [tw] doubted\n");
}

// Once the part behind it is gone, the next line "--o" would be the unended multipart's.
TEST(Scan, DoubtsAMultipartWithoutAnEndWhoseBoundaryIsAlsoThatOfOneAroundIt) {
  const auto message = [](const std::string& outer, const std::string& ending) {
    return "Content-Type: multipart/mixed; boundary=\"" + outer + "\"\n\n--" + outer +
           "\nContent-Type: multipart/mixed; boundary=i\n\n--i\n"
           "Content-Type: multipart/mixed; boundary=o\n\n--o\n\none\n" +
           ending + "--i\n\ntwo\n--i--\n--" + outer + "--\n";
  };
  const auto nested = [](const std::string& doubt) {
    return "multipart\n multipart\n  multipart" + doubt + "\n   leaf [one]\n  leaf [two]\n";
  };
  EXPECT_EQ(outline(scan(message("o", ""))), nested(" doubted"));
  EXPECT_EQ(outline(scan(message("o--", ""))), nested(" doubted"));
  EXPECT_EQ(outline(scan(message("x", ""))), nested(""));
  EXPECT_EQ(outline(scan(message("o", "--o--\n"))), nested(""));
}

TEST(Scan, EndsAHeaderAtABoundaryLine) {
  const auto tree = scan("Content-Type: multipart/mixed; boundary=o\n\n--o\nContent-ID: <x>\n--o\n--o--\n");
  EXPECT_EQ(outline(tree), "multipart\n leaf []\n leaf []\n");
  EXPECT_EQ(tree.header(1).value("content-id"), "<x>");
}

TEST(Scan, TakesAChildOfADigestForAMessage) {
  const auto tree = scan("Content-Type: multipart/digest; boundary=o\n\n--o\n\nSubject: s\n\nbody\n--o--\n");
  EXPECT_EQ(outline(tree), "multipart\n message\n  leaf [body]\n");
  EXPECT_TRUE(tree.type(1).is("message/rfc822"));
}

TEST(Scan, LeavesTheRestOpaqueBeyondALimit) {
  std::string deep;
  for (int i = 0; i < 10'000; ++i) {
    const auto b = std::to_string(i);
    deep += "Content-Type: multipart/mixed; boundary=b" + b + "\n\n--b" + b + "\n";
  }
  const auto tree = scan(deep);
  EXPECT_EQ(tree.size(), 101u);
  EXPECT_NE(tree.doubt(), u"");

  std::string many = "Content-Type: multipart/mixed; boundary=b\n\n";
  for (int i = 0; i < 100'000; ++i) many += "--b\nContent-Type: image/png\n\nx\n";
  const auto wide = scan(many + "--b--\n");
  EXPECT_EQ(wide.size(), 10'001u);
  EXPECT_NE(wide.doubt(), u"");
  EXPECT_EQ(wide[10'000].body.end, many.size() + 6);

  const auto longHeader =
      scan("Subject: " + std::string(10 << 20, 'x') + "\nContent-Type: image/png\n\nbody");
  EXPECT_EQ(longHeader.size(), 1u);
  EXPECT_NE(longHeader.doubt(), u"");
}

TEST(Scan, TellsTheOwnerOfTheBytesHowFarItHasCome) {
  const auto big = mixed.substr(0, mixed.find("QUJD")) + std::string(10 << 20, 'A') + "\r\n--b 1--\r\n";
  std::vector<std::size_t> told;
  scan(big, [&](std::size_t offset) { told.push_back(offset); });
  EXPECT_EQ(told, (std::vector<std::size_t>{4 << 20, 8 << 20}));
}
