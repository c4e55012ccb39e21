// Compressed RTF ([MS-OXRTFCP]): how .msg and TNEF keep a rich-text body.
#pragma once

#include <string>
#include <string_view>

namespace quillfile::formats {

std::string compressRtf(std::string_view rtf);

struct DecompressedRtf {
  std::string rtf;      // as far as it could be read
  bool intact = false;  // the signature, the size and the checksum are right
};

// The result is at most nine times as long as the input, whatever the sizes inside it claim, and no longer
// than `most` (then it is not intact).
DecompressedRtf decompressRtf(std::string_view bytes, std::size_t most = std::string_view::npos);

}  // namespace quillfile::formats
