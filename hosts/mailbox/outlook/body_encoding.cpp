#include "hosts/mailbox/outlook/body_encoding.h"

#include <algorithm>

#include "hosts/mailbox/mime/charset.h"
#include "hosts/mailbox/mime/encode.h"

namespace quillfile::mailbox {
namespace {

constexpr std::size_t longestLine = 998;  // RFC 5322 2.1.1, without the line end
constexpr std::size_t encodedLine = 76;   // RFC 2045 6.7 and 6.8

bool isBlank(char c) { return c == ' ' || c == '\t'; }
bool isHex(char c) { return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f'); }

// How many bytes the line end at `at` has; 0 when there is none.
std::size_t lineEndAt(std::string_view bytes, std::size_t at) {
  if (at < bytes.size() && bytes[at] == '\n') return 1;
  return bytes.substr(at, 2) == "\r\n" ? 2 : 0;
}

std::size_t lineStart(std::string_view bytes, std::size_t at) {
  const auto end = at == 0 ? std::string_view::npos : bytes.rfind('\n', at - 1);
  return end == std::string_view::npos ? 0 : end + 1;
}

std::size_t restOfLine(std::string_view bytes, std::size_t at) {
  const auto end = std::min(bytes.find('\n', at), bytes.size());
  return end > at && bytes[end - 1] == '\r' ? end - 1 - at : end - at;
}

// 7bit and 8bit: the bytes stand as they are. A line that would become too long, or 8-bit bytes where there
// have been none, need an encoding.
std::optional<std::vector<ByteHunk>> plainHunks(std::string_view bytes, const std::vector<ByteHunk>& hunks) {
  for (const auto& hunk : hunks) {
    if (!mime::isAscii(hunk.bytes) && mime::isAscii(bytes)) return std::nullopt;
    const auto before = hunk.begin - lineStart(bytes, hunk.begin);
    const auto after = restOfLine(bytes, hunk.end);
    const auto firstLine = std::min(hunk.bytes.find('\n'), hunk.bytes.size());
    const bool oneLine = firstLine == hunk.bytes.size();
    std::size_t longest = before + firstLine + (oneLine ? after : 0);
    for (std::size_t at = firstLine; at < hunk.bytes.size();) {
      const auto end = std::min(hunk.bytes.find('\n', ++at), hunk.bytes.size());
      longest = std::max(longest, end - at + (end == hunk.bytes.size() ? after : 0));
      at = end;
    }
    if (longest > longestLine && longest > before + hunk.end - hunk.begin + after) return std::nullopt;
  }
  return hunks;
}

// Walks quoted-printable from its front, telling how many decoded bytes lie behind.
class QuotedPrintableWalk {
 public:
  explicit QuotedPrintableWalk(std::string_view encoded) : encoded_(encoded) {}

  // The first place in front of which `count` decoded bytes stand.
  std::size_t to(std::size_t count) {
    while (decoded_ < count && at_ < encoded_.size()) step();
    return at_;
  }

 private:
  void step() {
    const bool escape = encoded_[at_] == '=';
    if (const auto end = escape ? lineEndAt(encoded_, at_ + 1) : 0; end > 0) {
      at_ += 1 + end;
      return;
    }
    const bool isOctet =
        escape && at_ + 2 < encoded_.size() && isHex(encoded_[at_ + 1]) && isHex(encoded_[at_ + 2]);
    at_ += isOctet ? 3 : 1;
    ++decoded_;
  }
  std::string_view encoded_;
  std::size_t at_ = 0;
  std::size_t decoded_ = 0;
};

// Quoted-printable in the middle of a line that already has `column` characters and goes on for `rest` more.
std::string quotedPrintable(std::string_view bytes, std::size_t column, std::size_t rest,
                            std::string_view lineEnd) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string out;
  const auto softBreak = [&] {
    out.append("=").append(lineEnd);
    column = 0;
  };
  for (std::size_t at = 0; at < bytes.size();) {
    if (const auto end = lineEndAt(bytes, at); end > 0) {
      out.append(lineEnd);
      column = 0;
      at += end;
      continue;
    }
    const char c = bytes[at++];
    const bool lastOfLine = at == bytes.size() || lineEndAt(bytes, at) > 0;
    const bool literal = (c > ' ' && c < 0x7F && c != '=') || (isBlank(c) && !lastOfLine);
    const std::size_t width = literal ? 1 : 3;
    if (column + width >= encodedLine) softBreak();
    if (literal) {
      out += c;
    } else {
      const auto value = static_cast<unsigned char>(c);
      out.append({'=', digits[value >> 4], digits[value & 15]});
    }
    column += width;
  }
  if (rest > 0 && column + rest > encodedLine && column > 0) softBreak();
  return out;
}

std::vector<ByteHunk> quotedPrintableHunks(std::string_view encoded, const std::vector<ByteHunk>& hunks,
                                           std::string_view lineEnd) {
  std::vector<ByteHunk> result;
  QuotedPrintableWalk walk{encoded};
  for (const auto& hunk : hunks) {
    ByteHunk changed{walk.to(hunk.begin), 0, {}};
    changed.end = hunk.end == hunk.begin ? changed.begin : walk.to(hunk.end);
    auto bytes = hunk.bytes;
    // A blank that would come to stand before a line end must not stand there bare.
    if (changed.begin > 0 && isBlank(encoded[changed.begin - 1])) {
      --changed.begin;
      bytes.insert(bytes.begin(), encoded[changed.begin]);
    }
    changed.bytes = quotedPrintable(bytes, changed.begin - lineStart(encoded, changed.begin),
                                    restOfLine(encoded, changed.end), lineEnd);
    result.push_back(std::move(changed));
  }
  return result;
}

// Base64 is written anew from the first changed group of three bytes on: what follows has shifted.
std::optional<std::vector<ByteHunk>> base64Hunks(std::string_view encoded, const std::vector<ByteHunk>& hunks,
                                                 std::string_view lineEnd) {
  const std::size_t groups = hunks.front().begin / 3;
  std::size_t begin = 0;
  for (std::size_t digits = 0; digits < groups * 4 && begin < encoded.size(); ++begin)
    if (!isBlank(encoded[begin]) && encoded[begin] != '\r' && encoded[begin] != '\n') ++digits;
  std::size_t end = encoded.size();
  while (end > begin && (isBlank(encoded[end - 1]) || encoded[end - 1] == '\r' || encoded[end - 1] == '\n'))
    --end;

  const auto digits = mime::toBase64(
      std::string_view{applied(mime::decoded(mime::Encoding::base64, encoded), hunks)}.substr(groups * 3),
      "");
  std::string bytes;
  std::size_t column = begin - lineStart(encoded, begin);
  for (std::string_view rest = digits; !rest.empty();) {
    if (column >= encodedLine) {
      bytes.append(lineEnd);
      column = 0;
    }
    const auto line = rest.substr(0, encodedLine - column);
    bytes.append(line);
    column += line.size();
    rest.remove_prefix(line.size());
  }
  return std::vector<ByteHunk>{{begin, end, std::move(bytes)}};
}

}  // namespace

std::string applied(std::string_view bytes, const std::vector<ByteHunk>& hunks) {
  std::size_t size = bytes.size(), at = 0;
  for (const auto& hunk : hunks) size += hunk.bytes.size();
  std::string result;
  result.reserve(size);
  for (const auto& hunk : hunks) {
    result.append(bytes.substr(at, hunk.begin - at)).append(hunk.bytes);
    at = hunk.end;
  }
  return result.append(bytes.substr(at));
}

std::optional<std::vector<ByteHunk>> encodedHunks(mime::Encoding encoding, std::string_view encoded,
                                                  const std::vector<ByteHunk>& hunks,
                                                  std::string_view lineEnd) {
  if (hunks.empty()) return hunks;
  if (encoding == mime::Encoding::identity) return plainHunks(encoded, hunks);
  std::optional<std::vector<ByteHunk>> result;
  if (encoding == mime::Encoding::quoted_printable) result = quotedPrintableHunks(encoded, hunks, lineEnd);
  if (encoding == mime::Encoding::base64) result = base64Hunks(encoded, hunks, lineEnd);
  if (!result) return std::nullopt;
  // The proof: what the changed encoding says is what was wanted.
  const bool right =
      mime::decoded(encoding, applied(encoded, *result)) == applied(mime::decoded(encoding, encoded), hunks);
  return right ? result : std::nullopt;
}

}  // namespace quillfile::mailbox
