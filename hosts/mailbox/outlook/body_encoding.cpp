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
std::optional<std::vector<ByteHunk>> base64Hunks(std::string_view encoded, std::string_view decoded,
                                                 const std::vector<ByteHunk>& hunks,
                                                 std::string_view lineEnd) {
  const std::size_t groups = hunks.front().begin / 3;
  std::size_t begin = 0;
  for (std::size_t digits = 0; digits < groups * 4 && begin < encoded.size(); ++begin)
    if (!isBlank(encoded[begin]) && encoded[begin] != '\r' && encoded[begin] != '\n') ++digits;
  std::size_t end = encoded.size();
  while (end > begin && (isBlank(encoded[end - 1]) || encoded[end - 1] == '\r' || encoded[end - 1] == '\n'))
    --end;

  const auto digits = mime::toBase64(std::string_view{applied(decoded, hunks)}.substr(groups * 3), "");
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

// Whether bytes that come one stretch after the other are what these pieces are together.
class Comparison {
 public:
  explicit Comparison(std::vector<std::string_view> wanted) : wanted_(std::move(wanted)) {}

  void expect(std::string_view bytes) {
    while (!bytes.empty() && same_) {
      while (next_ < wanted_.size() && wanted_[next_].empty()) ++next_;
      if (next_ == wanted_.size()) {
        same_ = false;
        return;
      }
      auto& piece = wanted_[next_];
      const auto size = std::min(piece.size(), bytes.size());
      same_ = piece.substr(0, size) == bytes.substr(0, size);
      piece.remove_prefix(size);
      bytes.remove_prefix(size);
    }
  }
  bool complete() const {
    return same_ && std::all_of(wanted_.begin() + static_cast<std::ptrdiff_t>(next_), wanted_.end(),
                                [](std::string_view piece) { return piece.empty(); });
  }

 private:
  std::vector<std::string_view> wanted_;
  std::size_t next_ = 0;
  bool same_ = true;
};

}  // namespace

std::vector<std::string_view> appliedPieces(std::string_view bytes, const std::vector<ByteHunk>& hunks) {
  std::vector<std::string_view> pieces;
  std::size_t at = 0;
  for (const auto& hunk : hunks) {
    pieces.push_back(bytes.substr(at, hunk.begin - at));
    pieces.emplace_back(hunk.bytes);
    at = hunk.end;
  }
  pieces.push_back(bytes.substr(at));
  return pieces;
}

std::string applied(std::string_view bytes, const std::vector<ByteHunk>& hunks) {
  const auto pieces = appliedPieces(bytes, hunks);
  std::size_t size = 0;
  for (const auto piece : pieces) size += piece.size();
  std::string result;
  result.reserve(size);
  for (const auto piece : pieces) result += piece;
  return result;
}

std::optional<std::vector<ByteHunk>> encodedHunks(mime::Encoding encoding, std::string_view encoded,
                                                  std::string_view decoded,
                                                  const std::vector<ByteHunk>& hunks,
                                                  std::string_view lineEnd) {
  if (hunks.empty()) return hunks;
  if (encoding == mime::Encoding::identity) return plainHunks(encoded, hunks);
  std::optional<std::vector<ByteHunk>> result;
  if (encoding == mime::Encoding::quoted_printable) result = quotedPrintableHunks(encoded, hunks, lineEnd);
  if (encoding == mime::Encoding::base64) result = base64Hunks(encoded, decoded, hunks, lineEnd);
  if (!result) return std::nullopt;
  // The proof: what the changed encoding says is what was wanted.
  Comparison comparison{appliedPieces(decoded, hunks)};
  mime::decode(encoding, applied(encoded, *result),
               [&](std::string_view bytes) { comparison.expect(bytes); });
  return comparison.complete() ? result : std::nullopt;
}

}  // namespace quillfile::mailbox
