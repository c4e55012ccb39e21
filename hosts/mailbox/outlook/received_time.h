// When a message was received, in the user's time zone.
#pragma once

#include <cstdint>
#include <optional>

#include "core/platform/date_time.h"
#include "hosts/mailbox/outlook/message.h"

namespace quillfile::mailbox {

// Seconds since 1970: the topmost Received field's date, else the Date field's, else the file's time, else
// now.
std::int64_t receivedSeconds(const Message& message);
// None where neither says it: a message within a message has no file of its own.
std::optional<std::int64_t> knownReceivedSeconds(const Message& message);

LocalTime localTime(std::int64_t seconds);
// "2026-03-04T14:05:00+01:00"
Text isoTime(std::int64_t seconds);
// "Wed, 04 Mar 2026 14:05:00 +0100", for a header
std::string mailTime(std::int64_t seconds);

}  // namespace quillfile::mailbox
