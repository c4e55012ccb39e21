#include "hosts/mailbox/formats/mapi/code_page.h"

#include <array>
#include <charconv>

#include "hosts/mailbox/formats/little_endian.h"
#include "hosts/mailbox/mime/charset.h"
#include "hosts/mailbox/mime/header.h"

namespace quillfile::formats::mapi {
namespace {

struct Row {
  std::uint32_t number;
  std::string_view name;
};

// The first name of a number is the one that is written.
constexpr std::array kCodePages = {
    Row{65001, "utf-8"},        Row{20127, "us-ascii"},    Row{28591, "iso-8859-1"},
    Row{28592, "iso-8859-2"},   Row{28593, "iso-8859-3"},  Row{28594, "iso-8859-4"},
    Row{28595, "iso-8859-5"},   Row{28596, "iso-8859-6"},  Row{28597, "iso-8859-7"},
    Row{28598, "iso-8859-8"},   Row{28599, "iso-8859-9"},  Row{28603, "iso-8859-13"},
    Row{28605, "iso-8859-15"},  Row{20866, "koi8-r"},      Row{21866, "koi8-u"},
    Row{932, "shift_jis"},      Row{936, "gb2312"},        Row{936, "gbk"},
    Row{949, "ks_c_5601-1987"}, Row{950, "big5"},          Row{50220, "iso-2022-jp"},
    Row{51932, "euc-jp"},       Row{51949, "euc-kr"},      Row{54936, "gb18030"},
    Row{50225, "iso-2022-kr"},  Row{10000, "macintosh"},   Row{874, "windows-874"},
    Row{437, "ibm437"},         Row{850, "ibm850"},        Row{852, "ibm852"},
    Row{65000, "utf-7"},        Row{1250, "windows-1250"}, Row{1251, "windows-1251"},
    Row{1252, "windows-1252"},  Row{1253, "windows-1253"}, Row{1254, "windows-1254"},
    Row{1255, "windows-1255"},  Row{1256, "windows-1256"}, Row{1257, "windows-1257"},
    Row{1258, "windows-1258"},
};

constexpr std::uint32_t kUtf16 = 1200;

}  // namespace

std::string charsetOf(std::uint32_t codePage) {
  for (const Row& row : kCodePages) {
    if (row.number == codePage) return std::string(row.name);
  }
  return "windows-" + std::to_string(codePage);
}

std::uint32_t codePageOf(std::string_view charset, std::uint32_t otherwise) {
  for (const Row& row : kCodePages) {
    if (mime::equalWords(row.name, charset)) return row.number;
  }
  return otherwise;
}

Text fromCodePage(std::string_view bytes, std::uint32_t codePage) {
  if (codePage == kUtf8) return fromUtf8(bytes);
  if (codePage == kUtf16) return utf16Text(bytes);
  return mime::fromCharset(bytes, charsetOf(codePage));
}

std::string toCodePage(TextView text, std::uint32_t codePage) {
  const std::string charset = charsetOf(codePage);
  if (auto whole = mime::toCharset(text, charset)) return *whole;
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool pair = text[i] >= 0xD800 && text[i] < 0xDC00 && i + 1 < text.size();
    result += mime::toCharset(text.substr(i, pair ? 2 : 1), charset).value_or("?");
    i += pair ? 1 : 0;
  }
  return result;
}

}  // namespace quillfile::formats::mapi
