// The second decoder: strict, a byte at a time, and independent of the first, so that a mistake of one is
// seen.
#include "hosts/mailbox/mime/decode.h"

namespace quillfile::mime {
namespace {

int sixBits(char c) {
  if (c >= 'A' && c <= 'Z') return c - 'A';
  if (c >= 'a' && c <= 'z') return c - 'a' + 26;
  if (c >= '0' && c <= '9') return c - '0' + 52;
  return c == '+' ? 62 : c == '/' ? 63 : -1;
}

// Groups of four digits with line ends and blanks anywhere between them; a padded group is the last one.
bool plainBase64(std::string_view encoded, std::string& out) {
  int group[4];
  int digits = 0, pads = 0;
  bool ended = false;
  for (const char c : encoded) {
    if (c == '\r' || c == '\n' || c == ' ' || c == '\t') continue;
    const bool pad = c == '=';
    if (ended || (pad && digits < 2) || (!pad && (pads > 0 || sixBits(c) < 0))) return false;
    group[digits++] = pad ? 0 : sixBits(c);
    pads += pad;
    if (digits < 4) continue;
    const int bits = group[0] * 262144 + group[1] * 4096 + group[2] * 64 + group[3];
    out += static_cast<char>(bits / 65536);
    if (pads < 2) out += static_cast<char>(bits / 256 % 256);
    if (pads < 1) out += static_cast<char>(bits % 256);
    ended = pads > 0;
    digits = 0;
  }
  return digits == 0;
}

int hexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  const int letter = c | 0x20;
  return letter >= 'a' && letter <= 'f' ? letter - 'a' + 10 : -1;
}

bool plainQuotedPrintable(std::string_view encoded, std::string& out) {
  for (std::size_t i = 0; i < encoded.size(); ++i) {
    if (encoded[i] != '=') {
      out += encoded[i];
      continue;
    }
    const auto next = [&](std::size_t n) { return i + n < encoded.size() ? encoded[i + n] : '\n'; };
    if (next(1) == '\n') {
      i += 1;
    } else if (next(1) == '\r' && next(2) == '\n') {
      i += 2;
    } else if (hexDigit(next(1)) >= 0 && hexDigit(next(2)) >= 0) {
      out += static_cast<char>(hexDigit(next(1)) * 16 + hexDigit(next(2)));
      i += 2;
    } else {
      return false;
    }
  }
  return true;
}

}  // namespace

std::optional<std::string> decodePlain(Encoding encoding, std::string_view encoded) {
  std::string out;
  out.reserve(encoded.size());
  const bool exact = encoding == Encoding::base64             ? plainBase64(encoded, out)
                     : encoding == Encoding::quoted_printable ? plainQuotedPrintable(encoded, out)
                                                              : false;
  return exact ? std::optional{std::move(out)} : std::nullopt;
}

}  // namespace quillfile::mime
