#include "hosts/mailbox/mime/decode.h"

#include "hosts/mailbox/mime/decoding.h"
#include "hosts/mailbox/mime/header.h"

namespace quillfile::mime {
namespace {

constexpr Doubt unknownEncoding = u"its transfer encoding is unknown";

struct NamedEncoding {
  std::string_view name;
  Encoding encoding;
};
constexpr NamedEncoding encodings[] = {
    {"", Encoding::identity},
    {"7bit", Encoding::identity},
    {"8bit", Encoding::identity},
    {"binary", Encoding::identity},
    {"7-bit", Encoding::identity},
    {"8-bit", Encoding::identity},
    {"none", Encoding::identity},
    {"base64", Encoding::base64},
    {"quoted-printable", Encoding::quoted_printable},
    {"uuencode", Encoding::uuencode},
    {"x-uuencode", Encoding::uuencode},
    {"uue", Encoding::uuencode},
    {"x-uue", Encoding::uuencode},
};

// A field's value without its comments (RFC 5322 3.2.2).
std::string withoutComments(std::string_view value) {
  std::string result;
  int depth = 0;
  for (std::size_t at = 0; at < value.size(); ++at) {
    const char c = value[at];
    if (depth > 0 && c == '\\') {
      ++at;
    } else if (c == '(') {
      ++depth;
    } else if (depth == 0) {
      result += c;
    } else if (c == ')') {
      --depth;
    }
  }
  return result;
}

}  // namespace

Encoding encodingNamed(std::string_view value) {
  const auto all = withoutComments(value);
  const auto word = trimmed(std::string_view{all}.substr(0, all.find(';')));
  const bool quoted = word.size() >= 2 && word.front() == '"' && word.back() == '"';
  for (const auto& known : encodings) {
    if (equalWords(known.name, quoted ? word.substr(1, word.size() - 2) : word)) return known.encoding;
  }
  return Encoding::unknown;
}

Doubt decode(Encoding encoding, std::string_view encoded, const Sink& sink, const Behind& behind) {
  Progress progress{behind};
  if (encoding == Encoding::identity || encoding == Encoding::unknown) {
    constexpr std::size_t step = std::size_t{256} << 10;
    for (std::size_t at = 0; at < encoded.size(); progress.reached(at)) {
      const auto part = encoded.substr(at, step);
      sink(part);
      at += part.size();
    }
    progress.ended(encoded.size());
    return encoding == Encoding::unknown ? unknownEncoding : Doubt{};
  }
  Chunks out{sink, encoded.size()};
  const auto decoder = encoding == Encoding::base64             ? decodeBase64
                       : encoding == Encoding::quoted_printable ? decodeQuotedPrintable
                                                                : decodeUuencode;
  const auto doubt = decoder(encoded, out, progress);
  out.flush();
  progress.ended(encoded.size());
  return doubt;
}

DecodedBytes decodedWhole(Encoding encoding, std::string_view encoded, Doubt& doubt) {
  const bool base64 = encoding == Encoding::base64;
  const std::size_t most = base64 ? encoded.size() / 4 * 3 + 3 : encoded.size();
  const Sink nowhere;
  const Behind none;
  Progress progress{none};
  Chunks all{nowhere, most, most};
  doubt = base64 ? decodeBase64(encoded, all, progress) : decodeQuotedPrintable(encoded, all, progress);
  return all.release();
}

std::string decoded(Encoding encoding, std::string_view encoded, Doubt* doubt) {
  std::string bytes;
  bytes.reserve(encoded.size());
  const auto found = decode(encoding, encoded, [&](std::string_view chunk) { bytes += chunk; });
  if (doubt) *doubt = found;
  return bytes;
}

}  // namespace quillfile::mime
