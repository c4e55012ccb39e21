// TNEF streams made by hand, honest and not.
#include "hosts/mailbox/formats/tnef/tnef.h"

#include <gtest/gtest.h>

#include "hosts/mailbox/formats/little_endian.h"
#include "hosts/mailbox/formats/tnef/attributes.h"
#include "tests/mailbox/formats/sample_messages.h"

namespace quillfile::formats {
namespace {

using namespace tnef;
using namespace std::string_literals;

std::string attribute(Level level, Attribute id, const std::string& data) {
  std::string result;
  put(result, static_cast<std::uint8_t>(level));
  put32(result, static_cast<std::uint32_t>(id));
  put32(result, data.size());
  result += data;
  put16(result, checksumOf(data));
  return result;
}

std::string stream(const std::string& attributes) {
  std::string result;
  put32(result, kSignature);
  put16(result, 1);
  return result + attributes;
}

// A property with one value of counted bytes.
std::string property(std::uint32_t tag, const std::string& value) {
  std::string result;
  put16(result, tag & 0xFFFF);
  put16(result, tag >> 16);
  put32(result, 1);
  put32(result, value.size());
  result += value;
  result.append((4 - value.size() % 4) % 4, '\0');
  return result;
}

std::string counted(std::uint32_t count, const std::string& rows) {
  std::string result;
  put32(result, count);
  return result + rows;
}

const std::string kFile = attribute(Level::attachment, Attribute::attach_render_data, std::string(14, '\0'));

ReadMessage read(const std::string& bytes) {
  auto result = readTnef(bytes);
  EXPECT_TRUE(result.has_value());
  return result.value_or(ReadMessage{});
}

// Texts are held in memory, attachments are not: those are given whatever is left out.
TEST(Tnef, LeavesOutTextsBeyondTheirRoom) {
  const std::string half(std::size_t{20} << 20, 'x');
  const ReadMessage message = read(stream(
      attribute(Level::message, Attribute::body, half) +
      attribute(Level::message, Attribute::message_properties, counted(1, property(0x1013'0102, half))) +
      kFile + attribute(Level::attachment, Attribute::attach_data, half)));
  EXPECT_EQ(message.content.textBody.size(), half.size());
  EXPECT_EQ(message.content.html.bytes, "");
  EXPECT_FALSE(message.doubts.empty());
  ASSERT_EQ(message.content.attachments.size(), 1u);
  EXPECT_EQ(message.content.attachments[0].size, half.size());
}

TEST(Tnef, TakesDataOutOfThePropertiesWhereNoAttributeHasIt) {
  const std::string binary = attribute(Level::attachment, Attribute::attachment,
                                       counted(1, property(0x37010102, "these are the bytes of the file")));
  const std::string bytes = stream(kFile + binary);
  const ReadMessage read = formats::read(bytes);
  EXPECT_TRUE(read.doubts.empty());
  ASSERT_EQ(read.content.attachments.size(), 1u);
  EXPECT_EQ(gathered(read.content.attachments[0].data), "these are the bytes of the file");
}

TEST(Tnef, GivesAnObjectWithoutTheNameOfItsReader) {
  const std::string object = attribute(Level::attachment, Attribute::attachment,
                                       counted(1, property(0x3701000D,
                                                           "0123456789abcdef"
                                                           "the object")));
  const std::string bytes = stream(kFile + object);
  const ReadMessage read = formats::read(bytes);
  ASSERT_EQ(read.content.attachments.size(), 1u);
  EXPECT_EQ(gathered(read.content.attachments[0].data), "the object");
}

TEST(Tnef, PointsIntoTheBytesItWasGiven) {
  const std::string bytes = stream(kFile + attribute(Level::attachment, Attribute::attach_data, "data") +
                                   attribute(Level::attachment, Attribute::attach_title, "name.txt\0"s));
  const ReadMessage read = formats::read(bytes);
  ASSERT_EQ(read.content.attachments.size(), 1u);
  EXPECT_EQ(read.content.attachments[0].fileName, u"name.txt");
  EXPECT_EQ(read.content.attachments[0].range->data(), bytes.data() + bytes.find("data"));
}

TEST(Tnef, TakesAnAttachmentThatBeginsWithoutItsRendering) {
  const std::string bytes = stream(attribute(Level::attachment, Attribute::attach_title, "a\0"s) +
                                   attribute(Level::attachment, Attribute::attach_data, "b"));
  ASSERT_EQ(read(bytes).content.attachments.size(), 1u);
}

TEST(Tnef, DoubtsAWrongChecksumAndReadsOn) {
  std::string bytes = stream(attribute(Level::message, Attribute::subject, "subject\0"s) +
                             attribute(Level::message, Attribute::body, "body\0"s));
  bytes[bytes.find("subject")] = 'S';
  const ReadMessage read = formats::read(bytes);
  EXPECT_EQ(read.doubts, std::vector<Text>{u"A checksum in the TNEF stream is wrong"});
  EXPECT_EQ(read.content.subject, u"Subject");
  EXPECT_EQ(read.content.textBody, u"body");
}

TEST(Tnef, DoubtsAStreamThatIsCutOffAndGivesWhatIsThere) {
  const std::string whole = stream(kFile + attribute(Level::attachment, Attribute::attach_data, "data"));
  const std::string cut = whole.substr(0, whole.size() - 4);
  const ReadMessage read = formats::read(cut);
  EXPECT_EQ(read.doubts, std::vector<Text>{u"The TNEF stream is cut off"});
  ASSERT_EQ(read.content.attachments.size(), 1u);
  EXPECT_EQ(gathered(read.content.attachments[0].data), "da");
}

TEST(Tnef, ReadsTextInItsCodePageAndTheAddressOfTheSender) {
  std::string page, from;
  put32(page, 1251);
  put32(page, 0);
  put16(from, 4);
  put16(from, 0);
  put16(from, 4);
  put16(from, 18);
  from += "\xC0\xC1\xC2\0SMTP:ada@some.org\0"s;
  const ReadMessage read = formats::read(stream(attribute(Level::message, Attribute::code_page, page) +
                                                attribute(Level::message, Attribute::from, from)));
  EXPECT_EQ(read.content.sender, (Mailbox{u"\u0410\u0411\u0412", u"ada@some.org"}));
}

// Ten thousand properties, a count of four thousand million, and a length that leads out of the stream.
TEST(Tnef, IsNotMisledByCountsAndLengths) {
  std::string many;
  for (int i = 0; i < 10'000; ++i) many += property(0x0037001E, "s" + std::to_string(i));
  const std::string honest =
      stream(attribute(Level::message, Attribute::message_properties, counted(10'000, many)));
  EXPECT_EQ(read(honest).content.subject, u"s0");
  EXPECT_TRUE(read(honest).doubts.empty());

  const std::vector<Text> damaged = {u"The properties in the TNEF stream are damaged"};
  for (const Attribute id : {Attribute::message_properties, Attribute::recipients, Attribute::attachment}) {
    EXPECT_EQ(read(stream(attribute(Level::message, id, counted(0xFFFFFFFF, "")))).doubts, damaged);
    std::string lying = counted(1, property(0x0037001E, "subject"));
    lying[12] = '\xFF';
    EXPECT_EQ(read(stream(attribute(Level::message, id, counted(1, lying)))).doubts, damaged);
  }
}

TEST(Tnef, StopsCountingAttachmentsSomewhere) {
  std::string attributes;
  for (int i = 0; i < 30'000; ++i) attributes += kFile;
  const ReadMessage read = formats::read(stream(attributes));
  EXPECT_EQ(read.content.attachments.size(), 20'000u);
  EXPECT_EQ(read.doubts, std::vector<Text>{u"The TNEF stream has too many attachments and recipients"});
}

TEST(Tnef, OpensMessagesOnlySoDeep) {
  std::string inside = stream(attribute(Level::message, Attribute::subject, "deepest\0"s));
  std::string method;
  put16(method, 3);
  put16(method, 0x3705);
  put32(method, 5);
  for (int i = 0; i < 200; ++i) {
    const std::string object = property(0x3701000D, std::string(kMessageInterface) + inside);
    inside = stream(kFile + attribute(Level::attachment, Attribute::attachment, counted(2, method + object)));
  }
  const ReadMessage read = formats::read(inside);
  EXPECT_EQ(read.doubts, std::vector<Text>{u"The messages inside the message are nested too deeply"});
  int depth = 1;
  for (const MessageContent* at = &read.content; at->attachments[0].message; ++depth) {
    at = at->attachments[0].message.get();
  }
  EXPECT_EQ(depth, kMaxDepth);
}

}  // namespace
}  // namespace quillfile::formats
