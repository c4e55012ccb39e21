// RTF as text, and as the HTML that it was made from.
#pragma once

#include "core/text/text.h"

namespace quillfile::formats {

// What a mail program made the RTF from: it says so at its beginning ([MS-OXRTFEX] 2.1).
enum class RtfOrigin { rich_text, html, plain_text };

struct RtfDocument {
  RtfOrigin origin = RtfOrigin::rich_text;
  Text text;  // what a reader of RTF shows; lines end in CR LF
  Text html;  // of the origin `html`: the very page; empty for the others
};

// `rtf`: its bytes as characters; what is above U+007F is taken as it is. Never fails: what is no RTF is its
// own text. Memory is bounded by the length of the input.
RtfDocument readRtf(TextView rtf);

}  // namespace quillfile::formats
