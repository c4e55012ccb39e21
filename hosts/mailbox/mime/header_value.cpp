#include "hosts/mailbox/mime/header_value.h"

#include <algorithm>

#include "hosts/mailbox/mime/charset.h"
#include "hosts/mailbox/mime/encode.h"

namespace quillfile::mime {
namespace {

constexpr std::size_t longestLine = 76;

bool isControl(char c) { return (c >= 0 && c < ' ') || c == 0x7F; }

std::string oneLine(TextView text) {
  auto bytes = toUtf8(text);
  std::replace_if(
      bytes.begin(), bytes.end(), [](char c) { return c == '\r' || c == '\n' || c == '\t'; }, ' ');
  bytes.erase(std::remove_if(bytes.begin(), bytes.end(), isControl), bytes.end());
  return bytes;
}

// A line break before every blank where the line would otherwise grow past longestLine.
std::string folded(std::string_view value, std::string_view lineEnd) {
  std::string out;
  std::size_t column = 20;  // a field's name stands before
  for (std::size_t begin = 0; begin < value.size();) {
    const auto end = std::min(value.find(' ', begin + 1), value.size());
    const auto word = value.substr(begin, end - begin);
    if (column + word.size() > longestLine && word[0] == ' ' && word.size() > 1) {
      out += lineEnd;
      column = 0;
    }
    out += word;
    column += word.size();
    begin = end;
  }
  return out;
}

// The length of the longest beginning of `utf8`, up to `most` bytes, that cuts no character in two.
std::size_t wholeCharacters(std::string_view utf8, std::size_t most) {
  if (utf8.size() <= most) return utf8.size();
  while (most > 1 && (static_cast<unsigned char>(utf8[most]) & 0xC0) == 0x80) --most;
  return most;
}

std::string encodedWords(std::string_view utf8, std::string_view lineEnd) {
  constexpr std::size_t bytesInWord = 42;  // 56 digits, so that the word and a field's name fit on a line
  std::string out;
  while (!utf8.empty()) {
    const auto length = wholeCharacters(utf8, bytesInWord);
    if (!out.empty()) out.append(lineEnd).append(" ");
    out.append("=?utf-8?B?").append(toBase64(utf8.substr(0, length), "")).append("?=");
    utf8.remove_prefix(length);
  }
  return out;
}

std::string quoted(std::string_view value) {
  std::string out = "\"";
  for (const char c : value) {
    if (c == '"' || c == '\\') out += '\\';
    out += c;
  }
  return out += '"';
}

std::string percentCoded(char c) {
  constexpr std::string_view hex = "0123456789ABCDEF";
  const bool plain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' ||
                     c == '-' || c == '_';
  const auto byte = static_cast<unsigned char>(c);
  return plain ? std::string{c} : std::string{'%', hex[byte >> 4], hex[byte & 0xF]};
}

}  // namespace

std::string encodedText(TextView text, std::string_view lineEnd) {
  const auto bytes = oneLine(text);
  const bool plain = isAscii(bytes) && bytes.find("=?") == bytes.npos;
  return plain ? folded(bytes, lineEnd) : encodedWords(bytes, lineEnd);
}

std::string encodedParameter(std::string_view name, TextView value, std::string_view lineEnd) {
  const auto bytes = oneLine(value);
  const auto start = ";" + std::string{lineEnd} + " " + std::string{name};
  if (isAscii(bytes)) return start + "=" + quoted(bytes);
  constexpr std::size_t longestPiece = 54;
  std::vector<std::string> pieces{"UTF-8''"};
  for (const char c : bytes) {
    const auto coded = percentCoded(c);
    if (pieces.back().size() + coded.size() > longestPiece) pieces.emplace_back();
    pieces.back() += coded;
  }
  if (pieces.size() == 1) return start + "*=" + pieces[0];
  std::string out;
  for (std::size_t i = 0; i < pieces.size(); ++i) out += start + "*" + std::to_string(i) + "*=" + pieces[i];
  return out;
}

std::string encodedAddress(const Address& address, std::string_view lineEnd) {
  auto bare = oneLine(address.address);
  const auto name = oneLine(address.name);
  if (name.empty()) return bare;
  constexpr std::string_view specials = "()<>[]:;@\\,.\"";
  const bool needsQuotes = isAscii(name) && name.find_first_of(specials) != name.npos;
  return (needsQuotes ? quoted(name) : encodedText(address.name, lineEnd)) + " <" + bare + ">";
}

}  // namespace quillfile::mime
