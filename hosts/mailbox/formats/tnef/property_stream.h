// The properties inside a TNEF attribute ([MS-OXTNEF] 2.1.3.4): a count, then for each a tag, a name where
// the number is above 0x8000, and its value or values, padded to four bytes.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "hosts/mailbox/formats/mapi/property.h"
#include "hosts/mailbox/formats/text_room.h"

namespace quillfile::formats::tnef {

// `more`: properties that the caller writes behind these, and that are counted too.
std::string propertyBytes(const mapi::Properties& properties, std::size_t more = 0);

// The start of an object property: its tag, one value, the value's length. The value and its padding follow.
std::string objectHeader(mapi::Id id, std::uint64_t length);

inline std::size_t padding(std::uint64_t length) { return static_cast<std::size_t>((4 - length % 4) % 4); }

// An attachment's data is not put among the properties: `data` is called with it. Of an object the value
// begins with the sixteen bytes that say who reads it; of binary data it does not.
using DataHandler = std::function<void(mapi::Type type, std::string_view value)>;

// Reads one set of properties and cuts it off the front of `bytes`. False when it is damaged or there is no
// more room: what was read until there stays.
bool readProperties(std::string_view& bytes, mapi::Properties& to, TextRoom& room,
                    const DataHandler& data = {});

// A count, and that many sets of properties.
bool readRows(std::string_view bytes, TextRoom& room,
              const std::function<void(const mapi::Properties&)>& row);

}  // namespace quillfile::formats::tnef
