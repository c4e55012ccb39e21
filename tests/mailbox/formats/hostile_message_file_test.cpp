// Message files that nobody writes in good faith. (Sectors that lead in circles and sizes that lie are the
// compound file's business, and tested there.)
#include <gtest/gtest.h>

#include "hosts/mailbox/formats/little_endian.h"
#include "hosts/mailbox/formats/msg/message_file.h"
#include "hosts/mailbox/formats/msg/names.h"

namespace quillfile::formats {
namespace {

using namespace msg;
using mapi::Id;
using mapi::Type;

std::string row(Id id, Type type, std::uint64_t value) {
  std::string result;
  put32(result, tagOf(id, type));
  put32(result, 6);
  put64(result, value);
  return result;
}

ReadMessage read(CompoundWriter& file) {
  const std::string bytes = gathered([&](const ByteSink& sink) { file.write(sink); });
  const auto result = readMessageFile(bytes);
  EXPECT_TRUE(result.has_value());
  return result.value_or(ReadMessage{});
}

TEST(HostileMessageFile, OfTenThousandPropertiesKeepsTheFirstOfEach) {
  CompoundWriter file(kMessageClassId);
  std::string rows(kTopHeader, '\0');
  for (int i = 0; i < 10'000; ++i) {
    rows += row(Id::importance, Type::int32, i == 0 ? 2 : 0);
    rows += row(static_cast<Id>(0x8000 + i), Type::binary, 0xFFFFFFFF);
  }
  file.addStream(CompoundWriter::kRoot, kProperties, rows);
  const ReadMessage read = formats::read(file);
  EXPECT_EQ(read.content.importance, Importance::high);
  EXPECT_TRUE(read.doubts.empty());
}

TEST(HostileMessageFile, SaysWhenAPropertyHasNoValue) {
  CompoundWriter file(kMessageClassId);
  const std::string rows = std::string(kTopHeader, '\0') + row(Id::subject, Type::unicode, 0xFFFFFFFF);
  file.addStream(CompoundWriter::kRoot, kProperties, rows);
  const ReadMessage read = formats::read(file);
  EXPECT_EQ(read.content.subject, u"");
  EXPECT_EQ(read.doubts, std::vector<Text>{u"The message file is damaged"});
}

TEST(HostileMessageFile, HasAtMostSoManyMessagesInMessages) {
  CompoundWriter file(kMessageClassId);
  auto storage = CompoundWriter::kRoot;
  for (int depth = 1; depth <= 200; ++depth) {
    const bool top = depth == 1;
    file.addStream(storage, kProperties, std::string(top ? kTopHeader : kEmbeddedHeader, '\0'));
    const auto attachment = file.addStorage(storage, Text(kAttachment) + hex8(0));
    file.addStream(attachment, kProperties,
                   std::string(kPartHeader, '\0') + row(Id::attach_method, Type::int32, 5));
    storage = file.addStorage(attachment, valueName(tagOf(Id::attach_data, Type::object)));
  }
  const ReadMessage read = formats::read(file);
  int depth = 1;
  for (const MessageContent* at = &read.content; at->attachments[0].message; ++depth)
    at = at->attachments[0].message.get();
  EXPECT_EQ(depth, kMaxDepth);
  EXPECT_EQ(read.doubts, std::vector<Text>{u"The messages inside the message are nested too deeply"});
}

}  // namespace
}  // namespace quillfile::formats
