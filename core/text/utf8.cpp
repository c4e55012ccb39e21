// UTF-8 and back (RFC 3629), for the edges of the core.
#include "core/text/text.h"

namespace quillfile {
namespace {

constexpr char32_t replacement = 0xFFFD;

struct Decoded {
  char32_t codePoint;
  std::size_t length;  // bytes taken, at least 1
};

// One code point from the front of `bytes`; overlong forms, surrogates and cut-off sequences are replaced
// byte by byte.
Decoded decodeOne(std::string_view bytes) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
  const unsigned char lead = byte(0);
  if (lead < 0x80) return {lead, 1};
  const std::size_t length = lead >= 0xF0 && lead <= 0xF4  ? 4
                             : lead >= 0xE0 && lead < 0xF0 ? 3
                             : lead >= 0xC2 && lead < 0xE0 ? 2
                                                           : 0;
  if (length == 0 || bytes.size() < length) return {replacement, 1};
  char32_t codePoint = lead & (0xFF >> (length + 1));
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0) != 0x80) return {replacement, 1};
    codePoint = codePoint << 6 | (byte(i) & 0x3F);
  }
  constexpr char32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
  const bool valid =
      codePoint >= smallest[length] && codePoint <= 0x10FFFF && (codePoint < 0xD800 || codePoint > 0xDFFF);
  return valid ? Decoded{codePoint, length} : Decoded{replacement, 1};
}

void appendUtf16(Text& text, char32_t codePoint) {
  if (codePoint < 0x10000) {
    text += static_cast<char16_t>(codePoint);
    return;
  }
  codePoint -= 0x10000;
  text += static_cast<char16_t>(0xD800 + (codePoint >> 10));
  text += static_cast<char16_t>(0xDC00 + (codePoint & 0x3FF));
}

void appendUtf8(std::string& bytes, char32_t codePoint) {
  const auto add = [&](char32_t value) { bytes += static_cast<char>(value); };
  if (codePoint < 0x80) {
    add(codePoint);
  } else if (codePoint < 0x800) {
    add(0xC0 | codePoint >> 6), add(0x80 | (codePoint & 0x3F));
  } else if (codePoint < 0x10000) {
    add(0xE0 | codePoint >> 12), add(0x80 | (codePoint >> 6 & 0x3F)), add(0x80 | (codePoint & 0x3F));
  } else {
    add(0xF0 | codePoint >> 18), add(0x80 | (codePoint >> 12 & 0x3F)), add(0x80 | (codePoint >> 6 & 0x3F)),
        add(0x80 | (codePoint & 0x3F));
  }
}

}  // namespace

Text fromUtf8(std::string_view bytes) {
  Text text;
  text.reserve(bytes.size());
  while (!bytes.empty()) {
    const auto [codePoint, length] = decodeOne(bytes);
    appendUtf16(text, codePoint);
    bytes.remove_prefix(length);
  }
  return text;
}

std::string toUtf8(TextView text) {
  std::string bytes;
  bytes.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    char32_t codePoint = text[i];
    const bool high = codePoint >= 0xD800 && codePoint <= 0xDBFF;
    const bool pair = high && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] <= 0xDFFF;
    if (pair) {
      codePoint = 0x10000 + ((codePoint - 0xD800) << 10) + (text[++i] - 0xDC00u);
    } else if (codePoint >= 0xD800 && codePoint <= 0xDFFF) {
      codePoint = replacement;
    }
    appendUtf8(bytes, codePoint);
  }
  return bytes;
}

}  // namespace quillfile
