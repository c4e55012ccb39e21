// The second decoder: strict, a byte at a time, and independent of the first, so that a mistake of one is
// seen.
#include "hosts/mailbox/mime/decode.h"

namespace quillfile::mime {
namespace {

enum : unsigned char { blank = 64, pad = 65, other = 66 };  // beside the values 0 to 63 of the digits

struct Kinds {
  unsigned char of[256];

  constexpr Kinds() : of{} {
    for (int c = 0; c < 256; ++c) {
      const bool upper = c >= 'A' && c <= 'Z', lower = c >= 'a' && c <= 'z', number = c >= '0' && c <= '9';
      const int value = upper ? c - 'A' : lower ? c - 'a' + 26 : number ? c - '0' + 52 : other;
      of[c] = static_cast<unsigned char>(value);
    }
    of[static_cast<int>('+')] = 62;
    of[static_cast<int>('/')] = 63;
    of[static_cast<int>('=')] = pad;
    for (const char c : {'\r', '\n', ' ', '\t'}) of[static_cast<int>(c)] = blank;
  }
};
constexpr Kinds kinds;

// Groups of four digits with line ends and blanks anywhere between them; a padded group is the last one.
bool plainBase64(std::string_view encoded, std::string& out) {
  out.resize(encoded.size() / 4 * 3 + 3);
  std::size_t size = 0;
  unsigned bits = 0, digits = 0, pads = 0;
  for (const char c : encoded) {
    const auto kind = kinds.of[static_cast<unsigned char>(c)];
    if (kind == blank) continue;
    if (kind == other || (kind == pad && (digits < 2 || digits + pads == 4)) || (kind < blank && pads > 0))
      return false;
    if (kind == pad) {
      ++pads;
      continue;
    }
    bits = bits * 64 + kind;
    if (++digits < 4) continue;
    out[size] = static_cast<char>(bits / 65536);
    out[size + 1] = static_cast<char>(bits / 256 % 256);
    out[size + 2] = static_cast<char>(bits % 256);
    size += 3;
    bits = digits = 0;
  }
  if (digits == 3)
    out[size++] = static_cast<char>(bits / 1024), out[size++] = static_cast<char>(bits / 4 % 256);
  if (digits == 2) out[size++] = static_cast<char>(bits / 16);
  out.resize(size);
  return digits == 0 || digits + pads == 4;
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
  const bool exact = encoding == Encoding::base64             ? plainBase64(encoded, out)
                     : encoding == Encoding::quoted_printable ? plainQuotedPrintable(encoded, out)
                                                              : false;
  return exact ? std::optional{std::move(out)} : std::nullopt;
}

}  // namespace quillfile::mime
