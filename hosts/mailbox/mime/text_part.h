// TextPart: a text made ready to be the body of a text part: its Content-* fields and its bytes.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/text/text.h"
#include "hosts/mailbox/mime/part_tree.h"

namespace quillfile::mime {

struct TextPart {
  std::string fields;  // Content-Type and Content-Transfer-Encoding, each with its line end; empty: they stay
  std::string body;
};

// A new part: 7bit ASCII where that is enough, else UTF-8.
TextPart newTextPart(std::string_view subtype, TextView text, std::string_view lineEnd);

// `text` in place of the one in `part`: in the part's own charset and transfer encoding where it fits them.
TextPart rewrittenTextPart(const PartTree& tree, PartIndex part, TextView text);

}  // namespace quillfile::mime
