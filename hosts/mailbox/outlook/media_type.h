// The media type that goes with a file name's extension, for attachments that are added.
#pragma once

#include <string>

#include "core/text/text.h"

namespace quillfile::mailbox {

// "image/png" for "a.PNG"; "application/octet-stream" where nothing better is known.
std::string mediaTypeOf(TextView fileName);

}  // namespace quillfile::mailbox
