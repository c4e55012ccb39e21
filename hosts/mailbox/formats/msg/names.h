// The names and sizes in a message file ([MS-OXMSG] 2.2 to 2.4), shared by its writer and its reader.
#pragma once

#include <cstdint>

#include "hosts/mailbox/formats/cfb/compound_writer.h"
#include "hosts/mailbox/formats/mapi/property.h"

namespace quillfile::formats::msg {

inline constexpr CompoundWriter::ClassId kMessageClassId = {0x0B, 0x0D, 0x02, 0x00, 0x00, 0x00, 0x00, 0x00,
                                                            0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46};

inline constexpr TextView kProperties = u"__properties_version1.0";
inline constexpr TextView kNamedProperties = u"__nameid_version1.0";
inline constexpr TextView kRecipient = u"__recip_version1.0_#";
inline constexpr TextView kAttachment = u"__attach_version1.0_#";

// What stands before the rows of a property stream.
inline constexpr std::size_t kTopHeader = 32, kEmbeddedHeader = 24, kPartHeader = 8;
inline constexpr std::size_t kRow = 16;

inline Text hex8(std::uint32_t number) {
  Text result;
  for (int shift = 28; shift >= 0; shift -= 4) result += u"0123456789ABCDEF"[number >> shift & 0xF];
  return result;
}

inline std::uint32_t tagOf(mapi::Id id, mapi::Type type) {
  return static_cast<std::uint32_t>(id) << 16 | static_cast<std::uint32_t>(type);
}

// The stream, or the storage of an object, that holds a property's value.
inline Text valueName(std::uint32_t tag) { return u"__substg1.0_" + hex8(tag); }

}  // namespace quillfile::formats::msg
