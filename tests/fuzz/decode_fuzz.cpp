// The decoders. Whatever the bytes are: what is not doubted is what the second decoder reads, and what the
// second one reads is never doubted or read otherwise.
#include <cstdint>
#include <string>

#include "hosts/mailbox/mime/charset.h"
#include "hosts/mailbox/mime/decode.h"
#include "hosts/mailbox/mime/encode.h"
#include "tests/fuzz/require.h"

using namespace quillfile;
using namespace quillfile::mime;

// The first byte chooses the encoding.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 1) return 0;
  const std::string_view bytes{reinterpret_cast<const char*>(data) + 1, size - 1};
  const auto encoding = static_cast<Encoding>(data[0] % 5);
  Doubt doubt;
  const auto first = decoded(encoding, bytes, &doubt);
  if (encoding == Encoding::base64 || encoding == Encoding::quoted_printable) {
    const auto second = decodePlain(encoding, bytes);
    require(second.has_value() == doubt.empty());
    require(!second || *second == first);
  }
  require(decodePlain(Encoding::base64, toBase64(bytes, "\r\n")) == bytes);
  const auto text = guess(bytes);
  require(!isUtf8(bytes) || toUtf8(text) == bytes);
  return 0;
}
