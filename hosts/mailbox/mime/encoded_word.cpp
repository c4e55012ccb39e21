#include "hosts/mailbox/mime/encoded_word.h"

#include <optional>
#include <string>

#include "hosts/mailbox/mime/charset.h"
#include "hosts/mailbox/mime/decode.h"
#include "hosts/mailbox/mime/header.h"

namespace quillfile::mime {
namespace {

struct EncodedWord {
  std::string_view before;  // what stands before it
  std::string charset;
  std::string bytes;
};

std::string unquoted(std::string_view coded) {
  std::string quotedPrintable;
  for (const char c : coded) {
    if (c == '_') {
      quotedPrintable += ' ';
    } else if (c != '\r' && c != '\n') {
      quotedPrintable += c;
    }
  }
  return decoded(Encoding::quoted_printable, quotedPrintable);
}

// The encoded word next in `value`, which is shortened by it: =?charset*language?B or Q?text?=
std::optional<EncodedWord> takeWord(std::string_view& value) {
  for (auto start = value.find("=?"); start != value.npos; start = value.find("=?", start + 2)) {
    const auto afterCharset = value.find('?', start + 2);
    if (afterCharset == value.npos) return std::nullopt;
    if (afterCharset + 2 >= value.size() || value[afterCharset + 2] != '?') continue;
    const char kind = static_cast<char>(value[afterCharset + 1] | 0x20);
    const auto textBegin = afterCharset + 3;
    const auto textEnd = value.find("?=", textBegin);
    if (textEnd == value.npos) return std::nullopt;
    const auto charset = value.substr(start + 2, afterCharset - start - 2);
    const bool broken = charset.find_first_of(" \t=") != charset.npos;
    if (broken || (kind != 'b' && kind != 'q')) continue;
    const auto text = value.substr(textBegin, textEnd - textBegin);
    EncodedWord word{.before = value.substr(0, start),
                     .charset = lowerCase(charset.substr(0, charset.find('*'))),
                     .bytes = kind == 'b' ? decoded(Encoding::base64, text) : unquoted(text)};
    value.remove_prefix(textEnd + 2);
    return word;
  }
  return std::nullopt;
}

// A charset that is known has nothing to doubt in no bytes.
void noteUnknown(std::string_view charset, Doubt& doubt) {
  Doubt unknown;
  fromCharset({}, charset, &unknown);
  if (!unknown.empty()) doubt = unknown;
}

}  // namespace

Text decodeWords(std::string_view value, Doubt* doubt) {
  Text result;
  std::string charset;
  std::string bytes;  // of neighbouring words in one charset, which may cut a character in two
  bool afterWord = false;
  const auto finish = [&] {
    result += fromCharset(bytes, charset);
    if (doubt && !bytes.empty()) noteUnknown(charset, *doubt);
    bytes.clear();
  };
  while (const auto word = takeWord(value)) {
    const bool neighbours = afterWord && trimmed(word->before).empty();
    if (!neighbours || word->charset != charset) finish();
    if (!neighbours) result += guess(word->before);
    charset = word->charset;
    bytes += word->bytes;
    afterWord = true;
  }
  finish();
  return result += guess(value);
}

}  // namespace quillfile::mime
