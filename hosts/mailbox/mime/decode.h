// Transfer encodings (RFC 2045 6) undone: streaming, with no copy for each line, and with a word of doubt
// when the bytes are not what the encoding promises.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "hosts/mailbox/mime/range.h"

namespace quillfile::mime {

// identity: 7bit, 8bit, binary or none given. unknown: a word that nobody knows; the bytes stay as they are,
// doubted.
enum class Encoding : std::uint8_t { identity, base64, quoted_printable, uuencode, unknown };

// The encoding that the value of a Content-Transfer-Encoding field names; comments and case do not matter.
Encoding encodingNamed(std::string_view value);

// Decodes `encoded` into `sink`, in chunks of at most 256 KB. Doubted input is decoded as the common readers
// do it:
//   base64            line ends and blanks between are fine; other bytes are skipped and doubted; the first
//                     complete padding ends the data, and what follows it is doubted; a missing padding is
//                     doubted
//   quoted-printable  "=" with no hexadecimal number after it stays as it is, doubted
//   uuencode          what stands before "begin" is skipped; a missing "end" or a broken line is doubted
Doubt decode(Encoding encoding, std::string_view encoded, const Sink& sink, const Behind& behind = {});

// A second decoder for base64 and quoted-printable that shares no code with the first, without vectors and
// strict: false when the input is not exactly as the encoding promises, and for other encodings. What was
// written is verified with it. The sink gets stretches of about 64 KB, the last ones only when all was well.
bool decodePlain(Encoding encoding, std::string_view encoded, const Sink& sink, const Behind& behind = {});
// The same for small things, all at once.
std::optional<std::string> decodePlain(Encoding encoding, std::string_view encoded);

// Bytes in memory, which nobody has set to zero before.
struct DecodedBytes {
  std::unique_ptr<char[]> data;
  std::size_t size = 0;

  std::string_view bytes() const { return {data.get(), size}; }
};
// The whole of base64 or quoted-printable, decoded in place; what comes of it is never larger than `encoded`.
DecodedBytes decodedWhole(Encoding encoding, std::string_view encoded, Doubt& doubt);

// The whole of it at once, for bodies and other small things; `doubt` may be null.
std::string decoded(Encoding encoding, std::string_view encoded, Doubt* doubt = nullptr);

}  // namespace quillfile::mime
