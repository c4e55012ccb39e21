// Changing a few of a part's decoded bytes inside its transfer encoding, so that the encoded bytes around
// stay.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "hosts/mailbox/mime/decode.h"

namespace quillfile::mailbox {

// Bytes from `begin` up to `end` became `bytes`. Of decoded bytes, or of encoded ones.
struct ByteHunk {
  std::size_t begin = 0;
  std::size_t end = 0;
  std::string bytes;
};

// What `bytes` become, in pieces and whole.
std::vector<std::string_view> appliedPieces(std::string_view bytes, const std::vector<ByteHunk>& hunks);
std::string applied(std::string_view bytes, const std::vector<ByteHunk>& hunks);

// The hunks of `encoded` that are the hunks of `decoded`, the bytes that it holds. `encoded` ends lines with
// `lineEnd`. None when the encoding cannot hold the result, or does not keep to its rules well enough to be
// changed in part.
std::optional<std::vector<ByteHunk>> encodedHunks(mime::Encoding encoding, std::string_view encoded,
                                                  std::string_view decoded,
                                                  const std::vector<ByteHunk>& hunks,
                                                  std::string_view lineEnd);

}  // namespace quillfile::mailbox
