// Putting a part back into a message between its other parts, with header lines that are given.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "hosts/mailbox/mime/part_tree.h"
#include "hosts/mailbox/outlook/attachment_source.h"
#include "hosts/mailbox/outlook/splice.h"

namespace quillfile::mailbox {

// `header`'s lines with `source`'s bytes behind them, encoded as the header says where that gives the very
// bytes back, else in base64 with the header saying so.
mime::Pieces partPieces(std::string header, const AttachmentSource& source, std::string_view boundary,
                        std::string_view lineEnd);

// A new part of the multipart, in front of its child number `before` (from 0), or behind all when there is
// none.
Splice insertion(const mime::PartTree& tree, mime::PartIndex multipart, std::size_t before,
                 const std::string& header, const AttachmentSource& source);

}  // namespace quillfile::mailbox
