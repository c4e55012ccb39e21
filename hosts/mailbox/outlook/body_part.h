// BodyPart: the text of a part, and how a change of the text becomes a change of the part's bytes that
// touches nothing else of them.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "hosts/mailbox/mime/part_tree.h"
#include "hosts/mailbox/outlook/splice.h"
#include "hosts/mailbox/outlook/text_change.h"

namespace quillfile::mailbox {

struct BodyText {
  Text text;          // lines end in CR LF, whatever the part has
  mime::Doubt doubt;  // not every byte could be read for what it is
};

BodyText bodyText(const mime::PartTree& tree, mime::PartIndex part);

// The splices that turn the part's text into `change.current()`, in its own charset and transfer encoding.
// None when the new text does not fit them, so that the whole part must be written anew; nor for a body
// without a byte, whose line ends may be those of the header before it and of the boundary line behind it.
std::optional<std::vector<Splice>> bodySplices(const mime::PartTree& tree, mime::PartIndex part,
                                               const TextChange& change);

}  // namespace quillfile::mailbox
