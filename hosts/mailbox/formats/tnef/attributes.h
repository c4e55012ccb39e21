// The attributes of a TNEF stream ([MS-OXTNEF] 2.1.3), shared by its writer and its reader.
#pragma once

#include <cstdint>
#include <string_view>

namespace quillfile::formats::tnef {

inline constexpr std::uint32_t kSignature = 0x223E9F78;

enum class Level : std::uint8_t { message = 1, attachment = 2 };

// The identifier, its type in the upper half.
enum class Attribute : std::uint32_t {
  from = 0x00008000,
  subject = 0x00018004,
  date_sent = 0x00038005,
  date_received = 0x00038006,
  message_class = 0x00078008,
  message_id = 0x00018009,
  body = 0x0002800C,
  priority = 0x0004800D,
  attach_data = 0x0006800F,
  attach_title = 0x00018010,
  attach_render_data = 0x00069002,
  message_properties = 0x00069003,
  recipients = 0x00069004,
  attachment = 0x00069005,
  version = 0x00089006,
  code_page = 0x00069007,
};

// An attribute: level (1), identifier (4), length (4), that many bytes, and the sum of these (2).
inline constexpr std::size_t kAttributeHeader = 9, kChecksum = 2;

// What stands before the data of an object property: which interface reads it.
inline constexpr std::string_view kMessageInterface(
    "\x07\x03\x02\x00\x00\x00\x00\x00\xC0\x00\x00\x00\x00\x00\x00\x46", 16);

inline std::uint16_t checksumOf(std::string_view bytes, std::uint16_t sum = 0) {
  for (const char byte : bytes) sum = static_cast<std::uint16_t>(sum + static_cast<unsigned char>(byte));
  return sum;
}

}  // namespace quillfile::formats::tnef
