// uuencode (POSIX uuencode utility, historical algorithm): "begin mode name", lines, "end".
#include "hosts/mailbox/mime/decoding.h"
#include "hosts/mailbox/mime/header.h"

namespace quillfile::mime {
namespace {

constexpr Doubt noBegin = u"its uuencoded data has no begin line";
constexpr Doubt noEnd = u"its uuencoded data has no end line";
constexpr Doubt brokenLine = u"its uuencoded data has a broken line";

std::string_view takeLine(std::string_view& rest) {
  const auto end = rest.find('\n');
  auto line = rest.substr(0, end);
  rest.remove_prefix(end == rest.npos ? rest.size() : end + 1);
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

bool isBegin(std::string_view line) {
  if (!line.starts_with("begin ")) return false;
  line.remove_prefix(6);
  const auto mode = line.substr(0, line.find(' '));
  return !mode.empty() && mode.find_first_not_of("01234567") == mode.npos;
}

// The first character says how many bytes the line has; each four after it hold three. Characters that are
// missing at the end stand for blanks, which some mailers cut off.
Doubt decodeLine(std::string_view line, Chunks& out) {
  if (line.empty()) return brokenLine;
  const auto sixBits = [](char c) { return (static_cast<unsigned>(c) - 0x20) & 0x3F; };
  const auto bytes = sixBits(line[0]);
  line.remove_prefix(1);
  const bool odd = std::any_of(line.begin(), line.end(), [](char c) { return c < 0x20 || c > 0x60; });
  const auto digit = [&](std::size_t i) { return i < line.size() ? sixBits(line[i]) : 0u; };
  for (unsigned i = 0; i < bytes; ++i) {
    const auto first = std::size_t{i} * 8 / 6;
    const auto bits = digit(first) << 6 | digit(first + 1);
    out.put(static_cast<char>(bits >> (4 - i % 3 * 2)));
  }
  const bool garbage =
      line.find_first_not_of(" `", std::min<std::size_t>(line.size(), (bytes + 2) / 3 * 4)) != line.npos;
  return odd || garbage ? brokenLine : Doubt{};
}

}  // namespace

Doubt decodeUuencode(std::string_view encoded, Chunks& out, Progress& progress) {
  auto rest = encoded;
  for (bool begun = false; !begun;) {
    if (rest.empty()) {
      out.append(encoded);
      return noBegin;
    }
    begun = isBegin(takeLine(rest));
  }
  Doubt doubt;
  while (!rest.empty()) {
    const auto line = takeLine(rest);
    if (trimmed(line) == "end") return doubt;
    if (const auto broken = decodeLine(line, out); !broken.empty()) doubt = broken;
    progress.reached(encoded.size() - rest.size());
  }
  return noEnd;
}

}  // namespace quillfile::mime
