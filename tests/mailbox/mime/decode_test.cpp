#include "hosts/mailbox/mime/decode.h"

#include <gtest/gtest.h>

#include "hosts/mailbox/mime/decoding.h"
#include "hosts/mailbox/mime/encode.h"

using namespace quillfile;
using namespace quillfile::mime;

namespace {

struct Row {
  const char* what;
  Encoding encoding;
  std::string encoded;
  std::string bytes;
  bool doubted = false;
};

const Row rows[] = {
    {.what = "7bit", .encoding = Encoding::identity, .encoded = "a\r\n", .bytes = "a\r\n"},
    {.what = "an unknown encoding",
     .encoding = Encoding::unknown,
     .encoded = "YQ==",
     .bytes = "YQ==",
     .doubted = true},

    {.what = "nothing", .encoding = Encoding::base64, .encoded = "", .bytes = ""},
    {.what = "only line ends", .encoding = Encoding::base64, .encoded = "\r\n\r\n", .bytes = ""},
    {.what = "one pad", .encoding = Encoding::base64, .encoded = "aGVsbG8=", .bytes = "hello"},
    {.what = "two pads", .encoding = Encoding::base64, .encoded = "aGVsbA==\r\n", .bytes = "hell"},
    {.what = "wrapped anyhow",
     .encoding = Encoding::base64,
     .encoded = "a\r\nGV\nsb G8\t=",
     .bytes = "hello"},
    {.what = "no padding",
     .encoding = Encoding::base64,
     .encoded = "aGVsbG8",
     .bytes = "hello",
     .doubted = true},
    {.what = "one digit too many",
     .encoding = Encoding::base64,
     .encoded = "aGVsb",
     .bytes = "hel",
     .doubted = true},
    {.what = "data after the padding",
     .encoding = Encoding::base64,
     .encoded = "aGVsbG8=IHdvcmxkIQ==",
     .bytes = "hello",
     .doubted = true},
    {.what = "a pad that ends nothing",
     .encoding = Encoding::base64,
     .encoded = "aGVs=bG8h",
     .bytes = "hello!",
     .doubted = true},
    {.what = "stray characters",
     .encoding = Encoding::base64,
     .encoded = "aG*V\x80sbG8=",
     .bytes = "hello",
     .doubted = true},
    {.what = "a stray character in a long line",
     .encoding = Encoding::base64,
     .encoded = std::string(70, 'A') + "*" + std::string(70, 'A'),
     .bytes = std::string(105, '\0'),
     .doubted = true},

    {.what = "nothing", .encoding = Encoding::quoted_printable, .encoded = "", .bytes = ""},
    {.what = "numbers",
     .encoding = Encoding::quoted_printable,
     .encoded = "=E4=c3=3D x",
     .bytes = "\xE4\xC3= x"},
    {.what = "soft line breaks",
     .encoding = Encoding::quoted_printable,
     .encoded = "a=\r\nb=\nc=",
     .bytes = "abc"},
    {.what = "line ends",
     .encoding = Encoding::quoted_printable,
     .encoded = "a\r\n\r\nb\n",
     .bytes = "a\r\n\r\nb\n"},
    {.what = "no number",
     .encoding = Encoding::quoted_printable,
     .encoded = "a=xy=4",
     .bytes = "a=xy=4",
     .doubted = true},
    {.what = "two equals signs",
     .encoding = Encoding::quoted_printable,
     .encoded = "a==b",
     .bytes = "a=b",
     .doubted = true},
    {.what = "a blank after the equals sign",
     .encoding = Encoding::quoted_printable,
     .encoded = "a= \nb",
     .bytes = "a= \nb",
     .doubted = true},

    {.what = "a file",
     .encoding = Encoding::uuencode,
     .encoded = "text\r\nbegin 644 a.txt\r\n%:&5L;&\\\r\n`\r\nend\r\n",
     .bytes = "hello"},
    {.what = "two lines",
     .encoding = Encoding::uuencode,
     .encoded = "begin 644 a\n#:&5L\n\";&\\ \n \nend\n",
     .bytes = "hello"},
    {.what = "no end",
     .encoding = Encoding::uuencode,
     .encoded = "begin 644 a\n#:&5L\n",
     .bytes = "hel",
     .doubted = true},
    {.what = "no begin",
     .encoding = Encoding::uuencode,
     .encoded = "#:&5L\n",
     .bytes = "#:&5L\n",
     .doubted = true},
    {.what = "a broken line",
     .encoding = Encoding::uuencode,
     .encoded = "begin 644 a\n#:&5Lxyz\n`\nend\n",
     .bytes = "hel",
     .doubted = true},
};

std::string pattern(std::size_t size) {
  std::string bytes;
  std::uint32_t state = 1;
  for (std::size_t i = 0; i < size; ++i)
    bytes += static_cast<char>((state = state * 1664525 + 1013904223) >> 24);
  return bytes;
}

}  // namespace

TEST(Decode, ReadsWhatTheCommonReadersReadAndDoubtsTheRest) {
  for (const auto& row : rows) {
    Doubt doubt;
    EXPECT_EQ(decoded(row.encoding, row.encoded, &doubt), row.bytes) << row.what;
    EXPECT_EQ(!doubt.empty(), row.doubted) << row.what;
  }
}

TEST(Decode, AgreesWithThePlainDecoderOrDoubts) {
  for (const auto& row : rows) {
    if (row.encoding != Encoding::base64 && row.encoding != Encoding::quoted_printable) continue;
    const auto plain = decodePlain(row.encoding, row.encoded);
    EXPECT_EQ(plain.has_value(), !row.doubted) << row.what;
    EXPECT_EQ(plain.value_or(row.bytes), row.bytes) << row.what;
  }
}

TEST(Decode, ReadsItsOwnBase64BackAtEveryLength) {
  const auto bytes = pattern(300'000);
  for (std::size_t size :
       {0, 1, 2, 3, 11, 12, 13, 23, 24, 25, 56, 57, 58, 114, 115, 4096, 299'999, 300'000}) {
    const auto wanted = bytes.substr(0, size);
    for (const char* lineEnd : {"\r\n", "\n", ""}) {
      const auto encoded = toBase64(wanted, lineEnd);
      Doubt doubt;
      EXPECT_EQ(encoded.size(), base64Size(size, std::string{lineEnd}.size()));
      EXPECT_EQ(decoded(Encoding::base64, encoded, &doubt), wanted) << size;
      EXPECT_EQ(doubt, u"");
      EXPECT_EQ(decodePlain(Encoding::base64, encoded), wanted) << size;
    }
  }
}

TEST(Decode, FindsEveryByteThatIsNoDigitInARun) {
  const std::string digits = toBase64(pattern(96), "");
  for (std::size_t at = 0; at < digits.size(); at += 5) {
    for (int byte = 0; byte < 256; ++byte) {
      auto run = digits;
      run[at] = static_cast<char>(byte);
      std::string fast(128, '\0'), plain(128, '\0');
      const auto taken = fastestDigitRun()(run.data(), run.size(), fast.data());
      ASSERT_EQ(taken, plainDigitRun(run.data(), run.size(), plain.data())) << at << " " << byte;
      ASSERT_EQ(fast.substr(0, taken / 4 * 3), plain.substr(0, taken / 4 * 3));
    }
  }
}

TEST(Decode, TellsTheOwnerOfTheBytesHowFarItHasCome) {
  const auto encoded = toBase64(std::string(9 << 20, 'x'), "\r\n");
  std::size_t told = 0, calls = 0, size = 0;
  const auto doubt = decode(
      Encoding::base64, encoded, [&](std::string_view chunk) { size += chunk.size(); },
      [&](std::size_t offset) { ++calls, told = offset; });
  EXPECT_EQ(doubt, u"");
  EXPECT_EQ(size, std::size_t{9} << 20);
  EXPECT_EQ(calls, encoded.size() / behindStep + 1);
  EXPECT_EQ(told, encoded.size());
}

TEST(Encode, WritesQuotedPrintableThatIsReadBack) {
  const std::string texts[] = {"",
                               "plain",
                               "\xE4 \t",
                               "a \nb\t\n",
                               "--boundary\n-x\n",
                               std::string(200, '-'),
                               std::string(300, 'x') + "\n" + std::string(76, '='),
                               "From x\n.\n"};
  for (const auto& text : texts) {
    const auto encoded = toQuotedPrintable(text, "\n");
    EXPECT_EQ(decodePlain(Encoding::quoted_printable, encoded), text);
    for (std::size_t begin = 0; begin < encoded.size();) {
      const auto end = std::min(encoded.find('\n', begin), encoded.size());
      EXPECT_LE(end - begin, 76u);
      EXPECT_NE(encoded.substr(begin, 1), "-");
      begin = end + 1;
    }
  }
}

TEST(Encodings, AreNamedInAnyCaseAndWithComments) {
  EXPECT_EQ(encodingNamed("BASE64"), Encoding::base64);
  EXPECT_EQ(encodingNamed(" Quoted-Printable (really)"), Encoding::quoted_printable);
  EXPECT_EQ(encodingNamed("(a \\) comment (in one)) base64"), Encoding::base64);
  EXPECT_EQ(encodingNamed("\"base64\""), Encoding::base64);
  EXPECT_EQ(encodingNamed(""), Encoding::identity);
  EXPECT_EQ(encodingNamed("x-uue"), Encoding::uuencode);
  EXPECT_EQ(encodingNamed("x-yenc"), Encoding::unknown);
}
