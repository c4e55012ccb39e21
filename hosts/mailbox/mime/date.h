// Dates of mail (RFC 5322 3.3 and 4.3).
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace quillfile::mime {

// Seconds since 1970-01-01 00:00 UTC. Reads comments, missing week days and seconds, two- and three-digit
// years, and the obsolete zones; an unknown or missing zone is UTC. None when it is no date.
//   parseDate("Fri, 21 Nov 1997 09:55:06 -0600") == 880127706
std::optional<std::int64_t> parseDate(std::string_view value);

// The date of a Received field: what follows its last semicolon outside comments.
std::optional<std::int64_t> parseReceivedDate(std::string_view value);

}  // namespace quillfile::mime
