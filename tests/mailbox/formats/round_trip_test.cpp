// Both formats: what is written is what is read, to the last byte.
#include <gtest/gtest.h>

#include "core/platform/failure.h"
#include "hosts/mailbox/formats/msg/message_file.h"
#include "hosts/mailbox/formats/tnef/tnef.h"
#include "tests/mailbox/formats/sample_messages.h"

namespace quillfile::formats {
namespace {

struct Format {
  std::string name;
  void (*write)(const MessageContent&, const ByteSink&);
  std::optional<ReadMessage> (*read)(std::string_view);
};

const Format kFormats[] = {
    {"msg", writeMessageFile, [](std::string_view bytes) { return readMessageFile(bytes); }},
    {"tnef", writeTnef, [](std::string_view bytes) { return readTnef(bytes); }}};

void PrintTo(const Format& format, std::ostream* to) { *to << format.name; }

class RoundTrip : public testing::TestWithParam<Format> {
 protected:
  std::string write(const MessageContent& message) const {
    return written([&](const ByteSink& sink) { GetParam().write(message, sink); });
  }
  ReadMessage read(std::string_view bytes) const {
    auto result = GetParam().read(bytes);
    EXPECT_TRUE(result.has_value());
    return result.value_or(ReadMessage{});
  }
};

INSTANTIATE_TEST_SUITE_P(Formats, RoundTrip, testing::ValuesIn(kFormats),
                         [](const auto& format) { return format.param.name; });

TEST_P(RoundTrip, KeepsEveryFieldAndEveryByte) {
  const std::string bytes = write(fullMessage());
  const ReadMessage read = this->read(bytes);
  EXPECT_TRUE(read.doubts.empty());
  expectEqual(read.content, fullMessage());
}

TEST_P(RoundTrip, KeepsAnEmptyMessage) {
  const std::string bytes = write({});
  expectEqual(read(bytes).content, {});
}

TEST_P(RoundTrip, WritesEqualMessagesEqually) { EXPECT_EQ(write(fullMessage()), write(fullMessage())); }

// Small sectors, large sectors, and what lies between them.
TEST_P(RoundTrip, KeepsAttachmentsOfEverySizeAroundTheSectors) {
  MessageContent message;
  for (const std::size_t size : {0, 1, 63, 64, 65, 511, 512, 513, 4095, 4096, 4097, 65535, 65536, 65537}) {
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(i * 7 + size);
    message.attachments.push_back(fileAttachment(u"f" + decimal(static_cast<std::int64_t>(size)), bytes));
  }
  const std::string bytes = write(message);
  expectEqual(read(bytes).content, message);
}

TEST_P(RoundTrip, KeepsMessagesInMessagesToTheDeepestLevelAndRefusesOneMore) {
  auto message = std::make_shared<MessageContent>();
  message->subject = u"deepest";
  for (int depth = 2; depth <= kMaxDepth; ++depth) {
    auto outer = std::make_shared<MessageContent>();
    outer->attachments.push_back({.method = AttachMethod::embedded_message, .message = message});
    message = outer;
  }
  const std::string bytes = write(*message);
  expectEqual(read(bytes).content, *message);

  MessageContent tooDeep;
  tooDeep.attachments.push_back({.method = AttachMethod::embedded_message, .message = message});
  EXPECT_THROW(write(tooDeep), Failure);
}

TEST_P(RoundTrip, RefusesASourceThatGivesLessOrMoreThanItSaid) {
  for (const std::uint64_t said : {4, 6}) {
    MessageContent message;
    message.attachments = {fileAttachment(u"five", "12345")};
    message.attachments[0].size = said;
    EXPECT_THROW(write(message), Failure) << said;
  }
}

// No byte of a file may be trusted: each one changed, and the file cut at each length, ends in an answer.
TEST_P(RoundTrip, SurvivesEveryCutAndEveryChangedByte) {
  MessageContent message = fullMessage();
  message.attachments[2] = fileAttachment(u"less", std::string(300, 'l'));
  message.attachments[5].message = nullptr;
  message.attachments[5].method = AttachMethod::by_value;
  const std::string bytes = write(message);
  const std::size_t step = bytes.size() / 1500 + 1;
  std::size_t answers = 0;
  for (std::size_t i = 0; i < bytes.size(); i += step) {
    std::string changed = bytes;
    changed[i] = static_cast<char>(changed[i] ^ 0xFF);
    for (const std::string_view input : {std::string_view(bytes).substr(0, i), std::string_view(changed)}) {
      const auto read = GetParam().read(input);
      ++answers;
      if (!read) continue;
      for (const AttachmentContent& one : read->content.attachments) {
        EXPECT_EQ(gathered(one.data).size(), one.size);
      }
    }
  }
  EXPECT_GE(answers, 1500u);
}

TEST_P(RoundTrip, ReadsNothingFromOtherBytes) {
  EXPECT_FALSE(GetParam().read("").has_value());
  EXPECT_FALSE(GetParam().read("From: a@example.org\n\nhello\n").has_value());
  EXPECT_FALSE(GetParam().read(std::string(100'000, '\xD0')).has_value());
}

}  // namespace
}  // namespace quillfile::formats
