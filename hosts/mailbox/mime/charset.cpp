#include "hosts/mailbox/mime/charset.h"

#include <iconv.h>

#include <algorithm>
#include <bit>
#include <cerrno>

#include "hosts/mailbox/mime/header.h"

namespace quillfile::mime {
namespace {

constexpr Doubt unknownCharset = u"its character set is unknown";
constexpr Doubt badBytes = u"it has bytes that its character set does not know";
constexpr char16_t replacement = 0xFFFD;

// Names that mail uses for what iconv calls otherwise. The East Asian ones stand for their common supersets,
// because that is what the senders' systems write. An empty iconv name: nobody really said, see guess.
struct Alias {
  std::string_view name;
  const char* iconvName;
};
constexpr Alias aliases[] = {
    {"", ""},
    {"us-ascii", ""},
    {"ascii", ""},
    {"ansi_x3.4-1968", ""},
    {"iso-8859-1", ""},
    {"iso8859-1", ""},
    {"iso_8859-1", ""},
    {"latin1", ""},
    {"latin-1", ""},
    {"unknown-8bit", ""},
    {"x-unknown", ""},
    {"unknown", ""},
    {"default", ""},
    {"8bit", ""},
    {"7bit", ""},
    {"binary", ""},
    {"utf8", "UTF-8"},
    {"utf-8-sig", "UTF-8"},
    {"utf8mb4", "UTF-8"},
    {"unicode-1-1-utf-7", "UTF-7"},
    {"unicode-1-1-utf-8", "UTF-8"},
    {"gb2312", "GB18030"},
    {"gbk", "GB18030"},
    {"x-gbk", "GB18030"},
    {"gb_2312-80", "GB18030"},
    {"ks_c_5601-1987", "CP949"},
    {"ks_c_5601", "CP949"},
    {"euc-kr", "CP949"},
    {"shift_jis", "CP932"},
    {"shift-jis", "CP932"},
    {"x-sjis", "CP932"},
    {"windows-31j", "CP932"},
    {"big5", "BIG5-HKSCS"},
    {"x-big5", "BIG5-HKSCS"},
    {"iso-8859-8-i", "ISO-8859-8"},
    {"iso-8859-8-e", "ISO-8859-8"},
    {"iso-8859-6-i", "ISO-8859-6"},
    {"iso-8859-6-e", "ISO-8859-6"},
    {"x-mac-roman", "MACINTOSH"},
    {"macroman", "MACINTOSH"},
    {"x-mac-cyrillic", "MAC-CYRILLIC"},
    {"cp-850", "CP850"},
    {"x-cp1251", "CP1251"},
    {"x-cp1252", "CP1252"},
    {"windows-874", "CP874"},
    {"iso-8859-11", "TIS-620"},
    {"koi8", "KOI8-R"},
};

// What iconv is asked for; none for a name that cannot be one. Other characters than these never reach iconv,
// where
// "/" begins options and a name without letters means the locale's charset.
std::optional<std::string> iconvName(std::string_view charset) {
  auto name = lowerCase(trimmed(charset));
  for (const auto& alias : aliases) {
    if (alias.name == name) return alias.iconvName;
  }
  const auto isLetter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9'); };
  const auto isOdd = [&](char c) { return !isLetter(c) && c != '-' && c != '_' && c != '.' && c != ':'; };
  if (!isLetter(name[0]) || std::any_of(name.begin(), name.end(), isOdd)) return std::nullopt;
  return name;
}

constexpr const char* nobody = "x-nobody";  // no charset that iconv knows
constexpr const char* utf16 = std::endian::native == std::endian::little ? "UTF-16LE" : "UTF-16BE";

class Converter {
 public:
  Converter(const char* to, const char* from) : handle_{iconv_open(to, from)} {}
  ~Converter() {
    if (known()) iconv_close(handle_);
  }
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;

  // NOLINTNEXTLINE(performance-no-int-to-ptr): iconv_open(3) says it so
  bool known() const { return handle_ != reinterpret_cast<iconv_t>(-1); }

  // Converts as much of `in` as it can, taking it away, and appends to `out`. False when it stopped at a bad
  // byte.
  template <class Out>
  bool convert(std::string_view& in, Out& out) {
    return run(&in, out);
  }
  template <class Out>
  bool flush(Out& out) {
    return run(nullptr, out);
  }

 private:
  template <class Out>  // of bytes, or of UTF-16 units
  bool run(std::string_view* in, Out& out) {
    using Unit = typename Out::value_type;
    Unit buffer[4096 / sizeof(Unit)];
    char* from = in ? const_cast<char*>(in->data()) : nullptr;
    std::size_t left = in ? in->size() : 0;
    for (;;) {
      char* to = reinterpret_cast<char*>(buffer);
      std::size_t room = sizeof buffer;
      const auto result = iconv(handle_, in ? &from : nullptr, in ? &left : nullptr, &to, &room);
      const int error = errno;
      out.append(buffer, (sizeof buffer - room) / sizeof(Unit));
      if (in) in->remove_prefix(in->size() - left);
      if (result != static_cast<std::size_t>(-1)) return result == 0;
      if (error != E2BIG) return false;
    }
  }

  iconv_t handle_;
};

Text latin1(std::string_view bytes) {
  Text text;
  for (const char c : bytes) text += static_cast<unsigned char>(c);
  return text;
}

// Where windows-1252 differs from Latin-1; the five places that it leaves empty stay as in Latin-1.
constexpr char16_t windows1252[] = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

void note(Doubt* doubt, Doubt reason) {
  if (doubt) *doubt = reason;
}

}  // namespace

Text fromCharset(std::string_view bytes, std::string_view charset, Doubt* doubt) {
  const auto name = iconvName(charset);
  if (name && name->empty()) return guess(bytes);
  Converter converter{utf16, name ? name->c_str() : nobody};
  if (!converter.known()) {
    note(doubt, unknownCharset);
    return latin1(bytes);
  }
  Text out;
  out.reserve(bytes.size() + bytes.size() / 16);  // room for line ends to be paired in
  while (!converter.convert(bytes, out)) {
    note(doubt, badBytes);
    out += replacement;
    bytes.remove_prefix(std::min<std::size_t>(1, bytes.size()));
  }
  converter.flush(out);
  return out;
}

Text guess(std::string_view bytes) {
  if (isUtf8(bytes)) return fromUtf8(bytes);
  auto text = latin1(bytes);
  for (auto& c : text) {
    if (c >= 0x80 && c <= 0x9F) c = windows1252[c - 0x80];
  }
  return text;
}

std::optional<std::string> toCharset(TextView text, std::string_view charset) {
  auto name = iconvName(charset);
  const bool latin =
      lowerCase(charset).find("8859-1") != std::string::npos || lowerCase(charset).starts_with("latin");
  if (name && name->empty()) name = latin ? "ISO-8859-1" : "ASCII";
  Converter converter{name ? name->c_str() : nobody, utf16};
  if (!converter.known()) return std::nullopt;
  std::string_view in{reinterpret_cast<const char*>(text.data()), text.size() * sizeof(char16_t)};
  std::string out;
  const bool fits = converter.convert(in, out) && in.empty() && converter.flush(out);
  return fits ? std::optional{out} : std::nullopt;
}

// In blocks, which compilers make a few instructions of.
bool isAscii(std::string_view bytes) {
  constexpr std::size_t block = 256;
  for (; !bytes.empty(); bytes.remove_prefix(std::min(block, bytes.size()))) {
    unsigned char all = 0;
    for (const char c : bytes.substr(0, block)) all |= static_cast<unsigned char>(c);
    if (all >= 0x80) return false;
  }
  return true;
}

bool isAsciiIn(std::string_view bytes, std::string_view charset) {
  const auto name = iconvName(charset);
  if (!name) return false;
  const auto known = lowerCase(*name);
  const bool superset =
      known.empty() || known == "utf-8" || known.starts_with("iso-8859-") || known.starts_with("windows-125");
  return superset && isAscii(bytes);
}

bool isUtf8(std::string_view bytes) {
  if (isAscii(bytes)) return true;
  constexpr TextView mark = u"\uFFFD";
  const auto text = fromUtf8(bytes);
  // U+FFFD written out in the bytes is no error: what comes back tells the two apart.
  return text.find(mark) == Text::npos || toUtf8(text) == bytes;
}

}  // namespace quillfile::mime
