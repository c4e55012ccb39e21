// The order in which items are listed and numbered: oldest first, by the time at which each was received.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "hosts/mailbox/store/mail_folder.h"

namespace quillfile::mailbox {

// The unique names of a folder's messages: by the date of the topmost Received field, else the Date field,
// else the file's time; equal ones by the file's time to the nanosecond, then by their other header fields,
// so that a rewritten message keeps its place; copies of one message by delivery time and name. Only headers
// are read. Throws Failure.
std::vector<std::string> itemsInOrder(const MailFolder& folder);

// What a message's header says about when it was received, seconds since 1970; `otherwise` when it says
// nothing.
std::int64_t receivedSeconds(std::string_view header, std::int64_t otherwise);

// The numbers (from 1) that `range` names within `count` items: "3" or "3-7". Empty when it is no such thing
// or leaves the list.
std::vector<std::size_t> numbersIn(std::string_view range, std::size_t count);

}  // namespace quillfile::mailbox
