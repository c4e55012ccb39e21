#include "hosts/mailbox/formats/mapi/property.h"

#include <algorithm>
#include <array>

#include "hosts/mailbox/formats/mapi/code_page.h"

namespace quillfile::formats::mapi {
namespace {

constexpr std::array kKnown = {
    Id::importance,
    Id::message_class,
    Id::priority,
    Id::subject,
    Id::client_submit_time,
    Id::subject_prefix,
    Id::sent_representing_name,
    Id::sent_representing_address_type,
    Id::sent_representing_email_address,
    Id::conversation_topic,
    Id::transport_message_headers,
    Id::recipient_type,
    Id::sender_name,
    Id::sender_address_type,
    Id::sender_email_address,
    Id::display_bcc,
    Id::display_cc,
    Id::display_to,
    Id::message_delivery_time,
    Id::message_flags,
    Id::has_attachments,
    Id::normalized_subject,
    Id::rtf_in_sync,
    Id::attach_size,
    Id::attach_number,
    Id::object_type,
    Id::entry_id,
    Id::body,
    Id::rtf_compressed,
    Id::html,
    Id::native_body,
    Id::internet_message_id,
    Id::internet_references,
    Id::in_reply_to_id,
    Id::row_id,
    Id::display_name,
    Id::address_type,
    Id::email_address,
    Id::store_support_mask,
    Id::attach_data,
    Id::attach_extension,
    Id::attach_filename,
    Id::attach_method,
    Id::attach_long_filename,
    Id::rendering_position,
    Id::attach_long_pathname,
    Id::attach_mime_tag,
    Id::attach_content_id,
    Id::attach_flags,
    Id::display_type,
    Id::smtp_address,
    Id::internet_code_page,
    Id::message_code_page,
    Id::sender_smtp_address,
    Id::sent_representing_smtp_address,
    Id::attachment_hidden,
};
static_assert(std::is_sorted(kKnown.begin(), kKnown.end()));

}  // namespace

bool isKnown(std::uint16_t id) {
  return std::binary_search(kKnown.begin(), kKnown.end(), static_cast<Id>(id));
}

void Properties::add(Id id, Type type, Value value) {
  if (!has(id)) all_.push_back({id, type, std::move(value)});
}

void Properties::addText(Id id, TextView text) {
  if (!text.empty()) add(id, Type::unicode, Text(text));
}

const Property* Properties::find(Id id) const {
  const auto found =
      std::find_if(all_.begin(), all_.end(), [&](const Property& one) { return one.id == id; });
  return found == all_.end() ? nullptr : &*found;
}

// A text may be followed by the zero that ends it.
Text Properties::text(Id id, std::uint32_t codePage) const {
  const Property* property = find(id);
  if (property == nullptr) return {};
  Text result;
  if (const auto* text = std::get_if<Text>(&property->value)) {
    result = *text;
  } else if (property->type == Type::string8) {
    result = fromCodePage(std::get<std::string>(property->value), codePage);
  }
  while (!result.empty() && result.back() == u'\0') result.pop_back();
  return result;
}

std::int64_t Properties::number(Id id, std::int64_t otherwise) const {
  const Property* property = find(id);
  const auto* number = property == nullptr ? nullptr : std::get_if<std::int64_t>(&property->value);
  return number == nullptr ? otherwise : *number;
}

std::string Properties::bytes(Id id) const {
  const Property* property = find(id);
  const auto* bytes = property == nullptr ? nullptr : std::get_if<std::string>(&property->value);
  return bytes == nullptr ? std::string() : *bytes;
}

}  // namespace quillfile::formats::mapi
