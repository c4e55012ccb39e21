#include "hosts/mailbox/mime/decoding.h"

namespace quillfile::mime {
namespace {

constexpr Doubt strayEquals = u"its quoted-printable has an equals sign with no number after it";

}  // namespace

int hexValue(char digit) {
  if (digit >= '0' && digit <= '9') return digit - '0';
  if (digit >= 'A' && digit <= 'F') return digit - 'A' + 10;
  if (digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
  return -1;
}

Doubt decodeQuotedPrintable(std::string_view encoded, Chunks& out, Progress& progress) {
  constexpr std::size_t longestRun = std::size_t{1} << 20;
  Doubt doubt;
  for (std::size_t at = 0; at < encoded.size(); progress.reached(at)) {
    const auto run = encoded.substr(at, longestRun);
    const auto plain = run.substr(0, run.find('='));
    out.append(plain);
    at += plain.size();
    if (plain.size() == run.size()) continue;
    const auto rest = encoded.substr(at + 1, 2);
    if (rest.empty()) break;  // a soft line break whose line end went to the boundary
    if (rest[0] == '\n' || rest == "\r\n" || rest == "\r") {
      at += rest[0] == '\n' ? 2 : 1 + rest.size();
      continue;
    }
    const int high = hexValue(rest[0]);
    const int low = rest.size() > 1 ? hexValue(rest[1]) : -1;
    if (high >= 0 && low >= 0) {
      out.put(static_cast<char>(high << 4 | low));
      at += 3;
    } else {
      doubt = strayEquals;
      out.put('=');
      at += rest[0] == '=' ? 2 : 1;
    }
  }
  return doubt;
}

}  // namespace quillfile::mime
