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

// A content that is written as it is, or as base64 in lines of 76 columns (the last one without its line
// end).
struct StreamedContent {
  Content content;
  bool base64 = true;
  std::string lineEnd;
};

using Piece = std::variant<Range, std::string, StreamedContent>;
using Pieces = std::vector<Piece>;

// Writes the rewritten message, front to back. `behind` is told about `original`.
void write(std::string_view original, const Pieces& pieces, const Sink& sink, const Behind& behind = {});

// The proof that is asked for before an original is unlinked: whether `rewritten` is exactly what `pieces`
// say, and whether nothing of `original` outside `cuts` (ranges of it, ascending) was lost or moved. Base64
// contents are decoded with the second decoder and compared with their source. `behindOriginal` and
// `behindRewritten` are told about the two.
bool check(std::string_view original, const Pieces& pieces, const std::vector<Range>& cuts,
           std::string_view rewritten, const Behind& behindOriginal = {}, const Behind& behindRewritten = {});

}  // namespace quillfile::mime
