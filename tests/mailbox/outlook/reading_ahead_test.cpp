#include "hosts/mailbox/outlook/reading_ahead.h"

#include <gtest/gtest.h>

#include <thread>

#include "hosts/mailbox/outlook/explorer.h"
#include "tests/mailbox/outlook/mailbox.h"
#include "tests/mailbox/support/temporary_folder.h"

namespace quillfile::mailbox {
namespace {

std::string letter(std::size_t number, const std::string& base64 = "YWxwaGE=\n") {
  return "Subject: " + std::to_string(number) +
         "\nMIME-Version: 1.0\nContent-Type: multipart/mixed; boundary=b\n\n--b\n\nhello\n"
         "--b\nContent-Type: application/pdf; name=a.pdf\nContent-Transfer-Encoding: base64\n\n" +
         base64 + "--b--\n";
}

std::string subjectOf(const ReadMessage& read) { return toUtf8(read.message->header().text("Subject")); }

class ReadingAheadTest : public testing::Test {
 protected:
  ReadingAheadTest() {
    for (std::size_t i = 0; i < count; ++i) writeFile(path(i), letter(i));
  }
  std::string path(std::size_t index) const { return folder / std::to_string(index); }
  ReadingAhead ahead() {
    return {count, [this](std::size_t index) { return path(index); }};
  }
  // Walks again and again until what came was worth a look, since a reader may be overtaken.
  template <class Walk>
  void untilOneIsRead(Walk walk) {
    for (int i = 0; i < 10'000; ++i) {
      if (walk()) return;
      std::this_thread::yield();
    }
    FAIL() << "nothing was ever read ahead";
  }

  static constexpr std::size_t count = 100;
  const TemporaryFolder folder;
};

TEST_F(ReadingAheadTest, AWalkInEitherDirectionGetsEachMessageInItsTurnOrNothing) {
  for (const bool backwards : {false, true}) {
    untilOneIsRead([&] {
      auto reader = ahead();
      std::size_t got = 0;
      for (std::size_t i = 0; i < count; ++i) {
        const auto index = backwards ? count - 1 - i : i;
        std::this_thread::yield();
        const auto read = reader.take(index);
        if (!read.message) continue;
        ++got;
        EXPECT_EQ(subjectOf(read), std::to_string(index));
        EXPECT_TRUE(read.message->file()->isStillAt(path(index)));
        EXPECT_EQ(read.decoded.size(), 1u);
        EXPECT_EQ(read.decoded.at(0).content.bytes(), "alpha");
        EXPECT_TRUE(read.decoded.at(0).doubt.empty());
      }
      return got > 0;
    });
  }
}

TEST_F(ReadingAheadTest, WhoeverJumpsOrAsksTwiceOrTurnsBackGetsNoOtherMessage) {
  untilOneIsRead([&] {
    auto reader = ahead();
    std::size_t got = 0;
    for (const std::size_t index : {0, 1, 1, 2, 50, 51, 3, 99, 98, 97, 0, 1, 2}) {
      std::this_thread::yield();
      const auto read = reader.take(index);
      if (!read.message) continue;
      ++got;
      EXPECT_EQ(subjectOf(read), std::to_string(index));
    }
    return got > 0;
  });
}

TEST_F(ReadingAheadTest, AMessageThatIsGoneOrNoFileOrTooLargeIsLeftToTheWalk) {
  for (std::size_t i = 1; i < count; ++i) std::filesystem::remove(path(i));
  std::filesystem::create_directory(path(1));
  writeFile(path(2), letter(2, std::string(std::size_t{5} << 20, 'A')));
  for (int i = 0; i < 20; ++i) {
    auto reader = ahead();
    for (std::size_t index = 0; index < count; ++index) EXPECT_FALSE(reader.take(index).message);
  }
}

TEST_F(ReadingAheadTest, WhatWasDecodedAheadIsTheSameAsWhatIsDecodedLaterAndAsDoubtful) {
  std::size_t doubted = 0;
  for (const char* base64 : {"YWxwaGE=\n", "YWxw!aGE=\n", "YWxwaGE", "YWxwaGE=\nYWxw\n", "", "====", "Y"}) {
    writeFile(path(1), letter(1, base64));
    const auto message = std::make_shared<const Message>(MessageFile::open(path(1)));
    const auto read = [](const AttachmentSource& source) {
      std::string bytes;
      source.content()([&](std::string_view more) { bytes += more; });
      return std::tuple{bytes, source.size(), source.doubt()};
    };
    const auto ahead = attachmentsOf(message, decodedAttachments(*message)).at(0);
    const auto later = attachmentsOf(message).at(0);
    EXPECT_EQ(read(*ahead), read(*later)) << base64;
    EXPECT_EQ(read(*ahead), read(*later)) << "once more " << base64;
    if (!later->doubt().empty()) ++doubted;
  }
  EXPECT_GE(doubted, 3u);
}

using AdoptedItems = OutlookItems;

ReadMessage readAt(const std::string& path) {
  ReadMessage read{std::make_shared<const Message>(MessageFile::open(path)), {}};
  read.decoded = decodedAttachments(*read.message);
  return read;
}

std::string savedBytes(const std::shared_ptr<MailboxItem>& item, const std::filesystem::path& folder) {
  const auto path = (folder / "a.pdf").string();
  item->attachments()->item(1)->saveAsFile(fromUtf8(path));
  return path;
}

TEST_F(AdoptedItems, AnItemIsOpenedWithWhatWasReadOfItWhileThatIsSo) {
  const auto item = deliver(letter(1));
  item->adopt(readAt(item->expectedPath()));
  const auto path = savedBytes(item, root / "saved");
  std::filesystem::remove(item->expectedPath());  // no further look at it is needed
  EXPECT_EQ(item->subject(), u"1");
  finish();
  EXPECT_EQ(contentOf(path), "alpha");
}

TEST_F(AdoptedItems, WhatAnotherProgramHasChangedSinceIsReadAnew) {
  const auto item = deliver(letter(1));
  const auto path = item->expectedPath();
  auto before = readAt(path);
  writeFile(root / "other", letter(2, "YmV0YQ==\n"));
  std::filesystem::rename(root / "other", path);
  item->adopt(std::move(before));
  EXPECT_EQ(item->subject(), u"2");
  const auto saved = savedBytes(item, root / "saved");
  finish();
  EXPECT_EQ(contentOf(saved), "beta");
}

TEST_F(AdoptedItems, WhatWasChangedInTheItemStays) {
  const auto item = deliver(letter(1));
  item->setBody(BodyKind::plain, u"changed\r\n");
  item->adopt(readAt(item->expectedPath()));
  EXPECT_EQ(item->body(BodyKind::plain), u"changed\r\n");
}

TEST_F(AdoptedItems, AMessageThatGotAFlagMeanwhileIsFound) {
  const auto item = deliver(letter(1));
  auto before = readAt(item->expectedPath());
  ASSERT_TRUE(MailFolder(*item->folder()).setFlag(item->unique(), 'F', true));
  item->adopt(std::move(before));
  EXPECT_EQ(item->subject(), u"1");
}

// The module walks over a selection from its end.
TEST_F(AdoptedItems, ASelectionGivesEveryItemItsOwnMessage) {
  Items items;
  for (std::size_t i = 0; i < 200; ++i) items.push_back(deliver(letter(i)));
  client->explorer()->select(items);
  const auto selection = client->explorer()->selection();
  for (std::int32_t i = 200; i > 0; --i) {
    const auto item = selection->item(i);
    EXPECT_EQ(item->subject(), fromUtf8(std::to_string(i - 1)));
    EXPECT_EQ(item->attachments()->count(), 1);
  }
}

}  // namespace
}  // namespace quillfile::mailbox
