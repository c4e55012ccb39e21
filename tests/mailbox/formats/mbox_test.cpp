#include "hosts/mailbox/formats/import/mbox.h"

#include <gtest/gtest.h>

#include "tests/mailbox/formats/corpus.h"

namespace quillfile::formats {
namespace {

std::vector<std::string> messagesOf(std::string_view mbox) {
  std::vector<std::string> result;
  for (const MboxMessage& one : splitMbox(mbox)) {
    result.push_back(gathered([&](const ByteSink& sink) { writeMboxMessage(one, sink); }));
  }
  return result;
}

using Messages = std::vector<std::string>;

TEST(Mbox, SplitsAtFromLinesAfterABlankLine) {
  const std::string mbox =
      "From ada@example.org Sun Sep 13 12:26:40 2020\nSubject: 1\n\none\n\n"
      "From bob@example.org Sun Sep 13 12:26:41 2020\nSubject: 2\n\ntwo\nlines\n\n";
  EXPECT_TRUE(isMbox(mbox));
  EXPECT_EQ(messagesOf(mbox), (Messages{"Subject: 1\n\none\n", "Subject: 2\n\ntwo\nlines\n"}));
}

TEST(Mbox, TakesOneMarkOffQuotedLinesAndLeavesOthers) {
  const std::string mbox =
      "From a Sun Sep 13 12:26:40 2020\n\n>From here\n>>From there\n> From\nx >From y\n>From";
  EXPECT_EQ(messagesOf(mbox), (Messages{"\nFrom here\n>From there\n> From\nx >From y\n>From"}));
}

TEST(Mbox, DoesNotSplitAtASentence) {
  const std::string mbox = "From a Sun Sep 13 12:26:40 2020\n\nfirst\n\nFrom now on it is one message.\n";
  EXPECT_EQ(messagesOf(mbox), (Messages{"\nfirst\n\nFrom now on it is one message.\n"}));
}

TEST(Mbox, BelievesAContentLengthThatLeadsToTheNextMessage) {
  const std::string body = "one\n\nFrom x Sun Sep 13 12:26:40 2020\n>From y\n";
  const std::string mbox = "From a Sun Sep 13 12:26:40 2020\nContent-Length: " + std::to_string(body.size()) +
                           "\n\n" + body + "\nFrom b Sun Sep 13 12:26:40 2020\n\ntwo\n";
  const std::string first = "Content-Length: " + std::to_string(body.size()) + "\n\n" + body;
  EXPECT_EQ(messagesOf(mbox), (Messages{first, "\ntwo\n"}));
}

TEST(Mbox, DoesNotBelieveAContentLengthThatLies) {
  for (const std::string length : {"1", "3", "999999", "-4", "4x", "18446744073709551615"}) {
    const std::string mbox = "From a Sun Sep 13 12:26:40 2020\nContent-Length: " + length +
                             "\n\none\ntwo\n\nFrom b Sun Sep 13 12:26:40 2020\n\ntwo\n";
    EXPECT_EQ(messagesOf(mbox), (Messages{"Content-Length: " + length + "\n\none\ntwo\n", "\ntwo\n"}))
        << length;
  }
}

TEST(Mbox, KeepsLineEndsOfWindows) {
  const std::string mbox =
      "From a Sun Sep 13 12:26:40 2020\r\nA: 1\r\n\r\none\r\n\r\nFrom b 1:02\r\n\r\ntwo\r\n";
  EXPECT_EQ(messagesOf(mbox), (Messages{"A: 1\r\n\r\none\r\n", "\r\ntwo\r\n"}));
}

TEST(Mbox, SplitsAtLinesWithoutATimeBeforeAField) {
  const std::string mbox =
      "\xEF\xBB\xBF"
      "From - \nA: 1\n\nFrom Russia with love\nYear: 1963\n\nFrom here\nwe go\nFrom 18@xxx\nA: 2\n\n";
  EXPECT_TRUE(isMbox(mbox));
  EXPECT_EQ(messagesOf(mbox),
            (Messages{"A: 1\n\nFrom Russia with love\nYear: 1963\n\nFrom here\nwe go\n", "A: 2\n\n"}));
}

TEST(Mbox, FindsEveryMessageOfTheCorpus) {
  const auto folder = corpusFolder("mimekit/mbox");
  if (folder.empty()) GTEST_SKIP() << "the corpus is not here";
  const auto count = [&](const char* name) { return messagesOf(contentsOf(folder / name)).size(); };
  EXPECT_EQ(count("content-length.mbox.txt"), 29u);
  EXPECT_EQ(count("issue1189.mbox.txt"), 4u);
  EXPECT_EQ(count("simple.mbox.txt"), 3u);
  EXPECT_EQ(count("unmunged.mbox.txt"), 2u);
}

TEST(Mbox, FindsNoMessageInOtherBytes) {
  EXPECT_EQ(messagesOf(""), Messages{});
  EXPECT_EQ(messagesOf("Subject: x\n\nFrom me\n"), Messages{});
  EXPECT_FALSE(isMbox("From me to you\n"));
}

}  // namespace
}  // namespace quillfile::formats
