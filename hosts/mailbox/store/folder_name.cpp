// Modified UTF-7 (RFC 3501, 5.1.3): printable ASCII stands for itself, "&-" for "&", and everything else is
// UTF-16 in base64 without padding and with "," for "/", between "&" and "-".
#include "hosts/mailbox/store/folder_name.h"

#include <cstdint>
#include <optional>

#include "core/text/text.h"

namespace quillfile::mailbox {
namespace {

constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+,";

// The text between "&" and "-"; none when it is not well-formed.
std::optional<Text> decodeRun(std::string_view run) {
  if (run.empty()) return Text{u"&"};
  Text text;
  std::uint32_t bits = 0;
  int count = 0;
  for (const char c : run) {
    const auto value = alphabet.find(c);
    if (value == std::string_view::npos) return std::nullopt;
    bits = bits << 6 | static_cast<std::uint32_t>(value);
    count += 6;
    if (count >= 16) {
      count -= 16;
      text += static_cast<char16_t>(bits >> count);
      bits &= (1u << count) - 1;
    }
  }
  const bool wellFormed = count < 6 && bits == 0 && !text.empty();
  return wellFormed ? std::optional{text} : std::nullopt;
}

std::optional<Text> decode(std::string_view name) {
  Text text;
  for (std::size_t i = 0; i < name.size(); ++i) {
    const auto c = static_cast<unsigned char>(name[i]);
    if (c < 0x20 || c > 0x7E) return std::nullopt;
    if (c != '&') {
      text += static_cast<char16_t>(c);
      continue;
    }
    const auto end = name.find('-', i);
    if (end == std::string_view::npos) return std::nullopt;
    const auto run = decodeRun(name.substr(i + 1, end - i - 1));
    if (!run) return std::nullopt;
    text += *run;
    i = end;
  }
  return text;
}

std::string encodeRun(TextView run) {
  std::string result = "&";
  std::uint32_t bits = 0;
  int count = 0;
  for (const char16_t unit : run) {
    bits = bits << 16 | unit;
    count += 16;
    for (; count >= 6; count -= 6) result += alphabet[bits >> (count - 6) & 63];
    bits &= (1u << count) - 1;
  }
  if (count > 0) result += alphabet[bits << (6 - count) & 63];
  return result += '-';
}

// Characters that would mislead or garble when a name is shown.
bool harmful(char16_t c) {
  return c < 0x20 || (c >= 0x7F && c < 0xA0) || c == u'/' || c == 0x2028 || c == 0x2029 ||
         (c >= 0x200B && c <= 0x200F) || (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069) ||
         c == 0xFEFF || c == 0xFFFD;
}

void appendEscaped(std::string& to, std::string_view bytes) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    to += '%';
    to += digits[byte >> 4];
    to += digits[byte & 15];
  }
}

bool validUtf8(std::string_view bytes) { return toUtf8(fromUtf8(bytes)) == bytes; }

}  // namespace

std::string shownName(std::string_view onDisk) {
  const auto decoded = decode(onDisk);
  std::string name = decoded ? toUtf8(*decoded) : std::string{onDisk};
  std::string shown;
  for (std::size_t i = 0; i < name.size();) {
    const auto lead = static_cast<unsigned char>(name[i]);
    const std::size_t length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    const std::string_view character = std::string_view{name}.substr(i, length);
    if (!validUtf8(character)) {
      appendEscaped(shown, character.substr(0, 1));
      ++i;
      continue;
    }
    if (harmful(fromUtf8(character)[0])) {
      appendEscaped(shown, character);
    } else {
      shown += character;
    }
    i += length;
  }
  return shown;
}

std::string encodedName(std::string_view shown) {
  std::string result;
  Text run;
  const auto endRun = [&] {
    if (!run.empty()) result += encodeRun(run);
    run.clear();
  };
  for (const char16_t c : fromUtf8(shown)) {
    const bool direct = c >= 0x20 && c <= 0x7E && c != u'.' && c != u'/';
    if (!direct) {
      run += c;
      continue;
    }
    endRun();
    result += static_cast<char>(c);
    if (c == u'&') result += '-';
  }
  endRun();
  return result;
}

}  // namespace quillfile::mailbox
