// Properties: numbered, typed values ([MS-OXPROPS], [MS-OXCDATA]). Messages, recipients and attachments are
// sets of them, in .msg and in TNEF alike.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "core/text/text.h"

namespace quillfile::formats::mapi {

enum class Type : std::uint16_t {
  int16 = 0x0002,
  int32 = 0x0003,
  float32 = 0x0004,
  float64 = 0x0005,
  currency = 0x0006,
  app_time = 0x0007,
  error = 0x000A,
  boolean = 0x000B,
  object = 0x000D,
  int64 = 0x0014,
  string8 = 0x001E,  // in a code page
  unicode = 0x001F,
  time = 0x0040,
  guid = 0x0048,
  binary = 0x0102,
};
inline constexpr std::uint16_t kMultiple = 0x1000;  // a list of values of the type

// The identifiers that this room writes and reads, by their names in [MS-OXPROPS].
enum class Id : std::uint16_t {
  importance = 0x0017,
  message_class = 0x001A,
  priority = 0x0026,
  subject = 0x0037,
  client_submit_time = 0x0039,
  subject_prefix = 0x003D,
  sent_representing_name = 0x0042,
  sent_representing_address_type = 0x0064,
  sent_representing_email_address = 0x0065,
  conversation_topic = 0x0070,
  transport_message_headers = 0x007D,
  recipient_type = 0x0C15,
  sender_name = 0x0C1A,
  sender_address_type = 0x0C1E,
  sender_email_address = 0x0C1F,
  display_bcc = 0x0E02,
  display_cc = 0x0E03,
  display_to = 0x0E04,
  message_delivery_time = 0x0E06,
  message_flags = 0x0E07,
  has_attachments = 0x0E1B,
  normalized_subject = 0x0E1D,
  rtf_in_sync = 0x0E1F,
  attach_size = 0x0E20,
  attach_number = 0x0E21,
  object_type = 0x0FFE,
  entry_id = 0x0FFF,
  body = 0x1000,
  rtf_compressed = 0x1009,
  html = 0x1013,
  native_body = 0x1016,
  internet_message_id = 0x1035,
  internet_references = 0x1039,
  in_reply_to_id = 0x1042,
  row_id = 0x3000,
  display_name = 0x3001,
  address_type = 0x3002,
  email_address = 0x3003,
  store_support_mask = 0x340D,
  attach_data = 0x3701,
  attach_extension = 0x3703,
  attach_filename = 0x3704,
  attach_method = 0x3705,
  attach_long_filename = 0x3707,
  rendering_position = 0x370B,
  attach_long_pathname = 0x370D,
  attach_mime_tag = 0x370E,
  attach_content_id = 0x3712,
  attach_flags = 0x3714,
  display_type = 0x3900,
  smtp_address = 0x39FE,
  internet_code_page = 0x3FDE,
  message_code_page = 0x3FFD,
  sender_smtp_address = 0x5D01,
  sent_representing_smtp_address = 0x5D02,
  attachment_hidden = 0x7FFE,
};
bool isKnown(std::uint16_t id);

// Numbers, flags and times (100 ns since 1601) are integers; string8 and binary are bytes.
using Value = std::variant<std::int64_t, Text, std::string>;

struct Property {
  Id id;
  Type type;
  Value value;
};

// In the order in which they were added.
class Properties {
 public:
  // A text that is empty is not added, nor is a property that is there already.
  void add(Id id, Type type, Value value);
  void addText(Id id, TextView text);
  void addNumber(Id id, std::int64_t number) { add(id, Type::int32, number); }
  void addFlag(Id id, bool flag) { add(id, Type::boolean, std::int64_t{flag ? 1 : 0}); }

  const std::vector<Property>& all() const { return all_; }
  bool has(Id id) const { return find(id) != nullptr; }
  // Empty, 0 or the number given, where the property is missing or of another kind.
  Text text(Id id, std::uint32_t codePage) const;
  std::int64_t number(Id id, std::int64_t otherwise = 0) const;
  std::string bytes(Id id) const;
  const Property* find(Id id) const;

 private:
  std::vector<Property> all_;
};

}  // namespace quillfile::formats::mapi
