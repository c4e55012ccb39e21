#include <cstdint>

#include "hosts/mailbox/mime/decoding.h"

namespace quillfile::mime {
namespace {

constexpr Doubt strayBytes = u"its base64 has bytes that do not belong there";
constexpr Doubt afterPadding = u"its base64 goes on after its end";
constexpr Doubt cutOff = u"its base64 is cut off";

bool isBlank(char c) { return c == '\n' || c == '\r' || c == ' ' || c == '\t'; }

// The digits of a group that is not complete yet.
struct Group {
  std::uint32_t bits = 0;
  unsigned digits = 0;
  unsigned pads = 0;

  void add(unsigned char value) {
    bits = bits << 6 | value;
    ++digits;
  }
  // Two digits hold one byte, three hold two, four hold three; the bits left over are dropped.
  void flush(Chunks& out) {
    const unsigned bytes = digits * 6 / 8;
    bits >>= digits * 6 % 8;
    for (auto left = bytes; left-- > 0;) out.put(static_cast<char>(bits >> left * 8));
    *this = {};
  }
};

}  // namespace

Doubt decodeBase64(std::string_view encoded, Chunks& out, Progress& progress) {
  static const DigitRun digitRun = fastestDigitRun();
  constexpr std::size_t longestRun = 4096;
  Doubt doubt;
  Group group;
  for (std::size_t at = 0; at < encoded.size();) {
    const char c = encoded[at];
    const auto value = base64Value(c);
    if (value < 64 && group.digits == 0) {
      const auto size = std::min(encoded.size() - at, longestRun);
      const auto taken = digitRun(encoded.data() + at, size, out.room(size / 4 * 3));
      out.written(taken / 4 * 3);
      at += taken;
      progress.reached(at);
      if (taken > 0) continue;
    }
    ++at;
    if (value < 64) {
      if (group.pads > 0) doubt = strayBytes;
      group.pads = 0;
      group.add(value);
      if (group.digits == 4) group.flush(out);
    } else if (c == '=' && group.digits >= 2) {
      if (group.digits + ++group.pads < 4) continue;
      group.flush(out);
      const bool onlyBlanks =
          std::all_of(encoded.begin() + static_cast<std::ptrdiff_t>(at), encoded.end(), isBlank);
      return onlyBlanks ? doubt : afterPadding;
    } else if (!isBlank(c)) {
      doubt = strayBytes;
    }
  }
  if (group.digits > 0) doubt = cutOff;
  group.flush(out);
  return doubt;
}

}  // namespace quillfile::mime
