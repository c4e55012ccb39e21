// Pieces: what a rewritten message is made of. An edit is a splice: ranges of the original, new bytes, and
// contents that are encoded while they are written, so that memory does not grow with them.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "hosts/mailbox/mime/range.h"

namespace quillfile::mime {

// Gives its bytes to the sink, the same ones each time it is called. What it throws goes through.
using Content = std::function<void(const Sink&)>;

// Written as base64 in lines of 76 columns that end in `lineEnd`; the last line has no line end.
struct EncodedContent {
  Content content;
  std::string lineEnd;
};

using Piece = std::variant<Range, std::string, EncodedContent>;
using Pieces = std::vector<Piece>;

// Writes the rewritten message, front to back. `behind` is told about `original`.
void write(std::string_view original, const Pieces& pieces, const Sink& sink, const Behind& behind = {});

// Whether `rewritten` is exactly what `pieces` say and nothing outside `cuts` (ranges of `original`,
// ascending) was lost or moved: the proof that is asked for before an original is unlinked. Encoded contents
// are decoded with the second decoder and compared with their source.
bool check(std::string_view original, const Pieces& pieces, const std::vector<Range>& cuts,
           std::string_view rewritten);

}  // namespace quillfile::mime
