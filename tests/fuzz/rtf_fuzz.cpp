// Any bytes as compressed RTF, and any bytes compressed and read back.
#include <cstdint>
#include <cstdlib>

#include "hosts/mailbox/formats/rtf/compressed_rtf.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  if (quillfile::formats::decompressRtf(input).rtf.size() > size * 9) std::abort();
  const auto back = quillfile::formats::decompressRtf(quillfile::formats::compressRtf(input));
  if (!back.intact || back.rtf != input) std::abort();
  return 0;
}
