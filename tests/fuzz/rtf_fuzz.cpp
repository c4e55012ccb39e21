// Any bytes as compressed RTF, and any bytes compressed and read back.
#include <cstdint>

#include "hosts/mailbox/formats/rtf/compressed_rtf.h"
#include "tests/fuzz/require.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  require(quillfile::formats::decompressRtf(input).rtf.size() <= size * 9);
  const auto back = quillfile::formats::decompressRtf(quillfile::formats::compressRtf(input));
  require(back.intact && back.rtf == input);
  return 0;
}
