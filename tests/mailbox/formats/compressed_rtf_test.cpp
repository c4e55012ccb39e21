#include "hosts/mailbox/formats/rtf/compressed_rtf.h"

#include <gtest/gtest.h>

#include "hosts/mailbox/formats/little_endian.h"

namespace quillfile::formats {
namespace {

using namespace std::string_view_literals;

// The two examples that [MS-OXRTFCP] gives byte by byte.
TEST(CompressedRtf, ReadsTheFirstPublishedExample) {
  const auto bytes =
      "\x2d\x00\x00\x00\x2b\x00\x00\x00\x4c\x5a\x46\x75\xf1\xc5\xc7\xa7\x03\x00\x0a\x00\x72\x63\x70\x67\x31"
      "\x32\x35"
      "\x42\x32\x0a\xf3\x20\x68\x65\x6c\x09\x00\x20\x62\x77\x05\xb0\x6c\x64\x7d\x0a\x80\x0f\xa0"sv;
  const DecompressedRtf read = decompressRtf(bytes);
  EXPECT_EQ(read.rtf, "{\\rtf1\\ansi\\ansicpg1252\\pard hello world}\r\n");
  EXPECT_TRUE(read.intact);
}

TEST(CompressedRtf, ReadsTheExampleThatReachesBeyondWhatWasWritten) {
  const auto bytes =
      "\x1a\x00\x00\x00\x1c\x00\x00\x00\x4c\x5a\x46\x75\xe2\xd4\x4b\x51\x41\x00\x04\x20\x57\x58\x59\x5a\x0d"
      "\x6e\x7d"
      "\x01\x0e\xb0"sv;
  const DecompressedRtf read = decompressRtf(bytes);
  EXPECT_EQ(read.rtf, "{\\rtf1 WXYZWXYZWXYZWXYZWXYZ}");
  EXPECT_TRUE(read.intact);
}

TEST(CompressedRtf, GivesBackWhatItCompressed) {
  std::string text = "{\\rtf1 ";
  for (int i = 0; i < 20'000; ++i)
    text += "word" + std::to_string(i * i % 977) + (i % 7 == 0 ? "\\par " : " ");
  for (const std::string& one : {std::string(), std::string("x"), std::string(10'000, 'a'), text}) {
    const std::string compressed = compressRtf(one);
    const DecompressedRtf read = decompressRtf(compressed);
    EXPECT_EQ(read.rtf, one);
    EXPECT_TRUE(read.intact);
  }
  EXPECT_LT(compressRtf(text).size(), text.size() / 2);
}

TEST(CompressedRtf, ReadsRtfThatWasStoredAsItIs) {
  std::string bytes;
  put32(bytes, 12 + 5);
  put32(bytes, 5);
  bytes += "MELA";
  put32(bytes, 0);
  bytes += "{rtf}";
  const DecompressedRtf read = decompressRtf(bytes);
  EXPECT_EQ(read.rtf, "{rtf}");
  EXPECT_TRUE(read.intact);
}

// A size that lies makes no memory: sixteen bytes that promise four gigabytes give what they have.
TEST(CompressedRtf, IsNotMisledByItsSizes) {
  std::string bomb;
  put32(bomb, 0xFFFFFFFF);
  put32(bomb, 0xFFFFFFFF);
  bomb += "LZFu";
  put32(bomb, 0);
  for (int i = 0; i < 1000; ++i) bomb += std::string("\xFF") + std::string(16, '\x0F');
  const DecompressedRtf read = decompressRtf(bomb);
  EXPECT_FALSE(read.intact);
  EXPECT_LE(read.rtf.size(), bomb.size() * 9);
}

TEST(CompressedRtf, GrowsNoLongerThanItMay) {
  const std::string rtf = "{" + std::string(10'000, 'x') + "}", bytes = compressRtf(rtf);
  EXPECT_EQ(decompressRtf(bytes, 100).rtf, rtf.substr(0, 100));
  EXPECT_FALSE(decompressRtf(bytes, rtf.size() - 1).intact);
  EXPECT_TRUE(decompressRtf(bytes, rtf.size()).intact);
}

TEST(CompressedRtf, SaysWhenItIsDamaged) {
  std::string bytes = compressRtf("{\\rtf1 some words that are here}");
  bytes[20] = static_cast<char>(bytes[20] ^ 1);
  EXPECT_FALSE(decompressRtf(bytes).intact);
  EXPECT_FALSE(decompressRtf("short").intact);
}

}  // namespace
}  // namespace quillfile::formats
