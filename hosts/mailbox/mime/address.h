// Addresses (RFC 5322 3.4) of From, To, Cc, Reply-To and Sender: good enough to show a name and to answer.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/text/text.h"

namespace quillfile::mime {

struct Address {
  Text name;     // display name, decoded; a comment in its place when there is none; may be empty
  Text address;  // local@domain without brackets, route and comments; may be empty
  bool operator==(const Address&) const = default;
};

// Every mailbox in an unfolded value, the members of groups (however nested) among them. At most `limit`.
std::vector<Address> parseAddresses(std::string_view value, std::size_t limit = 10'000);

}  // namespace quillfile::mime
