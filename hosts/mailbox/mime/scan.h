// scan: the one pass over a message's bytes that finds its parts. Iterative, and bounded in depth, parts and
// header.
#pragma once

#include <string_view>

#include "hosts/mailbox/mime/part_tree.h"

namespace quillfile::mime {

// What lies beyond a limit is left as one opaque leaf, and the tree is doubted.
struct ScanLimits {
  std::uint32_t depth = 100;
  std::uint32_t parts = 10'000;
  std::size_t headerBytes = std::size_t{2} << 20;  // of one header block
  std::size_t boundaryBytes = 16'000;              // of one boundary line
};

// Never fails: bytes that are no message are a message with an odd body. A body that no boundary line can end
// (the body of a message that is no multipart) is not even touched.
PartTree scan(std::string_view message, const Behind& behind = {}, const ScanLimits& limits = {});

}  // namespace quillfile::mime
