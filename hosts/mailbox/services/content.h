// Content: bytes that are produced piece by piece, so that memory does not grow with them.
#pragma once

#include <functional>
#include <string_view>

namespace quillfile::mailbox {

// Takes the next bytes. May throw Failure, which the producer lets through.
using Sink = std::function<void(std::string_view bytes)>;

// Gives all of its bytes to the sink, in order. It is called again for the comparison with what was written,
// and gives the same bytes then; it owns, by shared pointers, whatever it reads from, and may be called from
// the event's end until the batch has let go of it. Large sources give a mapped view back
// (MessageFile::forget) as they go.
using Content = std::function<void(const Sink& sink)>;

}  // namespace quillfile::mailbox
