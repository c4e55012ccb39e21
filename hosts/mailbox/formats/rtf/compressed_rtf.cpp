#include "hosts/mailbox/formats/rtf/compressed_rtf.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

#include "hosts/mailbox/formats/little_endian.h"

namespace quillfile::formats {
namespace {

// What the dictionary holds before the first byte ([MS-OXRTFCP] 2.1.3.1.3).
constexpr std::string_view kPrefix =
    "{\\rtf1\\ansi\\mac\\deff0\\deftab720{\\fonttbl;}{\\f0\\fnil \\froman \\fswiss \\fmodern \\fscript "
    "\\fdecor MS Sans SerifSymbolArialTimes New RomanCourier{\\colortbl\\red0\\green0\\blue0\r\n\\par "
    "\\pard\\plain\\f0\\fs20\\b\\i\\u\\tab\\tx";
static_assert(kPrefix.size() == 207);

constexpr std::uint32_t kCompressed = 0x75465A4C;    // "LZFu"
constexpr std::uint32_t kUncompressed = 0x414C454D;  // "MELA"
constexpr std::size_t kHeader = 16;
constexpr std::size_t kDictionary = 4096;
constexpr std::size_t kShortest = 2, kLongest = 17;  // a reference's length

// CRC-32 with neither its first nor its last inversion.
std::uint32_t checksum(std::string_view bytes) {
  static const auto table = [] {
    std::array<std::uint32_t, 256> rows{};
    for (std::uint32_t i = 0; i < 256; ++i) {
      std::uint32_t row = i;
      for (int bit = 0; bit < 8; ++bit) row = row & 1 ? row >> 1 ^ 0xEDB88320 : row >> 1;
      rows[i] = row;
    }
    return rows;
  }();
  std::uint32_t sum = 0;
  for (const char byte : bytes) sum = table[(sum ^ static_cast<unsigned char>(byte)) & 0xFF] ^ sum >> 8;
  return sum;
}

// Finds earlier occurrences within the dictionary's reach: chains of the places where the same three bytes
// begin.
class Matcher {
 public:
  explicit Matcher(std::string_view text)
      : text_(text), heads_(kHeads, kNowhere), earlier_(text.size(), kNowhere) {}

  struct Match {
    std::size_t at = 0, length = 0;
  };

  Match longest(std::size_t position) const {
    Match best;
    const std::size_t most = std::min(kLongest, text_.size() - position);
    if (most < 3) return best;
    std::size_t candidate = heads_[hash(position)];
    for (int tries = 0; tries < kTries && candidate != kNowhere; ++tries, candidate = earlier_[candidate]) {
      if (position - candidate >= kDictionary) break;
      std::size_t length = 0;
      while (length < most && text_[candidate + length] == text_[position + length]) ++length;
      if (length > best.length) best = {candidate, length};
      if (length == most) break;
    }
    return best.length >= 3 ? best : Match{};
  }

  void add(std::size_t position) {
    if (text_.size() - position < 3) return;
    std::size_t& head = heads_[hash(position)];
    earlier_[position] = head;
    head = position;
  }

 private:
  static constexpr std::size_t kHeads = 1 << 12, kNowhere = ~std::size_t{0};
  static constexpr int kTries = 64;

  std::size_t hash(std::size_t at) const {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text_[at + i]); };
    return (byte(0) * 506832829u + byte(1) * 2654435761u + byte(2) * 40503u) >> 7 & (kHeads - 1);
  }

  std::string_view text_;
  std::vector<std::size_t> heads_, earlier_;
};

// Eight tokens after a byte that says which of them are references.
class TokenWriter {
 public:
  void literal(char byte) {
    begin(false);
    bytes_ += byte;
  }
  void reference(std::size_t position, std::size_t length) {
    begin(true);
    const std::size_t token = (position % kDictionary) << 4 | (length - kShortest);
    bytes_ += static_cast<char>(token >> 8);
    bytes_ += static_cast<char>(token & 0xFF);
  }
  std::string take() { return std::move(bytes_); }

 private:
  void begin(bool isReference) {
    if (count_ % 8 == 0) {
      control_ = bytes_.size();
      bytes_ += '\0';
    }
    if (isReference) bytes_[control_] = static_cast<char>(bytes_[control_] | 1 << count_ % 8);
    ++count_;
  }
  std::string bytes_;
  std::size_t control_ = 0, count_ = 0;
};

std::string expand(std::string_view tokens, std::size_t most) {
  std::array<char, kDictionary> dictionary{};
  std::copy(kPrefix.begin(), kPrefix.end(), dictionary.begin());
  std::size_t end = kPrefix.size(), at = 0;
  std::string result;
  const auto give = [&](char byte) {
    result += byte;
    dictionary[end] = byte;
    end = (end + 1) % kDictionary;
  };
  while (at < tokens.size()) {
    const auto control = static_cast<unsigned char>(tokens[at++]);
    for (int bit = 0; bit < 8; ++bit) {
      if (at >= tokens.size() || result.size() >= most) return result;
      if ((control >> bit & 1) == 0) {
        give(tokens[at++]);
        continue;
      }
      if (tokens.size() - at < 2) return result;
      const unsigned token =
          static_cast<unsigned char>(tokens[at]) << 8 | static_cast<unsigned char>(tokens[at + 1]);
      at += 2;
      std::size_t from = token >> 4;
      if (from == end) return result;  // the end mark
      for (std::size_t left = (token & 0xF) + kShortest; left > 0 && result.size() < most; --left) {
        give(dictionary[from]);
        from = (from + 1) % kDictionary;
      }
    }
  }
  return result;
}

}  // namespace

std::string compressRtf(std::string_view rtf) {
  const std::string text = std::string(kPrefix) + std::string(rtf);
  Matcher matcher(text);
  for (std::size_t i = 0; i < kPrefix.size(); ++i) matcher.add(i);
  TokenWriter tokens;
  for (std::size_t at = kPrefix.size(); at < text.size();) {
    const Matcher::Match match = matcher.longest(at);
    if (match.length == 0) {
      tokens.literal(text[at]);
    } else {
      tokens.reference(match.at, match.length);
    }
    for (const std::size_t end = at + std::max<std::size_t>(match.length, 1); at < end; ++at) matcher.add(at);
  }
  tokens.reference(text.size(), kShortest);  // where the next byte would go: the end mark
  const std::string content = tokens.take();
  std::string result;
  put32(result, content.size() + kHeader - 4);
  put32(result, rtf.size());
  put32(result, kCompressed);
  put32(result, checksum(content));
  return result + content;
}

DecompressedRtf decompressRtf(std::string_view bytes, std::size_t most) {
  if (bytes.size() < kHeader) return {};
  const std::uint32_t size = get32(bytes, 0), rawSize = get32(bytes, 4), kind = get32(bytes, 8);
  std::string_view content = bytes.substr(kHeader);
  const bool whole = size >= kHeader - 4 && size - (kHeader - 4) <= content.size();
  if (whole) content = content.substr(0, size - (kHeader - 4));
  if (kind == kUncompressed) {
    return {std::string(content.substr(0, std::min<std::size_t>(rawSize, most))),
            whole && rawSize <= std::min(content.size(), most)};
  }
  if (kind != kCompressed) return {};
  DecompressedRtf result{expand(content, std::min<std::size_t>(rawSize, most)), false};
  result.intact = whole && result.rtf.size() == rawSize && checksum(content) == get32(bytes, 12);
  return result;
}

}  // namespace quillfile::formats
