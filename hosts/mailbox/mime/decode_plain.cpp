// The second decoder: strict, a byte at a time, and independent of the first, so that a mistake of one is
// seen.
#include <memory>

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
    for (const char c : {'\r', '\n', ' ', '\t'}) of[static_cast<unsigned char>(c)] = blank;
  }
};
constexpr Kinds kinds;

// What was decoded goes on in stretches, so that memory does not grow with it.
class Stretches {
 public:
  explicit Stretches(const Sink& sink) : sink_(sink) {}
  void add(char byte) { bytes_[size_++] = byte; }
  void passOn() {
    if (size_ > 0) sink_({bytes_.get(), size_});
    size_ = 0;
  }
  // To be called before at most `room` bytes are added. Whether it passed any on.
  bool passOnWhenFull() {
    const bool full = size_ + room > capacity;
    if (full) passOn();
    return full;
  }

 private:
  static constexpr std::size_t capacity = 64 << 10;
  static constexpr std::size_t room = 8;
  const Sink& sink_;
  std::unique_ptr<char[]> bytes_{new char[capacity]};
  std::size_t size_ = 0;
};

// Groups of four digits with line ends and blanks anywhere between them; a padded group is the last one.
bool plainBase64(std::string_view encoded, Stretches& out, Progress& progress) {
  const auto addGroup = [&](unsigned bits) {
    out.add(static_cast<char>(bits / 65536));
    out.add(static_cast<char>(bits / 256 % 256));
    out.add(static_cast<char>(bits % 256));
  };
  unsigned bits = 0, digits = 0, pads = 0;
  for (std::size_t i = 0; i < encoded.size(); ++i) {
    if (out.passOnWhenFull()) progress.reached(i);
    const auto kindAt = [&](std::size_t n) -> unsigned {
      return kinds.of[static_cast<unsigned char>(encoded[n])];
    };
    // Nearly all groups stand together.
    if (digits == 0 && pads == 0 && encoded.size() - i >= 4) {
      const unsigned a = kindAt(i), b = kindAt(i + 1), c = kindAt(i + 2), d = kindAt(i + 3);
      if ((a | b | c | d) < blank) {
        addGroup(((a * 64 + b) * 64 + c) * 64 + d);
        i += 3;
        continue;
      }
    }
    const unsigned kind = kindAt(i);
    if (kind == blank) continue;
    if (kind == other || (kind == pad && (digits < 2 || digits + pads == 4)) || (kind < blank && pads > 0))
      return false;
    if (kind == pad) {
      ++pads;
      continue;
    }
    bits = bits * 64 + kind;
    if (++digits < 4) continue;
    addGroup(bits);
    bits = digits = 0;
  }
  if (digits == 3) out.add(static_cast<char>(bits / 1024)), out.add(static_cast<char>(bits / 4 % 256));
  if (digits == 2) out.add(static_cast<char>(bits / 16));
  out.passOn();
  return digits == 0 || digits + pads == 4;
}

int hexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  const int letter = c | 0x20;
  return letter >= 'a' && letter <= 'f' ? letter - 'a' + 10 : -1;
}

bool plainQuotedPrintable(std::string_view encoded, Stretches& out, Progress& progress) {
  for (std::size_t i = 0; i < encoded.size(); ++i) {
    if (out.passOnWhenFull()) progress.reached(i);
    if (encoded[i] != '=') {
      out.add(encoded[i]);
      continue;
    }
    const auto next = [&](std::size_t n) { return i + n < encoded.size() ? encoded[i + n] : '\n'; };
    if (next(1) == '\n') {
      i += 1;
    } else if (next(1) == '\r' && next(2) == '\n') {
      i += 2;
    } else if (hexDigit(next(1)) >= 0 && hexDigit(next(2)) >= 0) {
      out.add(static_cast<char>(hexDigit(next(1)) * 16 + hexDigit(next(2))));
      i += 2;
    } else {
      return false;
    }
  }
  out.passOn();
  return true;
}

}  // namespace

bool decodePlain(Encoding encoding, std::string_view encoded, const Sink& sink, const Behind& behind) {
  Stretches out{sink};
  Progress progress{behind};
  const auto decoder = encoding == Encoding::base64             ? plainBase64
                       : encoding == Encoding::quoted_printable ? plainQuotedPrintable
                                                                : nullptr;
  const bool exact = decoder && decoder(encoded, out, progress);
  progress.ended(encoded.size());
  return exact;
}

std::optional<std::string> decodePlain(Encoding encoding, std::string_view encoded) {
  std::string all;
  const bool exact = decodePlain(encoding, encoded, [&](std::string_view bytes) { all += bytes; });
  return exact ? std::optional{std::move(all)} : std::nullopt;
}

}  // namespace quillfile::mime
