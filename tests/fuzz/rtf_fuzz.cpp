// Any bytes as compressed RTF, any bytes compressed and read back, and any bytes as a document.
#include <cstdint>

#include "hosts/mailbox/formats/rtf/compressed_rtf.h"
#include "hosts/mailbox/formats/rtf/rtf_document.h"
#include "hosts/mailbox/mime/charset.h"
#include "tests/fuzz/require.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  require(quillfile::formats::decompressRtf(input).rtf.size() <= size * 9);
  const auto back = quillfile::formats::decompressRtf(quillfile::formats::compressRtf(input));
  require(back.intact && back.rtf == input);
  const auto document = quillfile::formats::readRtf(quillfile::mime::guess(input));
  require(document.text.size() <= size * 4 && document.html.size() <= size * 4);
  return 0;
}
