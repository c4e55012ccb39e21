// Splice: a range of a message that is written otherwise, everything around it staying as it is.
#pragma once

#include <vector>

#include "hosts/mailbox/mime/pieces.h"

namespace quillfile::mailbox {

struct Splice {
  mime::Range range;    // of the original; empty: an insertion
  mime::Pieces pieces;  // what stands there instead
};

// `pieces` with the splices worked in. The splices do not overlap; those of one place stand in their order. A
// range that `pieces` already leave out stays out, and its splice is dropped with it.
mime::Pieces spliced(mime::Pieces pieces, std::vector<Splice> splices);

// The ranges left out, together with those of the splices: ascending, none empty.
std::vector<mime::Range> cutsWith(std::vector<mime::Range> cuts, const std::vector<Splice>& splices);

}  // namespace quillfile::mailbox
